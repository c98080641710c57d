// Simplifies arbitrary bytes as a mesh payload. The result is the input itself, or JSON in
// which "networkInfo" and its nodes hold none of the removed keys, and simplifying it again
// removes nothing more.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "smarthome-host/HostPort.h"
#include "smarthome/BLEMeshNetworkSyncPayloadParser.h"
#include "smarthome/JSONUtil.h"

using smarthome::BLEMeshNetworkSyncPayloadParser;
using smarthome::JSONDocument;
using smarthome::JSONUtil;

namespace {

// The object's member names in order, and those of the objects in its "nodes".
std::string memberNames(const smarthome::JSONValue& object) {
    std::string names;
    for (const auto& member : object.GetObject()) {
        names.append(member.name.GetString(), member.name.GetStringLength()).push_back('\0');
        if (std::string(member.name.GetString()) == "nodes" && member.value.IsArray()) {
            for (const auto& node : member.value.GetArray()) {
                names += node.IsObject() ? "{" + memberNames(node) + "}" : "-";
            }
        }
    }
    return names;
}

}  // namespace

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
    // Simplifying again removes nothing more (compared by member names: numbers need not
    // survive a text round trip digit for digit, the default parse not being full-precision).
    JSONDocument again;
    if (JSONUtil::parse(again, BLEMeshNetworkSyncPayloadParser::simplifyPayload(simplified))
            .IsError() ||
        memberNames(again["networkInfo"]) != memberNames(network)) {
        std::abort();
    }
    return 0;
}
