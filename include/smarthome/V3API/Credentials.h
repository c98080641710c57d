// The keys an endpoint of a discovery report needs: "discoveryKey" and "controlKey", each
// empty (a null pointer) when the report leaves it out.
//
// Ownership: held by shared_ptr by its endpoint. Thread-safety: immutable after construction.
#pragma once

#include <memory>
#include <string>

#include "smarthome/JSONUtil.h"
#include "smarthome/V3API/JsonTextWriter.h"

namespace smarthome {
namespace V3API {

class Credentials {
public:
    Credentials(std::shared_ptr<std::string> discoveryKey, std::shared_ptr<std::string> controlKey);

    // Reads the two members; a present member that is not a string logs
    // "create:event=parserError,reason=valueNotAString,action=invalid,key=<member>" and
    // gives an object whose error flag is set; so does a value that is not an object, after
    // "create:event=parserError,reason=valueNotAnObject,action=invalid,key=credentials". Never an
    // empty pointer.
    [[nodiscard]] static std::shared_ptr<Credentials> create(const JSONValue& value);
    [[nodiscard]] static std::shared_ptr<Credentials> create(const rapidjson::Value& value);

    [[nodiscard]] std::shared_ptr<std::string> getDiscoveryKey() const { return discoveryKey; }
    [[nodiscard]] std::shared_ptr<std::string> getControlKey() const { return controlKey; }
    [[nodiscard]] bool hasError() const { return error; }

    // The present members, as read.
    void write(JsonTextWriter& writer) const;

private:
    template <class Value>
    static std::shared_ptr<Credentials> read(const Value& value);

    std::shared_ptr<std::string> discoveryKey;
    std::shared_ptr<std::string> controlKey;
    bool error = false;
};

}  // namespace V3API
}  // namespace smarthome
