// Helpers shared by the test suites: capture sinks for the port's log and metrics,
// a temporary directory, and the one generous timeout every wait uses.
#pragma once

#include <chrono>
#include <cstddef>
#include <mutex>
#include <string>
#include <vector>

namespace smarthome {
namespace test {

// Upper bound for any wait in a test: a wait that runs out fails the test, it never
// measures how fast something happened.
constexpr std::chrono::seconds kTestTimeout{30};

struct LogLine {
    int priority;
    std::string tag;
    std::string text;
};

// Installs itself as the port's log sink for its lifetime; restores the default sink
// when destroyed. Lines may arrive from any thread.
class LogCapture {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    std::vector<LogLine> lines() const;
    std::vector<std::string> texts() const;
    // Texts of the lines logged with tag at priority.
    std::vector<std::string> texts(int priority, const std::string& tag) const;
    void clear();

private:
    mutable std::mutex mutex_;
    std::vector<LogLine> lines_;
};

struct MetricRecord {
    int priority;
    std::string program;
    std::string groupId;
    std::string schemaId;
    int version;
    std::string record;
};

// Installs itself as the port's metrics sink for its lifetime.
class MetricsCapture {
public:
    MetricsCapture();
    ~MetricsCapture();
    MetricsCapture(const MetricsCapture&) = delete;
    MetricsCapture& operator=(const MetricsCapture&) = delete;

    std::vector<MetricRecord> records() const;
    void clear();

private:
    mutable std::mutex mutex_;
    std::vector<MetricRecord> records_;
};

// A fresh directory under the system's temporary directory, removed with its contents
// when the object is destroyed.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::string& path() const { return path_; }
    std::string file(const std::string& name) const { return path_ + "/" + name; }

private:
    std::string path_;
};

// Bytes the process's heap has handed out and not yet taken back (malloc's statistics, or
// the sanitizer allocator's under a sanitizer), for tests that bound what an object keeps.
size_t allocatedBytes();

// Writes text to path (binary), replacing it; returns false on failure.
bool writeFile(const std::string& path, const std::string& text);

}  // namespace test
}  // namespace smarthome
