// Reads arbitrary bytes as an error report. Whatever reads writes back to text that reads
// again to an equal report.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "smarthome-host/HostPort.h"
#include "smarthome/V3API/ErrorReport.h"

using smarthome::JSONDocument;
using smarthome::JSONUtil;
using smarthome::V3API::ErrorReport;

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
    const auto report = ErrorReport::fromJson(document);
    if (!report) {
        return 0;
    }
    JSONDocument again;
    if (JSONUtil::parse(again, report->toJsonString()).IsError()) {
        std::abort();
    }
    const auto reread = ErrorReport::fromJson(again);
    if (!reread || !(*reread == *report)) {
        std::abort();
    }
    return 0;
}
