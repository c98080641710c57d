#include "smarthome/SQLiteUtils.h"

#include <android/log.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include <cstdlib>

#include <string>
#include <vector>

#include "smarthome/DatabaseUtility.h"
#include "smarthome/FileIO.h"
#include "smarthome/SQLiteDatabase.h"
#include "smarthome/ThreadSafeSQLiteDatabase.h"
#include "testing/TestSupport.h"

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

// A missing table is a plain "no"; a file that is not a database fails every preparation
// with each function's own text.
TEST_F(SQLiteUtilsQueries, TableAndColumnQueriesOnMissingNamesAndUnreadableFiles) {
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open_v2(dir.file("q.db").c_str(), &db, SQLITE_OPEN_READWRITE, nullptr),
              SQLITE_OK);
    EXPECT_TRUE(tableExists(db, "t"));
    EXPECT_FALSE(tableExists(db, "T"));
    EXPECT_TRUE(columnExists(db, "t", "v"));
    EXPECT_FALSE(columnExists(db, "t", "V"));
    EXPECT_FALSE(columnExists(db, "missing", "v"));
    EXPECT_TRUE(dropTable(db, "missing"));
    EXPECT_TRUE(performQuery(db, "CREATE TABLE gone (a);"));
    EXPECT_TRUE(dropTable(db, "gone"));
    EXPECT_FALSE(tableExists(db, "gone"));
    EXPECT_TRUE(capture.texts(ANDROID_LOG_ERROR, kTag).empty());
    EXPECT_TRUE(closeSQLiteDatabase(db));

    ASSERT_TRUE(test::writeFile(dir.file("text.db"), std::string(4096, 'x')));
    db = openSQLiteDatabase(dir.file("text.db"));
    ASSERT_NE(db, nullptr);
    EXPECT_FALSE(tableExists(db, "t"));
    EXPECT_FALSE(columnExists(db, "t", "v"));
    EXPECT_FALSE(clearTable(db, "t"));
    EXPECT_FALSE(dropTable(db, "t"));
    EXPECT_FALSE(performQuery(db, "NOT SQL"));
    EXPECT_EQ(capture.texts(ANDROID_LOG_ERROR, kTag),
              (std::vector<std::string>{
                  "tableExists:error=tableExistsFailed, reason=Couldn'tCreateStatement",
                  "columnExists:error=columnExistsFailed, reason=Couldn'tCreateStatement",
                  "clearTable:error=clearTableFailed, reason=Couldn'tCreateStatement",
                  "dropTable:error=dropTableFailed, reason=Couldn'tCreateStatement",
                  "performQuery:error=performQueryFailed, query=NOT SQL, rcode=1, "
                  "errorMessage=near \"NOT\": syntax error"}));
    EXPECT_TRUE(closeSQLiteDatabase(db));
}

// Names that need quoting, each used as a table name and as its column's name, through
// every helper that puts a name into SQL, and through clearAllTablesFromDb.
TEST(SQLiteUtilsNames, AwkwardNamesAreQuotedEverywhere) {
    const std::vector<std::pair<std::string, std::string>> names = {
        {"order", "\"order\""},
        {"it's", "\"it's\""},
        {"say \"hi\"", "\"say \"\"hi\"\"\""},
        {"a b", "\"a b\""},
        {"Gerät 温度", "\"Gerät 温度\""},
    };
    test::TempDir dir;
    test::LogCapture capture;
    const std::string path = dir.file("names.db");
    auto shared = ThreadSafeSQLiteDatabase::getInstance(path);
    ASSERT_TRUE(shared->initialize());
    ASSERT_TRUE(
        shared->performQuery("CREATE TABLE plain (id INTEGER); INSERT INTO plain VALUES (1);"));
    for (const auto& [name, quoted] : names) {
        EXPECT_EQ(quoteSQLiteIdentifier(name), quoted);
        ASSERT_TRUE(shared->performQuery("CREATE TABLE " + quoted + " (" + quoted +
                                         " INTEGER); INSERT INTO " + quoted + " VALUES (5);"));
    }
    EXPECT_TRUE(shared->clearAllTablesFromDb());
    shared->close();

    auto database = SQLiteDatabase::create(path);
    ASSERT_TRUE(database->open());
    sqlite3* db = openSQLiteDatabase(path);
    ASSERT_NE(db, nullptr);
    for (const auto& [name, quoted] : names) {
        SCOPED_TRACE(name);
        int value = -1;
        EXPECT_TRUE(getNumberTableRows(database.get(), name, &value));
        EXPECT_EQ(value, 0);  // emptied by clearAllTablesFromDb
        EXPECT_TRUE(database->tableEmpty(name));
        ASSERT_TRUE(database->performQuery("INSERT INTO " + quoted + " VALUES (4), (17), (9);"));
        EXPECT_FALSE(database->tableEmpty(name));
        EXPECT_TRUE(getTableMaxIntValue(database.get(), name, name, &value));
        EXPECT_EQ(value, 17);
        EXPECT_TRUE(database->tableExists(name));
        EXPECT_TRUE(database->columnExists(name, name));
        EXPECT_TRUE(database->clearTable(name));
        EXPECT_TRUE(database->tableEmpty(name));
        EXPECT_TRUE(dropTable(db, name));
        EXPECT_FALSE(tableExists(db, name));
    }
    EXPECT_TRUE(closeSQLiteDatabase(db));
    database->close();
    for (const auto& line : capture.lines()) {
        EXPECT_NE(line.priority, ANDROID_LOG_ERROR) << line.text;
    }
}

TEST_F(SQLiteUtilsQueries, TableNamesAreAppendedAndLoggedColumnByColumn) {
    ASSERT_TRUE(database->performQuery("CREATE TABLE u (a); CREATE INDEX ix ON u (a);"));
    capture.clear();
    std::vector<std::string> names{"earlier"};
    sqlite3* db = openSQLiteDatabase(dir.file("q.db"));
    ASSERT_NE(db, nullptr);
    EXPECT_TRUE(getTableNames(db, names));
    EXPECT_EQ(names, (std::vector<std::string>{"earlier", "t", "u"}));  // no index
    EXPECT_EQ(capture.texts(ANDROID_LOG_DEBUG, kTag),
              (std::vector<std::string>{"getTableNames:colName=name, colValue=t",
                                        "getTableNames:colName=name, colValue=u"}));
    EXPECT_TRUE(closeSQLiteDatabase(db));
}

TEST(DatabaseUtility, CapabilityDatabasePathIsCreatedUnderTheSecuredStorage) {
    test::TempDir dir;
    test::LogCapture capture;
    const std::string base = dir.file("secured");
    setenv("SMARTHOME_SECURED_STORAGE_DIR", base.c_str(), 1);
    const mode_t previousMask = umask(0);  // so that the modes asked for are the modes seen
    EXPECT_EQ(DatabaseUtility::getCapInstanceDatabasePath("zigbee"),
              base + "/SmartHome/zigbee/CapabilityInstanceDatabase.db");
    umask(previousMask);
    for (const std::string& created : {base, base + "/SmartHome", base + "/SmartHome/zigbee"}) {
        struct stat info {};
        ASSERT_EQ(stat(created.c_str(), &info), 0) << created;
        EXPECT_TRUE(S_ISDIR(info.st_mode));
        EXPECT_EQ(info.st_mode & 07777, 0771u) << created;
    }
    EXPECT_FALSE(FileIO::fileExists(base + "/SmartHome/zigbee/CapabilityInstanceDatabase.db"));
    EXPECT_EQ(DatabaseUtility::getCapInstanceDatabasePath("zigbee"),
              base + "/SmartHome/zigbee/CapabilityInstanceDatabase.db");
    EXPECT_EQ(DatabaseUtility::getCapInstanceDatabasePath("ble"),
              base + "/SmartHome/ble/CapabilityInstanceDatabase.db");
    EXPECT_TRUE(capture.texts(ANDROID_LOG_ERROR, "SmartHome:DatabaseUtility").empty());
    unsetenv("SMARTHOME_SECURED_STORAGE_DIR");
}

TEST(DatabaseUtility, DirectoriesThatCannotBeCreatedGiveAnEmptyPath) {
    test::TempDir dir;
    test::LogCapture capture;
    ASSERT_TRUE(test::writeFile(dir.file("file"), "not a directory"));
    setenv("SMARTHOME_SECURED_STORAGE_DIR", dir.file("file/sub").c_str(), 1);
    EXPECT_EQ(DatabaseUtility::getCapInstanceDatabasePath("x"), "");
    // A plain file named SmartHome passes the existence test; its sub-directory fails.
    ASSERT_EQ(mkdir(dir.file("base").c_str(), 0700), 0);
    ASSERT_TRUE(test::writeFile(dir.file("base/SmartHome"), "not a directory"));
    setenv("SMARTHOME_SECURED_STORAGE_DIR", dir.file("base").c_str(), 1);
    EXPECT_EQ(DatabaseUtility::getCapInstanceDatabasePath("x"), "");
    unsetenv("SMARTHOME_SECURED_STORAGE_DIR");
    EXPECT_EQ(capture.texts(ANDROID_LOG_ERROR, "SmartHome:DatabaseUtility"),
              (std::vector<std::string>{
                  "getCapInstanceDatabasePath:event=dataSecuredStorageDirDoesNotExist,"
                  "action=cannotCreateDatabase,dir=" +
                      dir.file("file/sub"),
                  "getCapInstanceDatabasePath:event=cannotCreateDirectory,"
                  "action=cannotCreateDatabase,dirPath=" +
                      dir.file("base/SmartHome/x")}));
}

}  // namespace
}  // namespace smarthome
