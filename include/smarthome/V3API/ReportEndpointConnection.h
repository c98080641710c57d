// One way to reach an endpoint of a discovery report: its "type", "id" and "version" (and
// the "macAddress" when the report gives one). Connections of type "MATTER" are read as
// ReportEndpointCHIPConnection.
//
// Reading visits the members in document order; members other than "type", "version",
// "id", "macAddress" and "protocolData" are logged ("create:unhandledKeyInJSONObject,
// key=<member>", warning) and skipped. A value that is not an object logs
// "create:reason=NullOrInvalidConnectionObject"; one of the four string members holding
// another kind logs "create:event=parserError,reason=valueNotAString,action=invalid,
// key=<member>"; either way the result is an error connection (hasError()). A "MATTER"
// connection's own checks are described in ReportEndpointCHIPConnection.h. Reading never
// throws and never returns an empty pointer.
//
// Ownership: held by shared_ptr by its endpoint. Thread-safety: immutable after reading.
#pragma once

#include <memory>
#include <string>

#include "smarthome/JSONUtil.h"
#include "smarthome/V3API/JsonTextWriter.h"

namespace smarthome {
namespace V3API {

class ReportEndpointConnection {
public:
    ReportEndpointConnection(std::string type, std::string id, std::string version);
    virtual ~ReportEndpointConnection() = default;

    [[nodiscard]] static std::shared_ptr<ReportEndpointConnection> create(const JSONValue& value);
    [[nodiscard]] static std::shared_ptr<ReportEndpointConnection> create(
        const rapidjson::Value& value);
    // A connection with empty strings and the error flag set.
    [[nodiscard]] static std::shared_ptr<ReportEndpointConnection> getErrorConnection();

    [[nodiscard]] const std::string& getType() const { return type; }
    [[nodiscard]] const std::string& getId() const { return id; }
    [[nodiscard]] const std::string& getVersion() const { return version; }
    // Empty when the report gave none.
    [[nodiscard]] const std::string& getMacAddress() const { return macAddress; }
    [[nodiscard]] bool hasError() const { return error; }

    // The connection written back: "type", "id", "version" and "macAddress" when not empty
    // (a member the report left out or gave as "" is left out), then the form's own members.
    void write(JsonTextWriter& writer) const;

protected:
    // The members inside the object, in order.
    virtual void writeMembers(JsonTextWriter& writer) const;
    void setMacAddress(std::string address) { macAddress = std::move(address); }

private:
    template <class Value>
    static std::shared_ptr<ReportEndpointConnection> read(const Value& value);

    std::string type;
    std::string id;
    std::string version;
    std::string macAddress;
    bool error = false;
};

}  // namespace V3API
}  // namespace smarthome
