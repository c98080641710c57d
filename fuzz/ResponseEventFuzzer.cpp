// Builds a response event from arbitrary bytes: the first line is the directive's name, the
// second its namespace, the rest the payload text. The envelope is always a JSON object
// whose header carries the response's name and namespace, and the name follows the rules.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "smarthome/V3API/ResponseEvent.h"

using smarthome::JSONDocument;
using smarthome::JSONUtil;
using smarthome::V3API::Context;
using smarthome::V3API::ResponseEvent;

namespace {

std::string nextLine(std::string* rest) {
    const auto end = rest->find('\n');
    std::string line = rest->substr(0, end);
    rest->erase(0, end == std::string::npos ? rest->size() : end + 1);
    return line;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string rest(reinterpret_cast<const char*>(data), size);
    const std::string name = nextLine(&rest);
    const std::string nameSpace = nextLine(&rest);
    const auto event = ResponseEvent::create(
        rest, std::make_shared<Context>(nameSpace, name, "3", "token", "endpoint", "request"));
    JSONDocument envelope;
    if (JSONUtil::parse(envelope, event->toJson()).IsError() || !envelope.IsObject()) {
        std::abort();
    }
    const auto& header = envelope["event"]["header"];
    const auto text = [](const smarthome::JSONValue& value) {
        return std::string(value.GetString(), value.GetStringLength());
    };
    if (text(header["name"]) != event->getName() ||
        text(header["namespace"]) != event->getNamespace()) {
        std::abort();
    }
    const std::string& responseName = event->getName();
    if (name == "ReportState" ? responseName != "StateReport"
                              : responseName != "Response" && responseName != name + ".Response") {
        std::abort();
    }
    return 0;
}
