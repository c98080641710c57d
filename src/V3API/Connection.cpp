#include "smarthome/V3API/Connection.h"

#include "smarthome/SmartHomeLogger.h"

namespace smarthome {
namespace V3API {

namespace {

const SmartHomeLogger logger("Connections");

}  // namespace

std::string Connection::toString(ConnectionType type) {
    switch (type) {
        case ConnectionType::TCP_IP:
            return "TCP_IP";
        case ConnectionType::ZIGBEE:
            return "ZIGBEE";
        case ConnectionType::ZWAVE:
            return "ZWAVE";
        case ConnectionType::BLE:
            return "BLE";
        case ConnectionType::BLUETOOTH_MESH:
            return "BLUETOOTH_MESH";
        case ConnectionType::LOCALSKILL:
            return "LOCALSKILL";
        case ConnectionType::MATTER:
            return "MATTER";
    }
    logger.w("%s:%s", "toString", "UNKNOWN");
    return "UNKNOWN";
}

}  // namespace V3API
}  // namespace smarthome
