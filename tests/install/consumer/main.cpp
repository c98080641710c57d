// A program outside the library's tree, built against the installed package.
#include <smarthome-host/HostPort.h>
#include <smarthome/SmartHomeLogger.h>
#include <smarthome/StringUtils.h>

#include <cstdio>
#include <string>

int main() {
    std::string seen;
    smarthome::port::setLogSink(
        [&seen](int, const std::string& tag, const std::string& text) { seen = tag + "|" + text; });
    smarthome::SmartHomeLogger logger("Consumer");
    logger.i("%s:event=%s", "main", smarthome::StringUtils::trim("  started  ").c_str());
    if (seen != "SmartHome:Consumer|main:event=started") {
        std::fprintf(stderr, "unexpected log line: %s\n", seen.c_str());
        return 1;
    }
    return 0;
}
