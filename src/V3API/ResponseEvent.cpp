#include "smarthome/V3API/ResponseEvent.h"

#include <utility>

namespace smarthome {
namespace V3API {

namespace {

bool isJsonObject(const std::string& text) {
    JSONDocument document;
    return !JSONUtil::parse(document, text).IsError() && document.IsObject();
}

}  // namespace

ResponseEvent::ResponseEvent(std::string nameSpace, std::string name,
                             std::shared_ptr<EventResponsePayload> payload)
    : Event(std::move(nameSpace), std::move(name), std::move(payload)) {}

std::shared_ptr<ResponseEvent> ResponseEvent::create(const std::string& payload,
                                                     std::shared_ptr<Context> context) {
    if (!context) {
        context = std::make_shared<Context>("", "", "", "", "", "");
    }
    std::string name = getResponseName(context->getName(), payload);
    std::string nameSpace = getResponseNamespace(context->getNamespace(), payload);
    return std::make_shared<ResponseEvent>(
        std::move(nameSpace), std::move(name),
        std::make_shared<EventResponsePayload>(payload, std::move(context)));
}

std::string ResponseEvent::getResponseName(const std::string& directiveName,
                                           const std::string& payload) {
    if (directiveName == "ReportState") {
        return "StateReport";
    }
    if (!isJsonObject(payload) || payload == "{}") {
        return "Response";
    }
    return directiveName + "." + "Response";
}

std::string ResponseEvent::getResponseNamespace(const std::string& directiveNamespace,
                                                const std::string& payload) {
    return isJsonObject(payload) ? directiveNamespace : "Tavra";
}

}  // namespace V3API
}  // namespace smarthome
