// One typed dimension of a metric: a name and a value whose kind `type` selects. The
// record every metrics component passes around; SHMetric turns a list of them into data
// points. BOOLEAN and PREDEFINED dimensions have no factory and are filled field by field.
// Plain value type: copyable, no invariants, no locking.
#pragma once

#include <ostream>
#include <string>

#include "smarthome/VantorDimensionType.h"
#include "smarthome/VantorPredefinedKey.h"

namespace smarthome {

struct VantorDimension {
    std::string name;
    std::string stringValue;
    double doubleValue = 0.0;
    long longValue = 0;
    VantorPredefinedKey predefinedKey = VantorPredefinedKey::INVALID;
    VantorDimensionType type = VantorDimensionType::INVALID;
    bool boolValue = false;

    static VantorDimension createLong(const std::string& name, long value);
    static VantorDimension createString(const std::string& name, const std::string& value);
    static VantorDimension createDouble(const std::string& name, double value);

    // Appends the text operator<< writes to out (used for log lines).
    static void appendText(std::string& out, const VantorDimension& dimension);
};

// "name: <name>,type: <TYPE>,value: <value>"; a PREDEFINED dimension has no name part and
// shows its key's name as the value; BOOLEAN shows 1 or 0, DOUBLE six decimals, an unknown
// type an empty value.
std::ostream& operator<<(std::ostream& out, const VantorDimension& dimension);

}  // namespace smarthome
