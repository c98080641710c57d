// Reduces a Bluetooth mesh network payload ({"networkInfo": <a mesh configuration database
// export>}) to what the cloud needs: the network's keys, names, groups, scenes and
// provisioners and each node's keys and configuration are removed before the payload
// leaves the device.
//
// Removed from "networkInfo": "$schema", "id", "version", "meshName", "netKeys", "appKeys",
// "scenes", "groups", "provisioners"; from every element of "networkInfo"."nodes": "name",
// "deviceKey", "security", "cid", "pid", "vid", "crpl", "features", "elements",
// "configComplete", "networkTransmit", "defaultTTL", "blacklisted", "netKeys", "appKeys",
// "relayRetransmit", "secureNetworkBeacon". Every other member keeps its value and its
// place; nodes keep their order. The result is compact text.
//
// The payload comes back byte for byte unchanged when it is not JSON (after the error line
// "simplifyPayload:event=parserError,reason=failedToParse,action=invalid,parseError=<message>,
// source=<payload>"), when "networkInfo" is missing or not an object, or when
// "networkInfo"."nodes" is missing or not an array.
//
// Thread-safety: stateless; any thread may call it.
#pragma once

#include <string>

namespace smarthome {

class BLEMeshNetworkSyncPayloadParser {
public:
    [[nodiscard]] static std::string simplifyPayload(std::string payload);
};

}  // namespace smarthome
