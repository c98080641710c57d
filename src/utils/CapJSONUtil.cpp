#include "smarthome/CapJSONUtil.h"

#include "smarthome/SmartHomeLogger.h"

namespace smarthome {

namespace {

const SmartHomeLogger logger("CapJSONUtil");

// The member when value is an object holding it; otherwise null.
const JSONValue* lookup(const JSONValue& value, const char* key) {
    if (!value.IsObject()) {
        return nullptr;
    }
    auto member = value.FindMember(key);
    return member == value.MemberEnd() ? nullptr : &member->value;
}

// The member when it is an object; otherwise logs and continues with the null default,
// in which every later lookup finds nothing.
const JSONValue& objectMember(const JSONValue& value, const char* key, const char* function) {
    const JSONValue* member = lookup(value, key);
    if (member == nullptr || !member->IsObject()) {
        logger.e("%s:event=parserError,reason=valueNotAnObject,action=invalid,key=%s", function,
                 key);
        return JSONUtil::DEFAULT_VALUE;
    }
    return *member;
}

std::pair<bool, bool> readPropertyFlag(const JSONValue& capability, const char* flag,
                                       const char* function) {
    const JSONValue& metadata = objectMember(capability, "metadata", function);
    const JSONValue& properties = objectMember(metadata, "properties", function);
    const JSONValue* value = lookup(properties, flag);
    if (value != nullptr && value->IsBool()) {
        return {true, value->GetBool()};
    }
    logger.e("%s:event=parserError,reason=valueNotABool,action=invalid,key=%s", function, flag);
    return {false, false};
}

}  // namespace

std::pair<bool, bool> CapJSONUtil::isRetrievable(const JSONValue& capability) {
    return readPropertyFlag(capability, "retrievable", "isRetrievable");
}

std::pair<bool, bool> CapJSONUtil::isProactive(const JSONValue& capability) {
    return readPropertyFlag(capability, "proactivelyReported", "isProactive");
}

}  // namespace smarthome
