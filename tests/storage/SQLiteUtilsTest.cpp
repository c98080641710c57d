#include "smarthome/SQLiteUtils.h"

#include <android/log.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include <cstdlib>

#include <string>
#include <vector>

#include "smarthome/DatabaseUtility.h"
#include "smarthome/SQLiteDatabase.h"
#include "support/TestSupport.h"

namespace smarthome {
namespace {

const char kTag[] = "SmartHome:SQLiteUtils";

TEST(SQLiteUtils, CreateRefusesExistingFilesAndOpenRefusesMissingOnes) {
    test::TempDir dir;
    test::LogCapture capture;
    const std::string path = dir.file("a.db");
    sqlite3* db = createSQLiteDatabase(path);
    ASSERT_NE(db, nullptr);
    EXPECT_TRUE(performQuery(db, "CREATE TABLE t (id INTEGER);"));
    EXPECT_TRUE(closeSQLiteDatabase(db));
    EXPECT_EQ(createSQLiteDatabase(path), nullptr);
    EXPECT_EQ(openSQLiteDatabase(dir.file("missing.db")), nullptr);
    struct stat none {};
    EXPECT_NE(stat(dir.file("missing.db").c_str(), &none), 0);
    db = openSQLiteDatabase(path);
    ASSERT_NE(db, nullptr);
    EXPECT_TRUE(tableExists(db, "t"));
    EXPECT_TRUE(closeSQLiteDatabase(db));
    EXPECT_TRUE(closeSQLiteDatabase(nullptr));
    EXPECT_EQ(openSQLiteDatabaseHelper(dir.path() + "/no/such/dir.db", SQLITE_OPEN_READWRITE),
              nullptr);
    auto lines = capture.texts(ANDROID_LOG_ERROR, kTag);
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0],
              "createSQLiteDatabase:error=createSQLiteDatabaseFailed, "
              "reason=FileAlreadyExists, file=" +
                  path);
    EXPECT_EQ(lines[1],
              "openSQLiteDatabase:error=openSQLiteDatabaseFailed, "
              "reason=FileCouldn'tBeFound, file=" +
                  dir.file("missing.db"));
    EXPECT_EQ(lines[2],
              "closeSQLiteDatabase:error=closeSQLiteDatabaseFailed, "
              "reason=NullptrDbHandle");
    EXPECT_EQ(lines[3].rfind("openSQLiteDatabaseHelper:error=openSQLiteDatabaseHelperFailed, "
                             "reason=CouldNotOpenDatabase, rcode=14, filePath=" +
                                 dir.path() + "/no/such/dir.dberrorMessage=",
                             0),
              0u);
}

class SQLiteUtilsQueries : public testing::Test {
protected:
    void SetUp() override {
        database = SQLiteDatabase::create(dir.file("q.db"));
        ASSERT_TRUE(database->initialize());
        ASSERT_TRUE(database->performQuery("CREATE TABLE t (id INTEGER, v TEXT);"));
        capture.clear();
    }
    void TearDown() override { database->close(); }

    test::TempDir dir;
    test::LogCapture capture;
    std::shared_ptr<SQLiteDatabase> database;
};

TEST_F(SQLiteUtilsQueries, RowCountsAndMaximaIncludingTheEmptyTable) {
    int value = -1;
    EXPECT_TRUE(getTableMaxIntValue(database.get(), "t", "id", &value));
    EXPECT_EQ(value, 0);
    EXPECT_TRUE(database->performQuery("INSERT INTO t VALUES (4, 'a'), (17, 'b'), (9, 'c');"));
    EXPECT_TRUE(getTableMaxIntValue(database.get(), "t", "id", &value));
    EXPECT_EQ(value, 17);
    EXPECT_TRUE(getNumberTableRows(database.get(), "t", &value));
    EXPECT_EQ(value, 3);
    EXPECT_FALSE(getTableMaxIntValue(database.get(), "t", "v", &value));
    EXPECT_FALSE(getNumberTableRows(nullptr, "t", &value));
    EXPECT_FALSE(getNumberTableRows(database.get(), "t", nullptr));
    EXPECT_FALSE(getNumberTableRows(database.get(), "missing", &value));
    EXPECT_FALSE(getTableMaxIntValue(nullptr, "t", "id", &value));
    EXPECT_FALSE(getTableMaxIntValue(database.get(), "t", "id", nullptr));
    EXPECT_FALSE(getTableMaxIntValue(database.get(), "t", "nope", &value));
    EXPECT_EQ(capture.texts(ANDROID_LOG_ERROR, kTag),
              (std::vector<std::string>{
                  "getTableMaxIntValue:error=getTableMaxIntValueFailed, reason=StringToIntFailed, "
                  "rows=c",
                  "getNumberTableRows:error=getNumberTableRowsFailed, reason=NullptrDb",
                  "getNumberTableRows:error=getNumberTableRowsFailed, reason=NullptrNumberOfRows",
                  "getNumberTableRows:error=getNumberTableRowsFailed, "
                  "reason=Couildn'tCreateStatement",
                  "getTableMaxIntValue:error=getTableMaxIntValue, ,reason=NullptrDb",
                  "getTableMaxIntValue:error=getMaxIntFailed, ,reason=NullptrMaxInt",
                  "getTableMaxIntValue:error=getTableMaxIntValueFailed, "
                  "reason=Couildn'tCreateStatement"}));
}

TEST_F(SQLiteUtilsQueries, NullHandlesFailWithTheirOwnTexts) {
    std::vector<std::string> names;
    EXPECT_FALSE(getTableNames(nullptr, names));
    EXPECT_FALSE(tableExists(nullptr, "t"));
    EXPECT_FALSE(columnExists(nullptr, "t", "id"));
    EXPECT_FALSE(clearTable(nullptr, "t"));
    EXPECT_FALSE(dropTable(nullptr, "t"));
    EXPECT_FALSE(performQuery(nullptr, "SELECT 1;"));
    EXPECT_EQ(capture.texts(ANDROID_LOG_ERROR, kTag),
              (std::vector<std::string>{
                  "getTableNames:error=tableExistsFailed, reason=nullptrDbHandle",
                  "tableExists:error=tableExistsFailed, reason=nullptrDbHandle",
                  "columnExists:error=columnExistsFailed, reason=nullptrDbHandle",
                  "clearTable:error=clearTableFailed, reason=nullptrDbHandle",
                  "dropTable:error=dropTableFailed, reason=nullptrDbHandle",
                  "performQuery:error=performQueryFailed, reason=NullptrDbHandle"}));
}

TEST(DatabaseUtility, CapabilityDatabasePathIsCreatedUnderTheSecuredStorage) {
    test::TempDir dir;
    test::LogCapture capture;
    const std::string base = dir.file("secured");
    setenv("SMARTHOME_SECURED_STORAGE_DIR", base.c_str(), 1);
    EXPECT_EQ(DatabaseUtility::getCapInstanceDatabasePath("zigbee"),
              base + "/SmartHome/zigbee/CapabilityInstanceDatabase.db");
    struct stat info {};
    ASSERT_EQ(stat((base + "/SmartHome/zigbee").c_str(), &info), 0);
    EXPECT_TRUE(S_ISDIR(info.st_mode));
    EXPECT_EQ(DatabaseUtility::getCapInstanceDatabasePath("zigbee"),
              base + "/SmartHome/zigbee/CapabilityInstanceDatabase.db");
    ASSERT_TRUE(test::writeFile(dir.file("file"), "not a directory"));
    setenv("SMARTHOME_SECURED_STORAGE_DIR", dir.file("file/sub").c_str(), 1);
    capture.clear();
    EXPECT_EQ(DatabaseUtility::getCapInstanceDatabasePath("x"), "");
    EXPECT_EQ(capture.texts(ANDROID_LOG_ERROR, "SmartHome:DatabaseUtility"),
              std::vector<std::string>{
                  "getCapInstanceDatabasePath:event=dataSecuredStorageDirDoesNotExist,"
                  "action=cannotCreateDatabase,dir=" +
                  dir.file("file/sub")});
    unsetenv("SMARTHOME_SECURED_STORAGE_DIR");
}

}  // namespace
}  // namespace smarthome
