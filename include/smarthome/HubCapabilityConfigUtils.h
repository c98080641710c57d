// The hub's capability configuration: reading and validating the configuration file (the
// application protocols the hub can commission, each with its "type", "maxVersion" and
// "commissioneeTypes" {"displayCategories" (required), "deviceTypes" (optional), arrays of
// strings}) and building the hub configuration document reported to the cloud.
//
// Every failure is one or two error lines (the first "%s" of each is the operation's name)
// and a false or empty result; nothing throws. Files are parsed with JSONUtil's depth limit.
// The validators take both RapidJSON value types.
//
// Thread-safety: stateless; any thread may call any operation.
#pragma once

#include <rapidjson/document.h>

#include <string>
#include <vector>

#include "smarthome/CommissioneeTypes.h"
#include "smarthome/JSONUtil.h"

namespace smarthome {

class HubCapabilityConfigUtils {
public:
    // Appends the compact text of every valid protocol object of the file's
    // "applicationProtocols", in file order. An unreadable or unparsable file, a missing or
    // non-array "applicationProtocols", or any protocol that fails validation or cannot be
    // written gives false (invalid protocols are logged and left out; the valid ones are
    // still appended). Records the counter "CapabilityConfigParsingSuccess": 1 for a
    // complete pass, 0 otherwise.
    [[nodiscard]] static bool parseProtocolObjectsFromFile(const std::string& path,
                                                           std::vector<std::string>& protocols);

    // The checks in order, the first failure deciding: an object; "maxVersion" a string;
    // "type" a string; "commissioneeTypes" an object that validateCommissioneeTypes accepts.
    [[nodiscard]] static bool validateApplicationProtocol(const rapidjson::Value& protocol);
    [[nodiscard]] static bool validateApplicationProtocol(const JSONValue& protocol);
    // An object whose "displayCategories" is an array of strings and whose "deviceTypes",
    // when present, is an array of strings (a present non-array "deviceTypes" is accepted
    // and ignored, as the readers ignore it).
    [[nodiscard]] static bool validateCommissioneeTypes(const rapidjson::Value& commissioneeTypes);
    [[nodiscard]] static bool validateCommissioneeTypes(const JSONValue& commissioneeTypes);

    // The string elements of the protocol's "commissioneeTypes" lists; elements of other
    // kinds are logged and skipped, a missing list gives an empty one.
    [[nodiscard]] static CommissioneeTypes parseCommissioneeTypes(const rapidjson::Value& protocol);
    [[nodiscard]] static CommissioneeTypes parseCommissioneeTypes(const JSONValue& protocol);

    // The commissionee types of the file's first protocol object whose "type" is exactly
    // protocolType; empty lists when there is none or the file cannot be read.
    [[nodiscard]] static CommissioneeTypes getCommissioneeTypesFromConfig(
        const std::string& path, const std::string& protocolType);

    // {"applicationProtocols": [the valid protocols, in order], "supportedFeatures":
    // {"preferredDirectiveNamespaceName": "SmartCloud.HubRequest", "smartCloudOwnershipMode":
    // "EXCLUSIVE", "matter": {"enhancedSetupMode": true}}} as compact text. Protocol texts
    // that do not parse or validate are logged and left out (all invalid: an empty array).
    [[nodiscard]] static std::string createHubConfiguration(
        const std::vector<std::string>& protocols);
};

}  // namespace smarthome
