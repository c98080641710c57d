// The event answering a directive, named and namespaced by the response rules:
// - name: "StateReport" for a "ReportState" directive, whatever its payload; otherwise
//   "Response" when the payload text is not a JSON object or is exactly "{}"; otherwise
//   the directive's name + ".Response";
// - namespace: the directive's when the payload text is a JSON object, otherwise "Tavra".
//
// Ownership: shares its payload. Thread-safety: immutable after construction.
#pragma once

#include <memory>
#include <string>

#include "smarthome/V3API/Event.h"

namespace smarthome {
namespace V3API {

class ResponseEvent : public Event {
public:
    ResponseEvent(std::string nameSpace, std::string name,
                  std::shared_ptr<EventResponsePayload> payload);

    // A null context reads as one whose strings are all empty.
    [[nodiscard]] static std::shared_ptr<ResponseEvent> create(const std::string& payload,
                                                               std::shared_ptr<Context> context);
    [[nodiscard]] static std::string getResponseName(const std::string& directiveName,
                                                     const std::string& payload);
    [[nodiscard]] static std::string getResponseNamespace(const std::string& directiveNamespace,
                                                          const std::string& payload);
};

}  // namespace V3API
}  // namespace smarthome
