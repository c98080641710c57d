// The context of a directive the hub answers: its namespace, name, payload version,
// correlation token, endpoint id and event request id, repeated in the answer's header.
// Ownership: a plain value, shared by the events that answer it.
// Thread-safety: immutable after construction.
#pragma once

#include <string>

namespace smarthome {
namespace V3API {

class Context {
public:
    Context(std::string nameSpace, std::string name, std::string payloadVersion,
            std::string correlationToken, std::string endpointId, std::string eventRequestId);

    [[nodiscard]] const std::string& getNamespace() const { return nameSpace; }
    [[nodiscard]] const std::string& getName() const { return name; }
    [[nodiscard]] const std::string& getPayloadVersion() const { return payloadVersion; }
    [[nodiscard]] const std::string& getCorrelationToken() const { return correlationToken; }
    [[nodiscard]] const std::string& getEndpointId() const { return endpointId; }
    [[nodiscard]] const std::string& getEventRequestId() const { return eventRequestId; }

    // {"namespace", "name", "payloadVersion", "correlationToken", "endpointId",
    // "eventRequestId"} in this order, all strings, as compact text.
    [[nodiscard]] std::string toJson() const;

private:
    std::string nameSpace;
    std::string name;
    std::string payloadVersion;
    std::string correlationToken;
    std::string endpointId;
    std::string eventRequestId;
};

}  // namespace V3API
}  // namespace smarthome
