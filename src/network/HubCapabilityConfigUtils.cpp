#include "smarthome/HubCapabilityConfigUtils.h"

#include <rapidjson/error/en.h>

#include "smarthome/DynamicCapabilityReportingMetricsHelper.h"
#include "smarthome/SmartHomeLogger.h"

namespace smarthome {

namespace {

const SmartHomeLogger logger("HubCapabilityConfigUtils");

constexpr const char* kParsingSuccessCounter = "CapabilityConfigParsingSuccess";

template <class Value>
const Value* findMember(const Value& object, const char* key) {
    if (!object.IsObject()) {
        return nullptr;
    }
    const auto member = object.FindMember(key);
    return member == object.MemberEnd() ? nullptr : &member->value;
}

void logParserError(const char* function, const char* reason, const char* key) {
    logger.e("%s:event=parserError,reason=%s,action=invalid,key=%s", function, reason, key);
}

template <class Value>
bool validateCommissioneeTypesOf(const Value& value) {
    const char* function = "validateCommissioneeTypes";
    if (!value.IsObject()) {
        logger.e("%s:CommissioneeTypesInvalid", function);
        return false;
    }
    const Value* categories = findMember(value, "displayCategories");
    if (categories == nullptr || !categories->IsArray()) {
        logParserError(function, "valueNotAnArray", "displayCategories");
        logger.e("%s:Display categories invalid", function);
        return false;
    }
    for (const auto& category : categories->GetArray()) {
        if (!category.IsString()) {
            logger.e("%s:InvalidDisplayCategory", function);
            return false;
        }
    }
    const Value* deviceTypes = findMember(value, "deviceTypes");
    if (deviceTypes != nullptr && deviceTypes->IsArray()) {
        for (const auto& deviceType : deviceTypes->GetArray()) {
            if (!deviceType.IsString()) {
                logger.e("%s:InvalidDeviceType", function);
                return false;
            }
        }
    }
    return true;
}

template <class Value>
bool validateApplicationProtocolOf(const Value& protocol) {
    const char* function = "validateApplicationProtocol";
    if (!protocol.IsObject()) {
        logger.e("%s:ApplicationProtocolInvalid", function);
        return false;
    }
    const Value* maxVersion = findMember(protocol, "maxVersion");
    if (maxVersion == nullptr || !maxVersion->IsString()) {
        logParserError(function, "valueNotAString", "maxVersion");
        logger.e("%s:FailedToParseMaxVersion", function);
        return false;
    }
    const Value* type = findMember(protocol, "type");
    if (type == nullptr || !type->IsString()) {
        logParserError(function, "valueNotAString", "type");
        logger.e("%s:FailedToParseProtocolType", function);
        return false;
    }
    const Value* commissioneeTypes = findMember(protocol, "commissioneeTypes");
    if (commissioneeTypes == nullptr || !commissioneeTypes->IsObject()) {
        logParserError(function, "valueNotAnObject", "commissioneeTypes");
        logger.e("%s:CommissioneeTypesMissing", function);
        return false;
    }
    return validateCommissioneeTypesOf(*commissioneeTypes);
}

// The string elements of list; others logged with message and skipped.
template <class Value>
std::vector<std::string> stringsOf(const Value* list, const char* message) {
    std::vector<std::string> strings;
    if (list == nullptr || !list->IsArray()) {
        return strings;
    }
    for (const auto& element : list->GetArray()) {
        if (element.IsString()) {
            strings.emplace_back(element.GetString(), element.GetStringLength());
        } else {
            logger.e("%s:%s", "parseCommissioneeTypes", message);
        }
    }
    return strings;
}

template <class Value>
CommissioneeTypes parseCommissioneeTypesOf(const Value& protocol) {
    const char* function = "parseCommissioneeTypes";
    const Value* types = findMember(protocol, "commissioneeTypes");
    if (types == nullptr || !types->IsObject()) {
        logger.e("%s:Invalid application protocol format: missing commissioneeTypes", function);
        return {};
    }
    std::vector<std::string> deviceTypes =
        stringsOf(findMember(*types, "deviceTypes"), "Device type is not string");
    const Value* categories = findMember(*types, "displayCategories");
    if (categories == nullptr) {
        logger.e("%s:Invalid commissionee types format: missing display categories", function);
    }
    std::vector<std::string> displayCategories =
        stringsOf(categories, "Display category is not string is not string");
    return CommissioneeTypes(std::move(deviceTypes), std::move(displayCategories));
}

}  // namespace

bool HubCapabilityConfigUtils::parseProtocolObjectsFromFile(const std::string& path,
                                                            std::vector<std::string>& protocols) {
    const char* function = "parseProtocolObjectsFromFile";
    JSONDocument document;
    bool complete = false;
    if (!JSONUtil::parseJSONFromFile(path, document)) {
        logger.e("%s:parseProtocolObjectsFromFile: FailedToParseConfigFile", function);
    } else if (const JSONValue* list = findMember<JSONValue>(document, "applicationProtocols");
               list == nullptr || !list->IsArray()) {
        logger.e("%s:parseProtocolObjectsFromFile: FailedToParseApplicationProtocols", function);
    } else {
        complete = true;
        for (const auto& protocol : list->GetArray()) {
            if (!validateApplicationProtocolOf(protocol)) {
                logger.e("%s:parseProtocolObjectsFromFile: FailedToValidateApplicationProtocol",
                         function);
                complete = false;
                continue;
            }
            std::string text = JSONUtil::getStringForJSON(protocol);
            if (text.empty()) {
                logger.e("%s:parseProtocolObjectsFromFile: FailedToSerializeApplicationProtocol",
                         function);
                complete = false;
                continue;
            }
            protocols.push_back(std::move(text));
        }
    }
    DynamicCapabilityReportingMetricsHelper::recordCounter(kParsingSuccessCounter,
                                                           complete ? 1 : 0);
    return complete;
}

bool HubCapabilityConfigUtils::validateApplicationProtocol(const rapidjson::Value& protocol) {
    return validateApplicationProtocolOf(protocol);
}

bool HubCapabilityConfigUtils::validateApplicationProtocol(const JSONValue& protocol) {
    return validateApplicationProtocolOf(protocol);
}

bool HubCapabilityConfigUtils::validateCommissioneeTypes(
    const rapidjson::Value& commissioneeTypes) {
    return validateCommissioneeTypesOf(commissioneeTypes);
}

bool HubCapabilityConfigUtils::validateCommissioneeTypes(const JSONValue& commissioneeTypes) {
    return validateCommissioneeTypesOf(commissioneeTypes);
}

CommissioneeTypes HubCapabilityConfigUtils::parseCommissioneeTypes(
    const rapidjson::Value& protocol) {
    return parseCommissioneeTypesOf(protocol);
}

CommissioneeTypes HubCapabilityConfigUtils::parseCommissioneeTypes(const JSONValue& protocol) {
    return parseCommissioneeTypesOf(protocol);
}

CommissioneeTypes HubCapabilityConfigUtils::getCommissioneeTypesFromConfig(
    const std::string& path, const std::string& protocolType) {
    const char* function = "getCommissioneeTypesFromConfig";
    JSONDocument document;
    if (!JSONUtil::parseJSONFromFile(path, document)) {
        logger.e("%s:getCommissioneeTypesFromConfig: FailedToParseConfigFile", function);
        return {};
    }
    const JSONValue* list = findMember<JSONValue>(document, "applicationProtocols");
    if (list == nullptr || !list->IsArray()) {
        logParserError(function, "valueNotAnArray", "applicationProtocols");
        logger.e("%s:parseProtocolObjectsFromFile: FailedToParseApplicationProtocols", function);
        return {};
    }
    for (const auto& protocol : list->GetArray()) {
        const JSONValue* type = findMember(protocol, "type");
        if (type != nullptr && type->IsString() &&
            std::string(type->GetString(), type->GetStringLength()) == protocolType) {
            return parseCommissioneeTypesOf(protocol);
        }
    }
    return {};
}

std::string HubCapabilityConfigUtils::createHubConfiguration(
    const std::vector<std::string>& protocols) {
    const char* function = "createHubConfiguration";
    JSONDocument configuration(rapidjson::kObjectType);
    auto& allocator = configuration.GetAllocator();
    JSONValue list(rapidjson::kArrayType);
    for (const std::string& text : protocols) {
        JSONDocument protocol;
        const rapidjson::ParseResult result = JSONUtil::parse(protocol, text);
        if (result.IsError()) {
            logger.e(
                "%s:event=parserError,reason=failedToParse,action=invalid,parseError=%s,"
                "source=%s",
                function, rapidjson::GetParseError_En(result.Code()), text.c_str());
            logger.e("%s:FailedToParseConfig", function);
            continue;
        }
        if (!validateApplicationProtocolOf<JSONValue>(protocol)) {
            logger.e("%s:Protocol is invalid", function);
            continue;
        }
        list.PushBack(JSONValue(protocol, allocator), allocator);
    }
    JSONValue matter(rapidjson::kObjectType);
    matter.AddMember("enhancedSetupMode", true, allocator);
    JSONValue features(rapidjson::kObjectType);
    features.AddMember("preferredDirectiveNamespaceName", "SmartCloud.HubRequest", allocator);
    features.AddMember("smartCloudOwnershipMode", "EXCLUSIVE", allocator);
    features.AddMember("matter", matter, allocator);
    configuration.AddMember("applicationProtocols", list, allocator);
    configuration.AddMember("supportedFeatures", features, allocator);
    std::string text = JSONUtil::getStringForJSON(configuration);
    if (text.empty()) {
        logger.e("%s:Failed to generate hub configuration", function);
    }
    return text;
}

}  // namespace smarthome
