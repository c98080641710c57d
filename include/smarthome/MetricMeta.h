// Request metadata collected while a smart-home request is handled (device, request and
// commissioning facts), keyed by the wire key names other components read. Report
// functions of SHMetric take it by value and turn its entries into dimensions.
//
// Ownership: owns its map and dimension list. Thread-safety: none; getValue inserts.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "smarthome/VantorDimension.h"

namespace smarthome {

class MetricMeta {
public:
    // Enumerator names are the wire key names they stand for.
    struct Keys {
        enum KeyValues : int32_t {
            OtaImageManfCode = 0,
            OtaImageType = 1,
            OtaImageVersion = 2,
            BasicSwVersion = 3,
            ManfName = 4,
            ModelName = 5,
            Protocol = 6,
            RequestName = 7,
            RequestNamespace = 8,
            RequestIsSuccess = 9,
            RequestFailReason = 10,
            ReachabilityState = 11,
            RuleFriendlyName = 12,
            Source = 13,
            Latency = 14,
            DeviceLabel = 15,
            timeSinceLastResumeMSFromFullLPM = 16,
            timeSinceLastResumeMSFromPartialCPULPM = 17,
            timeSinceLastResumeMSFromPartialNetworkLPM = 18,
            lpmTreatmentType = 19,
            commissioningType = 20,
            commissionSessionId = 21,
            commissionDiscoveryType = 22,
            commissionDiscoveryProtocol = 23,
            commissionerDeviceType = 24,
            commissionerMemoryUseKb = 25,
            commissioneeDeviceType = 26,
            operationalNetworkType = 27,
        };
    };

    // meta[toString(key)] = value when both are non-empty (an unknown key has an empty name);
    // otherwise nothing.
    void setKeyVal(Keys::KeyValues key, std::string value);
    // meta[key] = value when both are non-empty; otherwise nothing.
    void setCustomKeyVal(const std::string& key, const std::string& value);
    // The stored value, or "Null" when it is missing or empty. A missing key is left behind
    // with an empty value (the map's inserting lookup), hence not const.
    std::string getValue(Keys::KeyValues key);
    std::unordered_map<std::string, std::string> getMeta() const;
    // Not filled by any operation of this class.
    const std::vector<VantorDimension>& getDimensions() const;

    static bool isValid(const std::string& s);
    // The wire key name; "" for values outside 0..27.
    static std::string toString(const Keys::KeyValues& key);

private:
    std::unordered_map<std::string, std::string> meta;
    std::vector<VantorDimension> dimensions;
};

}  // namespace smarthome
