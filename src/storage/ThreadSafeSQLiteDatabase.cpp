#include "smarthome/ThreadSafeSQLiteDatabase.h"

#include "smarthome/SmartHomeLogger.h"
#include "smarthome/StringUtils.h"
#include "smarthome/SynchronizedHashMap.h"

namespace smarthome {

namespace {

const SmartHomeLogger logger("ThreadSafeSQLiteDatabase");

using Registry = SynchronizedHashMap<std::string, std::shared_ptr<ThreadSafeSQLiteDatabase>>;

// Process-wide and never emptied: instances live until the process exits. Leaked on purpose
// so that no instance is destroyed during static destruction while still in use.
Registry& registry() {
    static Registry* instances = new Registry();
    return *instances;
}

std::mutex& registryMutex() {
    static std::mutex* mutex = new std::mutex();
    return *mutex;
}

}  // namespace

std::shared_ptr<ThreadSafeSQLiteDatabase> ThreadSafeSQLiteDatabase::getInstance(
    const std::string& path) {
    std::lock_guard<std::mutex> lock(registryMutex());
    auto found = registry().find(path);
    if (found.first) {
        logger.d("%s:InstanceFound, storageFilePath=%s", "getInstance", path.c_str());
        return found.second;
    }
    auto instance = std::make_shared<ThreadSafeSQLiteDatabase>(path);
    if (!registry().insert(path, instance)) {
        logger.e("%s:event=getInstanceFailed,reason=CouldNotInsertDatabaseInstance", "getInstance");
    }
    logger.d("%s:InstanceNotFound, storageFilePath=%s", "getInstance", path.c_str());
    return instance;
}

ThreadSafeSQLiteDatabase::ThreadSafeSQLiteDatabase(const std::string& path) {
    std::lock_guard<std::mutex> lock(mutex);
    database = SQLiteDatabase::create(path);
}

ThreadSafeSQLiteDatabase::~ThreadSafeSQLiteDatabase() {
    if (database) {
        database->close();
    }
}

#define SMARTHOME_LOCKED_FORWARD(operation, call)        \
    std::lock_guard<std::mutex> lock(mutex);             \
    if (!database) {                                     \
        logger.e("%s:reason=DatabaseIsNull", operation); \
        return false;                                    \
    }                                                    \
    return database->call;

bool ThreadSafeSQLiteDatabase::initialize() {
    SMARTHOME_LOCKED_FORWARD("initialize", initialize())
}

bool ThreadSafeSQLiteDatabase::open() {
    SMARTHOME_LOCKED_FORWARD("open", open())
}

bool ThreadSafeSQLiteDatabase::performQuery(const std::string& sql) {
    SMARTHOME_LOCKED_FORWARD("performQuery", performQuery(sql))
}

bool ThreadSafeSQLiteDatabase::getTableNames(std::vector<std::string>& names) {
    SMARTHOME_LOCKED_FORWARD("getTableNames", getTableNames(names))
}

bool ThreadSafeSQLiteDatabase::tableExists(const std::string& table) {
    SMARTHOME_LOCKED_FORWARD("tableExists", tableExists(table))
}

bool ThreadSafeSQLiteDatabase::columnExists(const std::string& table, const std::string& column) {
    SMARTHOME_LOCKED_FORWARD("columnExists", columnExists(table, column))
}

bool ThreadSafeSQLiteDatabase::clearTable(const std::string& table) {
    SMARTHOME_LOCKED_FORWARD("clearTable", clearTable(table))
}

bool ThreadSafeSQLiteDatabase::isDatabaseReady() {
    SMARTHOME_LOCKED_FORWARD("isDatabaseReady", isDatabaseReady())
}

#undef SMARTHOME_LOCKED_FORWARD

void ThreadSafeSQLiteDatabase::close() {
    std::lock_guard<std::mutex> lock(mutex);
    if (database) {
        database->close();
    }
}

std::unique_ptr<SQLiteStatement> ThreadSafeSQLiteDatabase::createStatement(const std::string& sql) {
    if (!database) {
        logger.e("%s:reason=DatabaseIsNull", "createStatement");
        return nullptr;
    }
    return database->createStatement(sql);
}

std::unique_ptr<SQLiteDatabase::Transaction> ThreadSafeSQLiteDatabase::beginTransaction() {
    if (!database) {
        logger.e("%s:reason=DatabaseIsNull", "beginTransaction");
        return nullptr;
    }
    return database->beginTransaction();
}

void ThreadSafeSQLiteDatabase::lock() {
    mutex.lock();
}

void ThreadSafeSQLiteDatabase::unlock() {
    mutex.unlock();
}

bool ThreadSafeSQLiteDatabase::clearAllTablesFromDb() {
    std::lock_guard<std::mutex> lock(mutex);
    if (!database) {
        logger.e("%s:reason=DatabaseIsNull", "clearAllTablesFromDb");
        return false;
    }
    std::vector<std::string> names;
    if (!database->getTableNames(names)) {
        logger.e("%s:error=removeAllTablesFromDb, reason=GetTableNamesFailed",
                 "clearAllTablesFromDb");
        return false;
    }
    logger.i("%s:listOftables=%s", "clearAllTablesFromDb", StringUtils::toString(names).c_str());
    for (const std::string& name : names) {
        if (!database->clearTable(name)) {
            logger.e("%s:error=removeAllTablesFromDb, reason=clearTableFailed, name=%s",
                     "clearAllTablesFromDb", name.c_str());
            return false;
        }
    }
    logger.i("%s:TableCleanupSuccessful", "clearAllTablesFromDb");
    return true;
}

}  // namespace smarthome
