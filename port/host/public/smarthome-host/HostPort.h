// Hooks into the host port, for tests and for embedding the library off the device.
//
// The port hands every log message and every metric record to a sink. The default log
// sink prints one line per message to stderr in the device's host-log layout
// ("MM-DD HH:MM:SS.mmm   PID   TID L TAG     : text"), skipping messages below the
// priority named by SMARTHOME_LOG_LEVEL (v, d, i, w, e, f, s; default i). A sink
// installed here receives every message, whatever its priority.
//
// Thread-safety: all functions may be called from any thread. The port serialises the
// calls to a sink, so a sink never runs concurrently with itself; a sink must not log.
#pragma once

#include <functional>
#include <string>

namespace smarthome {
namespace port {

using LogSink = std::function<void(int priority, const std::string& tag, const std::string& text)>;

// Installs sink for every later message; an empty sink restores the default one.
void setLogSink(LogSink sink);

using MetricsSink =
    std::function<void(int priority, const std::string& program, const std::string& groupId,
                       const std::string& schemaId, int version, const std::string& record)>;

// Installs sink for every later metric record; an empty sink restores the default one.
void setMetricsSink(MetricsSink sink);

// Removes every system property (including those loaded from SMARTHOME_PROPERTIES).
void clearSystemProperties();

// Loads key=value lines into the property store, replacing present keys. Blank lines
// and lines starting with '#' are skipped; blanks around key and value are trimmed.
// Returns false when the file cannot be read.
bool loadSystemProperties(const std::string& path);

}  // namespace port
}  // namespace smarthome
