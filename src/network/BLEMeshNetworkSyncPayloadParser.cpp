#include "smarthome/BLEMeshNetworkSyncPayloadParser.h"

#include <rapidjson/error/en.h>

#include <array>
#include <cstring>

#include "smarthome/JSONUtil.h"
#include "smarthome/SmartHomeLogger.h"

namespace smarthome {

namespace {

const SmartHomeLogger logger("BLEMeshNetworkSyncPayloadParser");

const std::array<const char*, 9> kNetworkKeys = {"$schema",  "id",      "version",
                                                 "meshName", "netKeys", "appKeys",
                                                 "scenes",   "groups",  "provisioners"};
const std::array<const char*, 17> kNodeKeys = {"name",
                                               "deviceKey",
                                               "security",
                                               "cid",
                                               "pid",
                                               "vid",
                                               "crpl",
                                               "features",
                                               "elements",
                                               "configComplete",
                                               "networkTransmit",
                                               "defaultTTL",
                                               "blacklisted",
                                               "netKeys",
                                               "appKeys",
                                               "relayRetransmit",
                                               "secureNetworkBeacon"};

template <std::size_t N>
bool isListed(const JSONValue& name, const std::array<const char*, N>& keys) {
    const char* text = name.GetString();
    const std::size_t length = name.GetStringLength();
    for (const char* key : keys) {
        if (std::strlen(key) == length && std::memcmp(key, text, length) == 0) {
            return true;
        }
    }
    return false;
}

// Removes the listed members in one pass, keeping the others in their order.
template <std::size_t N>
void removeListed(JSONValue& object, const std::array<const char*, N>& keys) {
    for (auto member = object.MemberBegin(); member != object.MemberEnd();) {
        member = isListed(member->name, keys) ? object.EraseMember(member) : member + 1;
    }
}

}  // namespace

std::string BLEMeshNetworkSyncPayloadParser::simplifyPayload(std::string payload) {
    JSONDocument document;
    const rapidjson::ParseResult result = JSONUtil::parse(document, payload);
    if (result.IsError()) {
        logger.e("%s:event=parserError,reason=failedToParse,action=invalid,parseError=%s,source=%s",
                 "simplifyPayload", rapidjson::GetParseError_En(result.Code()), payload.c_str());
        return payload;
    }
    if (!document.IsObject()) {
        return payload;
    }
    const auto networkInfo = document.FindMember("networkInfo");
    if (networkInfo == document.MemberEnd() || !networkInfo->value.IsObject()) {
        return payload;
    }
    JSONValue& network = networkInfo->value;
    const auto nodes = network.FindMember("nodes");
    if (nodes == network.MemberEnd() || !nodes->value.IsArray()) {
        return payload;  // nothing removed: the network keys go only with the nodes' ones
    }
    for (auto& node : nodes->value.GetArray()) {
        if (node.IsObject()) {
            removeListed(node, kNodeKeys);
        }
    }
    removeListed(network, kNetworkKeys);
    return JSONUtil::getStringForJSON(document);
}

}  // namespace smarthome
