// Reading and writing the optional string members of the discovery report's objects.
#pragma once

#include <memory>
#include <string>

#include "smarthome/JSONUtil.h"
#include "smarthome/SmartHomeLogger.h"
#include "smarthome/V3API/JsonTextWriter.h"

namespace smarthome {
namespace V3API {
namespace detail {

// Reads object[key] into *target when present (a null pointer stays when absent). A present
// member that is not a string logs the parser error line naming key and returns false.
template <class Value>
bool readOptionalString(const Value& object, const char* key, std::shared_ptr<std::string>* target,
                        const SmartHomeLogger& logger) {
    const auto member = object.FindMember(key);
    if (member == object.MemberEnd()) {
        return true;
    }
    if (!member->value.IsString()) {
        logger.e("%s:event=parserError,reason=valueNotAString,action=invalid,key=%s", "create",
                 key);
        return false;
    }
    *target =
        std::make_shared<std::string>(member->value.GetString(), member->value.GetStringLength());
    return true;
}

// True when value is an object; otherwise logs the parser error line naming key.
template <class Value>
bool requireObject(const Value& value, const char* key, const SmartHomeLogger& logger) {
    if (value.IsObject()) {
        return true;
    }
    logger.e("%s:event=parserError,reason=valueNotAnObject,action=invalid,key=%s", "create", key);
    return false;
}

inline void writeOptionalString(JsonTextWriter& writer, const char* key,
                                const std::shared_ptr<std::string>& value) {
    if (value) {
        writer.Key(key);
        writer.String(value->data(), static_cast<rapidjson::SizeType>(value->size()));
    }
}

}  // namespace detail
}  // namespace V3API
}  // namespace smarthome
