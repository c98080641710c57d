#include "smarthome/ProcInfo.h"

#include <fstream>
#include <sstream>
#include <string>

#include "smarthome/SmartHomeLogger.h"

namespace smarthome {

namespace {

const SmartHomeLogger logger("ProcInfo");

}  // namespace

int ProcInfo::getPssKb() {
    std::ifstream file("/proc/self/smaps_rollup");
    if (!file) {
        logger.e("%s:error=CannotOpenSmapsRollupFile", "getPssKb");
        return -1;
    }
    std::string line;
    while (std::getline(file, line)) {
        std::istringstream words(line);
        std::string first;
        if (words >> first && first == "Pss:") {
            int kilobytes = -1;
            if (words >> kilobytes) {
                return kilobytes;
            }
            return -1;
        }
    }
    return -1;
}

}  // namespace smarthome
