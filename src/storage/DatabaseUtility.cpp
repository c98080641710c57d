#include "smarthome/DatabaseUtility.h"

#include "smarthome/FileIO.h"
#include "smarthome/SmartHomeLogger.h"
#include "smarthome/port/PlatformPaths.h"

namespace smarthome {

namespace {

const SmartHomeLogger logger("DatabaseUtility");
constexpr unsigned short kDirectoryMode = 0771;

bool ensureDirectory(const std::string& dir) {
    return FileIO::doesDirectoryExist(dir) || FileIO::createDirectory(dir, kDirectoryMode);
}

}  // namespace

std::string DatabaseUtility::getCapInstanceDatabasePath(const std::string& directoryName) {
    const std::string base = port::securedStorageBaseDir();
    if (!ensureDirectory(base)) {
        logger.e("%s:event=dataSecuredStorageDirDoesNotExist,action=cannotCreateDatabase,dir=%s",
                 "getCapInstanceDatabasePath", base.c_str());
        return {};
    }
    std::string dir = base;
    for (const std::string& name : {std::string("SmartHome"), directoryName}) {
        dir = FileIO::joinPath(dir, name);
        if (!ensureDirectory(dir)) {
            logger.e("%s:event=cannotCreateDirectory,action=cannotCreateDatabase,dirPath=%s",
                     "getCapInstanceDatabasePath", dir.c_str());
            return {};
        }
    }
    return FileIO::joinPath(dir, "CapabilityInstanceDatabase.db");
}

}  // namespace smarthome
