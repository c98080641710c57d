// Reading and writing the members of the error report classes: enumeration tables, typed
// member readers that log the parser error line naming the key, and deep equality of the
// shared parts.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "smarthome/JSONUtil.h"
#include "smarthome/SmartHomeLogger.h"

namespace smarthome {
namespace V3API {
namespace detail {

// The string of an enumeration value; "" for a value outside the table.
template <class Enum, std::size_t N>
std::string enumToString(Enum value, const std::array<const char*, N>& names) {
    const auto index = static_cast<std::size_t>(value);
    return index < N ? names[index] : "";
}

// Both empty, or both set and equal.
template <class T>
bool samePointee(const std::shared_ptr<T>& a, const std::shared_ptr<T>& b) {
    return a == b || (a && b && *a == *b);
}

template <class T>
bool sameElements(const std::vector<std::shared_ptr<T>>& a,
                  const std::vector<std::shared_ptr<T>>& b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (!samePointee(a[i], b[i])) {
            return false;
        }
    }
    return true;
}

inline void addString(JSONValue& object, const char* key, const std::string& value,
                      rapidjson::CrtAllocator& allocator) {
    object.AddMember(rapidjson::StringRef(key), JSONValue(value, allocator), allocator);
}

template <class T>
void addObject(JSONValue& object, const char* key, const std::shared_ptr<T>& part,
               rapidjson::CrtAllocator& allocator) {
    if (part) {
        object.AddMember(rapidjson::StringRef(key), part->toJson(allocator), allocator);
    }
}

template <class T>
void addArray(JSONValue& object, const char* key, const std::vector<std::shared_ptr<T>>& parts,
              rapidjson::CrtAllocator& allocator) {
    JSONValue list(rapidjson::kArrayType);
    for (const auto& part : parts) {
        if (part) {
            list.PushBack(part->toJson(allocator), allocator);
        }
    }
    object.AddMember(rapidjson::StringRef(key), list, allocator);
}

// Reads the members of one JSON object for fromJson. An absent or null member leaves the
// target as it is; a member of the wrong kind logs
// "fromJson:event=parserError,reason=valueNot<Kind>,action=invalid,key=<key>" and makes
// the reader fail (ok() false), after which it reads nothing more.
template <class Value>
class MemberReader {
public:
    // Logs the valueNotAnObject line with key "" when value is not an object.
    MemberReader(const Value& value, const SmartHomeLogger& logger)
        : object(value), logger(logger), good(value.IsObject()) {
        if (!good) {
            fail("valueNotAnObject", "");
        }
    }

    [[nodiscard]] bool ok() const { return good; }

    MemberReader& text(const char* key, std::string* target) {
        if (const Value* member = find(key)) {
            if (!member->IsString()) {
                fail("valueNotAString", key);
            } else {
                target->assign(member->GetString(), member->GetStringLength());
            }
        }
        return *this;
    }

    MemberReader& integer(const char* key, int* target) {
        if (const Value* member = find(key)) {
            if (!member->IsInt()) {
                fail("valueNotAnInt", key);
            } else {
                *target = member->GetInt();
            }
        }
        return *this;
    }

    // A string of names; an unknown string reads as the value 0 after the warning
    // "fromJson:unknownEnumerationValue,key=<key>".
    template <class Enum, std::size_t N>
    MemberReader& enumeration(const char* key, const std::array<const char*, N>& names,
                              Enum* target) {
        std::string name;
        const bool present = find(key) != nullptr;
        text(key, &name);
        if (!good || !present) {
            return *this;
        }
        for (std::size_t i = 0; i < N; ++i) {
            if (name == names[i]) {
                *target = static_cast<Enum>(i);
                return *this;
            }
        }
        logger.w("%s:unknownEnumerationValue,key=%s", "fromJson", key);
        *target = static_cast<Enum>(0);
        return *this;
    }

    template <class T>
    MemberReader& part(const char* key, std::shared_ptr<T>* target) {
        if (const Value* member = find(key)) {
            if (!member->IsObject()) {
                fail("valueNotAnObject", key);
            } else if (!(*target = T::fromJson(*member))) {
                good = false;
            }
        }
        return *this;
    }

    template <class T>
    MemberReader& parts(const char* key, std::vector<std::shared_ptr<T>>* target) {
        if (const Value* member = find(key)) {
            if (!member->IsArray()) {
                fail("valueNotAnArray", key);
                return *this;
            }
            for (const auto& element : member->GetArray()) {
                std::shared_ptr<T> item = T::fromJson(element);
                if (!item) {
                    good = false;
                    return *this;
                }
                target->push_back(std::move(item));
            }
        }
        return *this;
    }

private:
    const Value* find(const char* key) const {
        if (!good) {
            return nullptr;
        }
        const auto member = object.FindMember(key);
        if (member == object.MemberEnd() || member->value.IsNull()) {
            return nullptr;
        }
        return &member->value;
    }

    void fail(const char* reason, const char* key) {
        logger.e("%s:event=parserError,reason=%s,action=invalid,key=%s", "fromJson", reason, key);
        good = false;
    }

    const Value& object;
    const SmartHomeLogger& logger;
    bool good;
};

}  // namespace detail
}  // namespace V3API
}  // namespace smarthome
