// Where the capability-instance database of a component lives.
// Thread-safety: may be called from any thread; two first calls racing to create the same
// directory may see one of them fail (and answer "").
#pragma once

#include <string>

namespace smarthome {

class DatabaseUtility {
public:
    // <secured storage>/SmartHome/<directoryName>/CapabilityInstanceDatabase.db, creating
    // the three directories (mode 0771) where missing; "" when one cannot be created.
    static std::string getCapInstanceDatabasePath(const std::string& directoryName);
};

}  // namespace smarthome
