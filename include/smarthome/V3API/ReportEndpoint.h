// One endpoint (device) of a discovery report: the ways to reach it, and optionally the keys
// to talk to it and what identifies it.
//
// Reading: "connections" absent, null or not an array logs
// "create:event=parserError,reason=valueNotAnArray,action=invalid,key=connections" and
// gives the error endpoint; so does any connection, credentials or identifiers object that
// reads with its error flag set (after that object's own line). "credentials" and
// "identifiers" are optional (absent or null leaves the pointer empty). Never throws, never
// an empty pointer.
//
// Ownership: held by shared_ptr by its payload; shares its parts.
// Thread-safety: immutable after reading.
#pragma once

#include <memory>
#include <vector>

#include "smarthome/JSONUtil.h"
#include "smarthome/V3API/Credentials.h"
#include "smarthome/V3API/Identifiers.h"
#include "smarthome/V3API/JsonTextWriter.h"
#include "smarthome/V3API/ReportEndpointConnection.h"

namespace smarthome {
namespace V3API {

class ReportEndpoint {
public:
    ReportEndpoint(std::vector<std::shared_ptr<ReportEndpointConnection>> connections,
                   std::shared_ptr<Credentials> credentials,
                   std::shared_ptr<Identifiers> identifiers);

    [[nodiscard]] static std::shared_ptr<ReportEndpoint> create(const JSONValue& value);
    [[nodiscard]] static std::shared_ptr<ReportEndpoint> create(const rapidjson::Value& value);
    // No connections, empty credentials and identifiers, the error flag set.
    [[nodiscard]] static std::shared_ptr<ReportEndpoint> getErrorEndpoint();

    [[nodiscard]] const std::vector<std::shared_ptr<ReportEndpointConnection>>& getConnections()
        const {
        return connections;
    }
    [[nodiscard]] std::shared_ptr<Credentials> getCredentials() const { return credentials; }
    [[nodiscard]] std::shared_ptr<Identifiers> getIdentifiers() const { return identifiers; }
    [[nodiscard]] bool hasError() const { return error; }

    // "connections", then "credentials" and "identifiers" when present.
    void write(JsonTextWriter& writer) const;

private:
    template <class Value>
    static std::shared_ptr<ReportEndpoint> read(const Value& value);

    std::vector<std::shared_ptr<ReportEndpointConnection>> connections;
    std::shared_ptr<Credentials> credentials;
    std::shared_ptr<Identifiers> identifiers;
    bool error = false;
};

}  // namespace V3API
}  // namespace smarthome
