#include <gtest/gtest.h>
#include <ostrellog/metrics_log.h>

#include <cstdlib>
#include <string>

#include "smarthome/port/PlatformPaths.h"
#include "testing/TestSupport.h"

namespace smarthome {
namespace {

TEST(HostMetrics, RecordsReachTheSinkWithTheirRoutingFieldsUncut) {
    test::MetricsCapture capture;
    std::string longRecord(3000, 'm');
    EXPECT_EQ(
        __metrics_log_print_v2(4, "SmartHome", "grp", "schema", 100, "%s", longRecord.c_str()), 1);
    auto records = capture.records();
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].priority, 4);
    EXPECT_EQ(records[0].program, "SmartHome");
    EXPECT_EQ(records[0].groupId, "grp");
    EXPECT_EQ(records[0].schemaId, "schema");
    EXPECT_EQ(records[0].version, 100);
    EXPECT_EQ(records[0].record, longRecord);
}

TEST(HostPlatformPaths, SecuredStorageHonoursTheHostOverride) {
    unsetenv("SMARTHOME_SECURED_STORAGE_DIR");
    EXPECT_EQ(port::securedStorageBaseDir(), "/data/securedStorageLocation");
    setenv("SMARTHOME_SECURED_STORAGE_DIR", "/tmp/secured", 1);
    EXPECT_EQ(port::securedStorageBaseDir(), "/tmp/secured");
    setenv("SMARTHOME_SECURED_STORAGE_DIR", "", 1);
    EXPECT_EQ(port::securedStorageBaseDir(), "/data/securedStorageLocation");
    unsetenv("SMARTHOME_SECURED_STORAGE_DIR");
}

}  // namespace
}  // namespace smarthome
