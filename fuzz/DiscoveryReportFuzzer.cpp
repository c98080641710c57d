// Reads arbitrary bytes as a discovery report. Whatever reads without error writes back to
// text that reads again without error and writes back to the same text.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "smarthome-host/HostPort.h"
#include "smarthome/V3API/ReportEndpointsPayload.h"

using smarthome::JSONDocument;
using smarthome::JSONUtil;
using smarthome::V3API::ReportEndpointsPayload;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    smarthome::port::setLogSink([](int, const std::string&, const std::string&) {});
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    JSONDocument document;
    if (JSONUtil::parse(document, std::string(reinterpret_cast<const char*>(data), size))
            .IsError()) {
        return 0;
    }
    const auto payload = ReportEndpointsPayload::create(document);
    if (!payload) {
        std::abort();
    }
    if (payload->hasError()) {
        return 0;
    }
    const std::string written = payload->toJsonString();
    JSONDocument again;
    if (JSONUtil::parse(again, written).IsError()) {
        std::abort();
    }
    const auto reread = ReportEndpointsPayload::create(again);
    if (reread->hasError() || reread->toJsonString() != written) {
        std::abort();
    }
    return 0;
}
