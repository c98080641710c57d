// Simplifies arbitrary bytes as a mesh payload. The result is the input itself, or JSON in
// which "networkInfo" and its nodes hold none of the removed keys, and simplifying it again
// changes nothing.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "smarthome-host/HostPort.h"
#include "smarthome/BLEMeshNetworkSyncPayloadParser.h"
#include "smarthome/JSONUtil.h"

using smarthome::BLEMeshNetworkSyncPayloadParser;
using smarthome::JSONDocument;
using smarthome::JSONUtil;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    smarthome::port::setLogSink([](int, const std::string&, const std::string&) {});
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string payload(reinterpret_cast<const char*>(data), size);
    const std::string simplified = BLEMeshNetworkSyncPayloadParser::simplifyPayload(payload);
    if (simplified == payload) {
        return 0;
    }
    JSONDocument document;
    if (JSONUtil::parse(document, simplified).IsError() || !document.IsObject()) {
        std::abort();
    }
    const auto& network = document["networkInfo"];
    if (network.HasMember("netKeys") || network.HasMember("$schema") ||
        !network["nodes"].IsArray()) {
        std::abort();
    }
    for (const auto& node : network["nodes"].GetArray()) {
        if (node.IsObject() &&
            (node.HasMember("deviceKey") || node.HasMember("secureNetworkBeacon"))) {
            std::abort();
        }
    }
    if (BLEMeshNetworkSyncPayloadParser::simplifyPayload(simplified) != simplified) {
        std::abort();
    }
    return 0;
}
