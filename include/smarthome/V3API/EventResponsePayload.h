// The payload of an event answering a directive: the answer's payload text, the directive's
// context and a message id drawn from the platform's UUID generator at construction.
//
// Ownership: shares the context. Thread-safety: immutable after construction; the builders
// write only into the document they are given.
#pragma once

#include <memory>
#include <string>

#include "smarthome/JSONUtil.h"
#include "smarthome/V3API/Context.h"

namespace smarthome {
namespace V3API {

class EventResponsePayload {
public:
    // A null context reads as one whose strings are all empty.
    EventResponsePayload(std::string payload, std::shared_ptr<Context> context);

    [[nodiscard]] std::shared_ptr<Context> getContext() const { return context; }
    [[nodiscard]] const std::string& getMessageId() const { return messageId; }
    [[nodiscard]] const std::string& getPayload() const { return payload; }

    // Adds "namespace", "name", "messageId", "payloadVersion", "correlationToken" in this
    // order to document (made an empty object first when it is not an object): the
    // context's values and the message id.
    void buildHeader(JSONDocument& document) const;
    // Adds "endpointId" (the context's) to document, made an object as above.
    void buildEndpoint(JSONDocument& document) const;
    // The payload text as a JSON object copied into allocator; an empty object when the
    // text is not a JSON object.
    [[nodiscard]] JSONValue buildPayload(rapidjson::CrtAllocator& allocator) const;

private:
    std::string payload;
    std::shared_ptr<Context> context;
    std::string messageId;
};

}  // namespace V3API
}  // namespace smarthome
