// An event the hub sends to the cloud, and its JSON envelope:
//
//   {"event": {"header":   {"namespace", "name", "messageId", "payloadVersion",
//                           "correlationToken"},
//              "endpoint": {"endpointId"},
//              "payload":  {...}}}
//
// The header's "namespace" and "name" are the event's own; the other header members, the
// endpoint id and the message id come from the payload (its directive context), and
// "payload" is the payload's text as a JSON object ({} when that text is not an object).
// An event without a payload object has a header of "namespace" and "name" only, an empty
// endpoint and an empty payload.
//
// Ownership: shares its payload. Thread-safety: immutable after construction.
#pragma once

#include <memory>
#include <string>

#include "smarthome/V3API/EventResponsePayload.h"

namespace smarthome {
namespace V3API {

class Event {
public:
    Event(std::string nameSpace, std::string name, std::shared_ptr<EventResponsePayload> payload);
    virtual ~Event() = default;

    [[nodiscard]] const std::string& getNamespace() const { return nameSpace; }
    [[nodiscard]] const std::string& getName() const { return name; }
    [[nodiscard]] std::shared_ptr<EventResponsePayload> getPayload() const { return payload; }

    // The envelope above as compact text.
    [[nodiscard]] virtual std::string toJson() const;

private:
    std::string nameSpace;
    std::string name;
    std::shared_ptr<EventResponsePayload> payload;
};

}  // namespace V3API
}  // namespace smarthome
