#include "smarthome/port/PlatformPaths.h"

#include <cstdlib>

namespace smarthome {
namespace port {

std::string securedStorageBaseDir() {
    const char* overridden = std::getenv("SMARTHOME_SECURED_STORAGE_DIR");
    if (overridden != nullptr && overridden[0] != '\0') {
        return overridden;
    }
    return "/data/securedStorageLocation";
}

}  // namespace port
}  // namespace smarthome
