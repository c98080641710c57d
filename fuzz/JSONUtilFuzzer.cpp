// Parses arbitrary bytes through every JSON entry point; whatever parses must write back
// to text that parses to the same text again.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "smarthome/CapJSONUtil.h"
#include "smarthome/JSONUtil.h"
#include "smarthome/port/HostPort.h"

using smarthome::CapJSONUtil;
using smarthome::JSONDocument;
using smarthome::JSONUtil;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    // The capability helpers log every miss; keep the fuzzer's output readable.
    smarthome::port::setLogSink([](int, const std::string&, const std::string&) {});
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    auto object = JSONUtil::createFromString(text);
    auto array = JSONUtil::createArrayFromString(text);
    if (object != nullptr && array != nullptr) {
        std::abort();
    }
    JSONDocument doc;
    if (!JSONUtil::parseIntoValue(doc, text, nullptr)) {
        return 0;
    }
    const std::string written = JSONUtil::getStringForJSON(doc);
    JSONDocument again;
    if (!doc.IsNull() && (JSONUtil::parse(again, written).IsError() ||
                          JSONUtil::getStringForJSON(again) != written)) {
        std::abort();
    }
    bool found = false;
    JSONUtil::getOptionalValue(doc, "metadata");
    JSONUtil::getOptionalArray(doc, "endpoints");
    JSONUtil::validateAndGetValue(doc, "a", &found, JSONUtil::DEFAULT_VALUE, nullptr);
    JSONUtil::validateAndGetArray(doc, "a", &found, JSONUtil::DEFAULT_VALUE, nullptr);
    CapJSONUtil::isRetrievable(doc);
    CapJSONUtil::isProactive(doc);
    return 0;
}
