#include "V3API/LocalTime.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>

#include "testing/TestSupport.h"

namespace smarthome {
namespace V3API {
namespace {

// The conversion replaces mktime(tm_isdst = -1): it must give the same instant for every
// quarter hour of a year and more, in zones with and without daylight saving, with
// half-hour and 45-minute offsets, and transitions at odd hours (repeated and skipped hours
// included).
TEST(LocalTime, AgreesWithMktimeEveryQuarterHourInManyZones) {
    const char* const zones[] = {"UTC0",
                                 "CET-1CEST,M3.5.0,M10.5.0/3",
                                 "EST5EDT,M3.2.0,M11.1.0",
                                 "LHST-10:30LHDT-11,M10.1.0,M4.1.0",
                                 "<-03>3<-02>,M3.5.0/-2,M10.5.0/-1",
                                 "<+1245>-12:45<+1345>,M9.5.0/2:45,M4.1.0/3:45",
                                 "Europe/Berlin",
                                 "America/Sao_Paulo"};
    const char* saved = std::getenv("TZ");
    const std::string savedZone = saved != nullptr ? saved : "";
    const std::time_t start = 1735689600 - 3 * 86400;  // late December 2024
    for (const char* zone : zones) {
        setenv("TZ", zone, 1);
        tzset();
        int mismatches = 0;
        for (std::time_t t = start; t < start + 400 * 86400; t += 900) {
            std::tm wall{};
            gmtime_r(&t, &wall);  // any wall-clock reading, skipped and repeated ones included
            std::tm forMktime = wall;
            forMktime.tm_isdst = -1;
            const std::time_t expected = std::mktime(&forMktime);
            std::time_t converted = 0;
            if (!detail::localTimeToEpoch(wall, &converted) || converted != expected) {
                ADD_FAILURE() << zone << " at " << t << ": mktime " << expected << ", got "
                              << converted;
                if (++mismatches > 5) {
                    break;
                }
            }
        }
    }
    saved != nullptr ? setenv("TZ", savedZone.c_str(), 1) : unsetenv("TZ");
    tzset();
}

// A daemon runs for months: a changed zone is picked up without anyone calling tzset().
TEST(LocalTime, NoticesAChangedZoneWithinAboutASecond) {
    const char* saved = std::getenv("TZ");
    const std::string savedZone = saved != nullptr ? saved : "";
    setenv("TZ", "UTC0", 1);
    tzset();
    std::tm noon{};
    noon.tm_year = 126;
    noon.tm_mon = 0;
    noon.tm_mday = 15;
    noon.tm_hour = 12;
    std::time_t converted = 0;
    ASSERT_TRUE(detail::localTimeToEpoch(noon, &converted));
    const std::time_t inUtc = converted;
    setenv("TZ", "CET-1", 1);  // no tzset(): the conversion must notice by itself
    const auto deadline = std::chrono::steady_clock::now() + test::kTestTimeout;
    while (converted == inUtc && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));  // polling, not waiting
        ASSERT_TRUE(detail::localTimeToEpoch(noon, &converted));
    }
    EXPECT_EQ(converted, inUtc - 3600);
    saved != nullptr ? setenv("TZ", savedZone.c_str(), 1) : unsetenv("TZ");
    tzset();
}

}  // namespace
}  // namespace V3API
}  // namespace smarthome
