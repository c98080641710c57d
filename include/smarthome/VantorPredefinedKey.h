// Device attributes the metrics service fills in itself: a record names the key (as a
// data point with an empty value) and the service supplies the value on upload.
// Textual names through StringUtils::toString; values outside 0..14 print as "INVALID".
#pragma once

#include <cstdint>

namespace smarthome {

enum class VantorPredefinedKey : int32_t {
    INVALID = 0,
    PLATFORM = 1,
    SOFTWARE_VERSION = 2,
    DEVICE_MODEL = 3,
    BUILD_TYPE = 4,
    HARDWARE = 5,
    DEVICE_TYPE = 6,
    MARKETPLACE_ID = 7,
    OTA_GROUP_NAME = 8,
    DEVICE_ID = 9,
    COUNTRY_OF_RESIDENCE = 10,
    TIME_ZONE = 11,
    // Has a name but no data-point name: LoggerMetric::addPredefinedKey rejects it.
    OS_FILE_TAG = 12,
    DEVICE_LANGUAGE = 13,
    CUSTOMER_ID = 14,
};

}  // namespace smarthome
