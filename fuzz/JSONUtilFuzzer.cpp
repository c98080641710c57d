// Parses arbitrary bytes through every JSON entry point and the getters.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "smarthome-host/HostPort.h"
#include "smarthome/CapJSONUtil.h"
#include "smarthome/JSONUtil.h"

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
    // Whatever parses and can be written (an infinite double cannot) writes back to text
    // that parses again to a value of the same type.
    // (Doubles need not survive the round trip bit for bit: the default parse is not
    // full-precision.)
    const std::string written = JSONUtil::getStringForJSON(doc);
    JSONDocument again;
    if (!written.empty() &&
        (JSONUtil::parse(again, written).IsError() || again.GetType() != doc.GetType())) {
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
