// What identifies an endpoint of a discovery report: "customIdentifier", "serialNumber" and
// "macAddress", each empty (a null pointer) when the report leaves it out.
//
// Ownership: held by shared_ptr by its endpoint. Thread-safety: immutable after construction.
#pragma once

#include <memory>
#include <string>

#include "smarthome/JSONUtil.h"
#include "smarthome/V3API/JsonTextWriter.h"

namespace smarthome {
namespace V3API {

class Identifiers {
public:
    Identifiers(std::shared_ptr<std::string> customIdentifier,
                std::shared_ptr<std::string> serialNumber, std::shared_ptr<std::string> macAddress);

    // Reads the three members; a present member that is not a string logs
    // "create:event=parserError,reason=valueNotAString,action=invalid,key=<member>" and
    // gives an object whose error flag is set; so does a value that is not an object, after
    // "create:event=parserError,reason=valueNotAnObject,action=invalid,key=identifiers". Never an
    // empty pointer.
    [[nodiscard]] static std::shared_ptr<Identifiers> create(const JSONValue& value);
    [[nodiscard]] static std::shared_ptr<Identifiers> create(const rapidjson::Value& value);

    [[nodiscard]] std::shared_ptr<std::string> getCustomIdentifier() const {
        return customIdentifier;
    }
    [[nodiscard]] std::shared_ptr<std::string> getSerialNumber() const { return serialNumber; }
    [[nodiscard]] std::shared_ptr<std::string> getMacAddress() const { return macAddress; }
    [[nodiscard]] bool hasError() const { return error; }

    // The present members, as read.
    void write(JsonTextWriter& writer) const;

private:
    template <class Value>
    static std::shared_ptr<Identifiers> read(const Value& value);

    std::shared_ptr<std::string> customIdentifier;
    std::shared_ptr<std::string> serialNumber;
    std::shared_ptr<std::string> macAddress;
    bool error = false;
};

}  // namespace V3API
}  // namespace smarthome
