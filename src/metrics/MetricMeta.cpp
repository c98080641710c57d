#include "smarthome/MetricMeta.h"

#include <iterator>

#include "smarthome/SmartHomeLogger.h"

namespace smarthome {

namespace {

// Kept for the subsystem's log tag; no operation of this class writes a line today.
[[maybe_unused]] const SmartHomeLogger logger("MetricMeta");

constexpr const char* kKeyNames[] = {"OtaImageManfCode",
                                     "OtaImageType",
                                     "OtaImageVersion",
                                     "BasicSwVersion",
                                     "ManfName",
                                     "ModelName",
                                     "Protocol",
                                     "RequestName",
                                     "RequestNamespace",
                                     "RequestIsSuccess",
                                     "RequestFailReason",
                                     "ReachabilityState",
                                     "RuleFriendlyName",
                                     "Source",
                                     "Latency",
                                     "DeviceLabel",
                                     "timeSinceLastResumeMSFromFullLPM",
                                     "timeSinceLastResumeMSFromPartialCPULPM",
                                     "timeSinceLastResumeMSFromPartialNetworkLPM",
                                     "lpmTreatmentType",
                                     "commissioningType",
                                     "commissionSessionId",
                                     "commissionDiscoveryType",
                                     "commissionDiscoveryProtocol",
                                     "commissionerDeviceType",
                                     "commissionerMemoryUseKb",
                                     "commissioneeDeviceType",
                                     "operationalNetworkType"};

}  // namespace

void MetricMeta::setKeyVal(Keys::KeyValues key, std::string value) {
    std::string name = toString(key);
    if (isValid(name) && isValid(value)) {
        meta[name] = std::move(value);
    }
}

void MetricMeta::setCustomKeyVal(const std::string& key, const std::string& value) {
    if (isValid(key) && isValid(value)) {
        meta[key] = value;
    }
}

std::string MetricMeta::getValue(Keys::KeyValues key) {
    const std::string& value = meta[toString(key)];
    return value.empty() ? "Null" : value;
}

std::unordered_map<std::string, std::string> MetricMeta::getMeta() const {
    return meta;
}

const std::vector<VantorDimension>& MetricMeta::getDimensions() const {
    return dimensions;
}

bool MetricMeta::isValid(const std::string& s) {
    return !s.empty();
}

std::string MetricMeta::toString(const Keys::KeyValues& key) {
    const auto index = static_cast<uint32_t>(key);
    return index < std::size(kKeyNames) ? kKeyNames[index] : "";
}

}  // namespace smarthome
