// Host implementation of the metrics entry point: formats the record and hands it,
// with its routing fields, to the current metrics sink under one lock.
#include <ostrellog/metrics_log.h>

#include <cstdarg>
#include <cstdio>
#include <string>
#include <utility>

#include "base/Mutex.h"
#include "smarthome-host/HostPort.h"

namespace {

// Records are not cut: a metric with many data points may exceed any fixed buffer.
std::string formatRecord(const char* fmt, va_list ap) {
    char small[512];
    va_list copy;
    va_copy(copy, ap);
    int needed = std::vsnprintf(small, sizeof(small), fmt, copy);
    va_end(copy);
    if (needed < 0) {
        return {};
    }
    if (static_cast<size_t>(needed) < sizeof(small)) {
        return std::string(small, static_cast<size_t>(needed));
    }
    std::string record(static_cast<size_t>(needed) + 1, '\0');
    std::vsnprintf(&record[0], record.size(), fmt, ap);
    record.resize(static_cast<size_t>(needed));
    return record;
}

const char* orEmpty(const char* text) {
    return text != nullptr ? text : "";
}

class MetricsDispatcher {
public:
    static MetricsDispatcher& instance() {
        // Leaked on purpose: metrics may be emitted during static destruction.
        static MetricsDispatcher* dispatcher = new MetricsDispatcher();
        return *dispatcher;
    }

    void setSink(smarthome::port::MetricsSink sink) {
        smarthome::detail::MutexLock lock(mutex_);
        sink_ = std::move(sink);
    }

    void dispatch(int priority, const char* program, const char* groupId, const char* schemaId,
                  int version, const char* record) {
        smarthome::detail::MutexLock lock(mutex_);
        if (sink_) {
            sink_(priority, program, groupId, schemaId, version, record);
            return;
        }
        std::fprintf(stderr,
                     "metric priority=%d program=%s groupId=%s schemaId=%s version=%d: %s\n",
                     priority, program, groupId, schemaId, version, record);
    }

private:
    smarthome::detail::Mutex mutex_;
    smarthome::port::MetricsSink sink_ SH_GUARDED_BY(mutex_);
};

}  // namespace

namespace smarthome {
namespace port {

void setMetricsSink(MetricsSink sink) {
    MetricsDispatcher::instance().setSink(std::move(sink));
}

}  // namespace port
}  // namespace smarthome

extern "C" int __metrics_log_print_v2(int priority, const char* program, const char* groupId,
                                      const char* schemaId, int version, const char* fmt, ...) {
    std::string record;
    if (fmt != nullptr) {
        va_list ap;
        va_start(ap, fmt);
        record = formatRecord(fmt, ap);
        va_end(ap);
    }
    MetricsDispatcher::instance().dispatch(priority, orEmpty(program), orEmpty(groupId),
                                           orEmpty(schemaId), version, record.c_str());
    return 1;
}
