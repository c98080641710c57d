// The text forms of the metric types, declared with the other toString overloads in
// StringUtils.h and defined here, beside the types they describe.
#include <cstdint>
#include <iterator>
#include <string>
#include <vector>

#include "smarthome/StringUtils.h"
#include "smarthome/VantorDimension.h"
#include "smarthome/VantorDimensionType.h"
#include "smarthome/VantorPredefinedKey.h"

namespace smarthome {

std::string StringUtils::toString(VantorPredefinedKey key) {
    static constexpr const char* kNames[] = {
        "INVALID",        "PLATFORM",        "SOFTWARE_VERSION",     "DEVICE_MODEL",
        "BUILD_TYPE",     "HARDWARE",        "DEVICE_TYPE",          "MARKETPLACE_ID",
        "OTA_GROUP_NAME", "DEVICE_ID",       "COUNTRY_OF_RESIDENCE", "TIME_ZONE",
        "OS_FILE_TAG",    "DEVICE_LANGUAGE", "CUSTOMER_ID"};
    const auto index = static_cast<uint32_t>(key);
    return index < std::size(kNames) ? kNames[index] : "INVALID";
}

std::string StringUtils::toString(VantorDimensionType type) {
    static constexpr const char* kNames[] = {"INVALID", "PREDEFINED", "STRING",
                                             "BOOLEAN", "LONG",       "DOUBLE"};
    const auto index = static_cast<uint32_t>(type);
    return index < std::size(kNames) ? kNames[index] : "INVALID";
}

std::string StringUtils::toString(const std::vector<VantorDimension>& dimensions) {
    std::string out = "[";
    for (size_t i = 0; i < dimensions.size(); ++i) {
        if (i != 0) {
            out += ", ";
        }
        VantorDimension::appendText(out, dimensions[i]);
    }
    out += ']';
    return out;
}

}  // namespace smarthome
