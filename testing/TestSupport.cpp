#include "testing/TestSupport.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define SMARTHOME_TEST_UNDER_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define SMARTHOME_TEST_UNDER_SANITIZER 1
#endif
#endif
#ifdef SMARTHOME_TEST_UNDER_SANITIZER
// Provided by every sanitizer runtime (g++ does not install the header that declares it).
extern "C" size_t __sanitizer_get_current_allocated_bytes();
#else
#include <malloc.h>
#endif

#include <stdlib.h>

#include <filesystem>
#include <fstream>

#include "smarthome-host/HostPort.h"

namespace smarthome {
namespace test {

LogCapture::LogCapture() {
    port::setLogSink([this](int priority, const std::string& tag, const std::string& text) {
        std::lock_guard<std::mutex> lock(mutex_);
        lines_.push_back({priority, tag, text});
    });
}

LogCapture::~LogCapture() {
    port::setLogSink(nullptr);
}

std::vector<LogLine> LogCapture::lines() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return lines_;
}

std::vector<std::string> LogCapture::texts() const {
    std::lock_guard<std::mutex> lock(mutex_);
    std::vector<std::string> result;
    for (const auto& line : lines_) {
        result.push_back(line.text);
    }
    return result;
}

std::vector<std::string> LogCapture::texts(int priority, const std::string& tag) const {
    std::lock_guard<std::mutex> lock(mutex_);
    std::vector<std::string> result;
    for (const auto& line : lines_) {
        if (line.priority == priority && line.tag == tag) {
            result.push_back(line.text);
        }
    }
    return result;
}

void LogCapture::clear() {
    std::lock_guard<std::mutex> lock(mutex_);
    lines_.clear();
}

MetricsCapture::MetricsCapture() {
    port::setMetricsSink([this](int priority, const std::string& program,
                                const std::string& groupId, const std::string& schemaId,
                                int version, const std::string& record) {
        std::lock_guard<std::mutex> lock(mutex_);
        records_.push_back({priority, program, groupId, schemaId, version, record});
    });
}

MetricsCapture::~MetricsCapture() {
    port::setMetricsSink(nullptr);
}

std::vector<MetricRecord> MetricsCapture::records() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return records_;
}

void MetricsCapture::clear() {
    std::lock_guard<std::mutex> lock(mutex_);
    records_.clear();
}

TempDir::TempDir() {
    std::string pattern =
        (std::filesystem::temp_directory_path() / "smarthome-test-XXXXXX").string();
    char* made = mkdtemp(&pattern[0]);
    path_ = made != nullptr ? std::string(made) : std::string();
}

TempDir::~TempDir() {
    if (!path_.empty()) {
        std::error_code ignored;
        std::filesystem::permissions(path_, std::filesystem::perms::owner_all,
                                     std::filesystem::perm_options::add, ignored);
        std::filesystem::remove_all(path_, ignored);
    }
}

bool writeFile(const std::string& path, const std::string& text) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << text;
    return static_cast<bool>(out);
}

size_t allocatedBytes() {
#ifdef SMARTHOME_TEST_UNDER_SANITIZER
    return __sanitizer_get_current_allocated_bytes();
#else
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
#endif
}

}  // namespace test
}  // namespace smarthome
