// Feeds arbitrary bytes to the capability configuration readers: as a protocol object (the
// validators and the commissionee type reader), as a configuration file, and as protocol
// texts for the hub configuration document. A protocol that validates is kept in the hub
// configuration; the document always parses.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "smarthome-host/HostPort.h"
#include "smarthome/HubCapabilityConfigUtils.h"

using smarthome::HubCapabilityConfigUtils;
using smarthome::JSONDocument;
using smarthome::JSONUtil;

namespace {

std::string configPath;

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    smarthome::port::setLogSink([](int, const std::string&, const std::string&) {});
    smarthome::port::setMetricsSink([](int, const std::string&, const std::string&,
                                       const std::string&, int, const std::string&) {});
    configPath = "/tmp/smarthome-hubconfig-fuzz-" + std::to_string(getpid()) + ".json";
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    JSONDocument protocol;
    const bool parsed = !JSONUtil::parse(protocol, text).IsError();
    bool valid = false;
    if (parsed) {
        valid = HubCapabilityConfigUtils::validateApplicationProtocol(protocol);
        static_cast<void>(HubCapabilityConfigUtils::parseCommissioneeTypes(protocol));
    }
    const std::string configuration = HubCapabilityConfigUtils::createHubConfiguration({text});
    JSONDocument document;
    if (JSONUtil::parse(document, configuration).IsError() ||
        document["applicationProtocols"].Size() != (valid ? 1U : 0U)) {
        std::abort();
    }
    if (FILE* file = std::fopen(configPath.c_str(), "wb")) {
        std::fwrite(data, 1, size, file);
        std::fclose(file);
        std::vector<std::string> protocols;
        static_cast<void>(
            HubCapabilityConfigUtils::parseProtocolObjectsFromFile(configPath, protocols));
        static_cast<void>(
            HubCapabilityConfigUtils::getCommissioneeTypesFromConfig(configPath, "ZIGBEE"));
        // Every protocol the file reader kept is valid, so the document keeps all of them.
        JSONDocument hub;
        if (JSONUtil::parse(hub, HubCapabilityConfigUtils::createHubConfiguration(protocols))
                .IsError() ||
            hub["applicationProtocols"].Size() != protocols.size()) {
            std::abort();
        }
    }
    return 0;
}
