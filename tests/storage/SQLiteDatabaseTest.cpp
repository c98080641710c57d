#include "smarthome/SQLiteDatabase.h"

#include <android/log.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <climits>
#include <functional>
#include <string>
#include <vector>

#include "smarthome/FileIO.h"
#include "smarthome/SQLiteUtils.h"
#include "storage/StorageTestSupport.h"
#include "testing/TestSupport.h"

namespace smarthome {
namespace {

const char kDatabaseTag[] = "SmartHome:SQLiteDatabase";
const char kStatementTag[] = "SmartHome:SQLiteStatement";

class SQLiteDatabaseTest : public testing::Test {
protected:
    void SetUp() override {
        database = SQLiteDatabase::create(dir.file("test.db"));
        ASSERT_TRUE(database->initialize());
        ASSERT_TRUE(database->performQuery("CREATE TABLE t (id INTEGER, name TEXT);"));
        capture.clear();
    }
    void TearDown() override { database->close(); }

    int count() {
        auto statement = database->createStatement("SELECT count(*) FROM t;");
        EXPECT_TRUE(statement && statement->step());
        return statement ? statement->getColumnInt(0) : -1;
    }
    void insert(int id) {
        ASSERT_TRUE(
            database->performQuery("INSERT INTO t VALUES (" + std::to_string(id) + ", 'n');"));
    }

    test::TempDir dir;
    test::LogCapture capture;
    std::shared_ptr<SQLiteDatabase> database;
};

TEST_F(SQLiteDatabaseTest, InitializeCreatesOnlyAndOpenOpensOnly) {
    struct stat info {};
    ASSERT_EQ(stat(dir.file("test.db").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0777u);
    EXPECT_FALSE(database->initialize());
    EXPECT_FALSE(database->open());
    database->close();
    EXPECT_FALSE(database->isDatabaseReady());
    EXPECT_FALSE(database->initialize());
    EXPECT_TRUE(database->open());

    SQLiteDatabase missing(dir.file("missing.db"));
    EXPECT_FALSE(missing.open());
    struct stat none {};
    EXPECT_NE(stat(dir.file("missing.db").c_str(), &none), 0);
    EXPECT_EQ(capture.texts(ANDROID_LOG_DEBUG, kDatabaseTag),
              (std::vector<std::string>{
                  "initialize:status=DatabaseAlreadyOpen", "open:status=DatabaseAlreadyOpen",
                  "initialize:status=FileAlreadyExists, filePath=" + dir.file("test.db"),
                  "open:status=FileDoesNotExist, filePath=" + dir.file("missing.db")}));
}

TEST_F(SQLiteDatabaseTest, StatementsBindStepAndReadColumns) {
    auto insertStatement = database->createStatement("INSERT INTO t VALUES (?, ?);");
    ASSERT_TRUE(insertStatement);
    for (int i = 0; i < 3; ++i) {
        std::string name = "name" + std::to_string(i);
        ASSERT_TRUE(insertStatement->bindIntParameter(1, i));
        ASSERT_TRUE(insertStatement->bindStringParameter(2, name));
        name.assign("clobbered");  // the statement keeps its own copy
        ASSERT_TRUE(insertStatement->step());
        EXPECT_EQ(insertStatement->getStepResult(), 101);
        ASSERT_TRUE(insertStatement->reset());
    }
    ASSERT_TRUE(insertStatement->bindIntParameter(1, 8));
    ASSERT_TRUE(insertStatement->bindStringParameter(2, std::string("cut\0off", 7)));
    ASSERT_TRUE(insertStatement->step());
    ASSERT_TRUE(database->performQuery("INSERT INTO t VALUES (9, NULL);"));
    auto select = database->createStatement("SELECT id, name FROM t ORDER BY id;");
    ASSERT_TRUE(select);
    EXPECT_EQ(select->getColumnCount(), 2);
    EXPECT_EQ(select->getColumnName(1), "name");
    std::vector<std::string> names;
    while (select->step() && select->getStepResult() == 100) {
        names.push_back(select->getColumnText(1));
    }
    EXPECT_EQ(names, (std::vector<std::string>{"name0", "name1", "name2", "cut", ""}));
    EXPECT_EQ(select->getColumnInt64(0), 0);  // after the end: SQLite's neutral value
}

TEST_F(SQLiteDatabaseTest, BadStatementsAndPositionsFailWithTheirLines) {
    EXPECT_EQ(database->createStatement("SELEC nonsense"), nullptr);
    auto statement = database->createStatement("SELECT id FROM t WHERE id = ?;");
    ASSERT_TRUE(statement);
    EXPECT_FALSE(statement->bindIntParameter(0, 1));
    EXPECT_FALSE(statement->bindInt64Parameter(-1, 1));
    EXPECT_FALSE(statement->bindStringParameter(0, "x"));
    EXPECT_FALSE(statement->bindIntParameter(2, 1));
    EXPECT_FALSE(statement->bindStringParameter(5, "x"));
    EXPECT_EQ(statement->getColumnText(-1), "");
    EXPECT_EQ(statement->getColumnInt(-1), 0);
    EXPECT_EQ(statement->getColumnInt64(-2), 0);
    EXPECT_EQ(statement->getColumnName(-1), "");
    EXPECT_EQ(statement->getColumnText(7), "");
    SQLiteStatement invalid(nullptr, "SELECT 1;");
    EXPECT_FALSE(invalid.isValid());
    EXPECT_FALSE(invalid.step());
    invalid.finalize();
    auto lines = capture.texts(ANDROID_LOG_ERROR, kStatementTag);
    ASSERT_EQ(lines.size(), 12u);
    EXPECT_EQ(lines[0].rfind("SQLiteStatement:error=constructorFailed, reason=Could not create "
                             "prepared statement, rcode=1errorMessage=near \"SELEC\"",
                             0),
              0u);
    EXPECT_EQ(lines[1], "bindIntParameter:error=bindIntParameterFailed, reason=invalidPosition");
    EXPECT_EQ(lines[2],
              "bindInt64Parameter:error=bindInt64ParameterFailed, reason=invalidPosition");
    EXPECT_EQ(lines[3],
              "bindStringParameter:error=bindStringParameterFailed, reason=invalidPosition");
    EXPECT_EQ(lines[4], "bindIntParameter:error=bindIntParameterFailed, rcode=25");
    EXPECT_EQ(lines[5], "bindStringParameter:error=bindInt64ParameterFailed, rcode=25");
    EXPECT_EQ(lines[6], "getColumnText:error=getColumnTextFailed, reason=invalidPosition");
    EXPECT_EQ(lines[7], "getColumnInt:error=getColumnIntFailed, reason=invalidPosition");
    EXPECT_EQ(lines[8], "getColumnInt64:error=getColumnInt64Failed, reason=invalidPosition");
    EXPECT_EQ(lines[9], "getColumnName:error=getColumnNameFailed, reason=invalidPosition");
    EXPECT_EQ(lines[10],
              "SQLiteStatement:error=constructorFailed, reason=Could not create "
              "prepared statement, rcode=21errorMessage=out of memory");
    EXPECT_EQ(lines[11], "step:error=StepInvalid");
    EXPECT_EQ(capture.texts(ANDROID_LOG_ERROR, kDatabaseTag),
              std::vector<std::string>{
                  "createStatement:error=createStatementFailed, sqlString=SELEC nonsense"});
}

TEST_F(SQLiteDatabaseTest, TransactionsCommitRollBackAndRollBackOnScopeExit) {
    {
        auto transaction = database->beginTransaction();
        ASSERT_TRUE(transaction);
        EXPECT_EQ(database->beginTransaction(), nullptr);
        insert(1);
        EXPECT_TRUE(transaction->commit());
        EXPECT_FALSE(transaction->commit());
        EXPECT_FALSE(transaction->rollback());
    }
    {
        auto transaction = database->beginTransaction();
        ASSERT_TRUE(transaction);
        insert(2);
    }  // rolled back
    {
        auto transaction = database->beginTransaction();
        insert(3);
        EXPECT_TRUE(transaction->rollback());
    }
    EXPECT_EQ(count(), 1);
    EXPECT_FALSE(database->commitTransaction());
    EXPECT_FALSE(database->rollbackTransaction());
    EXPECT_EQ(capture.texts(ANDROID_LOG_ERROR, kDatabaseTag),
              (std::vector<std::string>{
                  "beginTransaction:error=beginTransactionFailed, "
                  "reason=OneTransactionAlreadyinProgress",
                  "commit:error=commitFailed, reason=TransactionAlreadyCompleted",
                  "rollback:error=rollbackFailed, reason=TransactionAlreadyCompleted",
                  "~Transaction:error=TransactionFailedToComplete, action=Rollback",
                  "commitTransaction:error=commitTransactionFailed, reason=NoTransactionInProgress",
                  "rollbackTransaction:error=rollbackTransactionFailed, "
                  "reason=NoTransactionInProgress"}));
}

TEST_F(SQLiteDatabaseTest, ATransactionOutlivingItsDatabaseReportsIt) {
    auto transaction = database->beginTransaction();
    ASSERT_TRUE(transaction);
    database->close();
    capture.clear();
    database.reset();  // destroyed closed but inside a transaction
    EXPECT_FALSE(transaction->commit());
    transaction.reset();
    auto lines = capture.texts(ANDROID_LOG_ERROR, kDatabaseTag);
    ASSERT_GE(lines.size(), 4u);
    EXPECT_EQ(lines[0], "~SQLiteDatabase:reason=IncompleteTransaction, action=RollBack.");
    EXPECT_EQ(lines[1], "rollbackTransaction:error=rollbackTransactionFailed, reason=QueryFailed");
    EXPECT_EQ(lines[2], "commit:error=commitFailed, reason=DatabaseAlreadyFinalized");
    EXPECT_EQ(lines[3], "~Transaction:error=TransactionFailedToComplete, action=Rollback");
    database = SQLiteDatabase::create(dir.file("test.db"));
}

TEST_F(SQLiteDatabaseTest, TableEmptyAnswersOnlyForAnOpenDatabase) {
    EXPECT_TRUE(database->tableEmpty("t"));
    insert(1);
    EXPECT_FALSE(database->tableEmpty("t"));
    database->close();
    capture.clear();
    EXPECT_FALSE(database->tableEmpty("t"));
    EXPECT_EQ(capture.texts(ANDROID_LOG_ERROR, kDatabaseTag),
              std::vector<std::string>{"tableEmpty:error=tableEmpty, reason=DatabaseJustOpened"});
    EXPECT_TRUE(database->isDatabaseReady());
    EXPECT_FALSE(database->tableEmpty("t"));
    EXPECT_FALSE(database->tableEmpty("missing"));
}

TEST_F(SQLiteDatabaseTest, TableQueriesAndTheirMisses) {
    std::vector<std::string> names{"kept"};
    EXPECT_TRUE(database->getTableNames(names));
    EXPECT_EQ(names, (std::vector<std::string>{"kept", "t"}));
    EXPECT_TRUE(database->tableExists("t"));
    EXPECT_FALSE(database->tableExists("u"));
    EXPECT_TRUE(database->columnExists("t", "name"));
    EXPECT_FALSE(database->columnExists("t", "Name"));
    insert(1);
    EXPECT_TRUE(database->clearTable("t"));
    EXPECT_EQ(count(), 0);
    EXPECT_FALSE(database->clearTable("u"));
    EXPECT_FALSE(database->performQuery("NOT SQL"));
    auto debug = capture.texts(ANDROID_LOG_DEBUG, kDatabaseTag);
    EXPECT_EQ(debug, (std::vector<std::string>{
                         "tableExists:reason=tableDoesn'tExist or ErrorInChecking, table=u",
                         "columnExists:reason=columnDoesn'tExist or ErrorInChecking, table=t, "
                         "column=Name",
                         "performQuery:error=performQueryFailed, SQL string"}));
}

TEST_F(SQLiteDatabaseTest, FailedStepsAndResetsReportSQLitesCode) {
    ASSERT_TRUE(database->performQuery("CREATE TABLE u (id INTEGER PRIMARY KEY);"));
    ASSERT_TRUE(database->performQuery("INSERT INTO u VALUES (1);"));
    capture.clear();
    auto statement = database->createStatement("INSERT INTO u VALUES (?);");
    ASSERT_TRUE(statement);
    ASSERT_TRUE(statement->bindIntParameter(1, 1));
    EXPECT_FALSE(statement->step());
    EXPECT_EQ(statement->getStepResult(), 19);  // SQLITE_CONSTRAINT
    EXPECT_FALSE(statement->reset());           // reset reports the failed step again
    ASSERT_TRUE(statement->bindIntParameter(1, 2));
    EXPECT_TRUE(statement->step());
    EXPECT_TRUE(statement->reset());
    EXPECT_EQ(capture.texts(ANDROID_LOG_ERROR, kStatementTag),
              (std::vector<std::string>{
                  "step:error=stepFailed, reason=Executing the select did not generate a row or "
                  "completeresult=19",
                  "reset:error=stepFailed, reason=Could not reset the prepared statement, "
                  "rcode=19"}));
}

// An invalid statement is safe to use: SQLite's own answer (or a neutral value) comes back.
TEST_F(SQLiteDatabaseTest, AnInvalidStatementAnswersWithoutCrashing) {
    SQLiteStatement invalid(nullptr, "SELECT 1;");
    capture.clear();
    EXPECT_EQ(invalid.getColumnCount(), 0);
    EXPECT_EQ(invalid.getColumnName(0), "");
    EXPECT_EQ(invalid.getColumnText(0), "");
    EXPECT_EQ(invalid.getColumnInt(0), 0);
    EXPECT_EQ(invalid.getColumnInt64(3), 0);
    EXPECT_TRUE(invalid.reset());
    EXPECT_FALSE(invalid.bindIntParameter(1, 1));
    EXPECT_FALSE(invalid.bindStringParameter(1, "x"));
    EXPECT_EQ(
        capture.texts(ANDROID_LOG_ERROR, kStatementTag),
        (std::vector<std::string>{"bindIntParameter:error=bindIntParameterFailed, rcode=21",
                                  "bindStringParameter:error=bindInt64ParameterFailed, rcode=21"}));
    auto empty = database->createStatement("  -- nothing to run");
    EXPECT_EQ(empty, nullptr);
}

// A failed COMMIT keeps the database's transaction open while the Transaction object counts
// as completed: only a rollback through the database ends it.
TEST_F(SQLiteDatabaseTest, AFailedCommitLeavesTheTransactionToRollBack) {
    ASSERT_TRUE(database->performQuery(
        "PRAGMA foreign_keys = ON; CREATE TABLE parent (id INTEGER PRIMARY KEY);"
        "CREATE TABLE child (parent INTEGER REFERENCES parent(id) DEFERRABLE INITIALLY "
        "DEFERRED);"));
    capture.clear();
    auto transaction = database->beginTransaction();
    ASSERT_TRUE(transaction);
    ASSERT_TRUE(database->performQuery("INSERT INTO child VALUES (42);"));
    insert(5);
    EXPECT_FALSE(transaction->commit());
    EXPECT_FALSE(transaction->commit());
    EXPECT_EQ(database->beginTransaction(), nullptr);
    EXPECT_TRUE(database->rollbackTransaction());
    EXPECT_EQ(count(), 0);
    transaction.reset();  // completed: no rollback line
    EXPECT_EQ(capture.texts(ANDROID_LOG_ERROR, kDatabaseTag),
              (std::vector<std::string>{
                  "commitTransaction:error=commitTransactionFailed, reason=QueryFailed",
                  "commit:error=commitFailed, reason=TransactionAlreadyCompleted",
                  "beginTransaction:error=beginTransactionFailed, "
                  "reason=OneTransactionAlreadyinProgress"}));
    auto utils = capture.texts(ANDROID_LOG_ERROR, "SmartHome:SQLiteUtils");
    ASSERT_EQ(utils.size(), 1u);
    EXPECT_EQ(utils[0],
              "performQuery:error=performQueryFailed, query=COMMIT TRANSACTION;, rcode=19, "
              "errorMessage=FOREIGN KEY constraint failed");
}

// A statement still alive when its database is closed: the close is refused and logged,
// the statement keeps working, and its finalization releases the connection and its
// uncommitted work, so that another process can write the file afterwards.
TEST_F(SQLiteDatabaseTest, AStatementOutlivingCloseReleasesTheConnectionWhenFinalized) {
    auto transaction = database->beginTransaction();
    insert(1);
    auto statement = database->createStatement("SELECT count(*) FROM t;");
    ASSERT_TRUE(transaction && statement);
    database->close();
    EXPECT_FALSE(database->isDatabaseReady());
    EXPECT_EQ(capture.texts(ANDROID_LOG_ERROR, "SmartHome:SQLiteUtils"),
              std::vector<std::string>{
                  "closeSQLiteDatabase:error=closeSQLiteDatabaseFailed, rcode=5, "
                  "errorMessage=unable to close due to unfinalized statements or unfinished "
                  "backups"});
    ASSERT_TRUE(statement->step());
    EXPECT_EQ(statement->getColumnInt(0), 1);
    statement.reset();
    EXPECT_FALSE(transaction->commit());  // no handle any more
    EXPECT_EQ(test::sqliteShell(dir.file("test.db"),
                                "INSERT INTO t VALUES (2, 'shell'); SELECT count(*) FROM t;"),
              "1\n");
}

TEST_F(SQLiteDatabaseTest, DestroyedOpenDatabaseWarnsAndCloses) {
    database.reset();
    EXPECT_EQ(capture.texts(ANDROID_LOG_WARN, kDatabaseTag),
              std::vector<std::string>{"~SQLiteDatabase:reason=DB wasn't closed before "
                                       "destruction of SQLiteDatabase, file path=" +
                                       dir.file("test.db")});
    EXPECT_EQ(test::sqliteShell(dir.file("test.db"), "SELECT count(*) FROM t;"), "0\n");
    database = SQLiteDatabase::create(dir.file("test.db"));
}

TEST(SQLiteDatabaseFiles, ANonDatabaseFileOpensButEveryQueryFails) {
    test::TempDir dir;
    test::LogCapture capture;
    const std::string path = dir.file("text.db");
    const std::string text(4096, 'x');
    ASSERT_TRUE(test::writeFile(path, text));
    auto database = SQLiteDatabase::create(path);
    ASSERT_TRUE(database->open());  // SQLite reads the header only when first used
    EXPECT_FALSE(database->tableExists("t"));
    EXPECT_FALSE(database->performQuery("CREATE TABLE t (a);"));
    std::vector<std::string> names;
    EXPECT_FALSE(database->getTableNames(names));
    database->close();
    EXPECT_EQ(capture.texts(ANDROID_LOG_ERROR, "SmartHome:SQLiteUtils"),
              (std::vector<std::string>{
                  "tableExists:error=tableExistsFailed, reason=Couldn'tCreateStatement",
                  "performQuery:error=performQueryFailed, query=CREATE TABLE t (a);, rcode=26, "
                  "errorMessage=file is not a database",
                  "getTableNames:error=tableExistsFailed, reason=Couldn'tCreateStatement"}));
    const std::string notADatabase =
        "SQLiteStatement:error=constructorFailed, reason=Could not create prepared statement, "
        "rcode=26errorMessage=file is not a database";
    EXPECT_EQ(capture.texts(ANDROID_LOG_ERROR, kStatementTag),
              (std::vector<std::string>{notADatabase, notADatabase}));
    EXPECT_EQ(capture.texts(ANDROID_LOG_ERROR, kDatabaseTag),
              std::vector<std::string>{"getTableNames:reason=QueryFailedErrorInChecking"});
    std::vector<unsigned char> after;
    ASSERT_TRUE(FileIO::readFile(path, after));
    EXPECT_EQ(std::string(after.begin(), after.end()), text);  // left untouched
}

// The log keeps the first 1023 bytes of a line: a line naming a long path ends early.
::testing::AssertionResult isLogLineOf(const std::string& line, const std::string& full) {
    if (!line.empty() && full.compare(0, line.size(), line) == 0) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << "\"" << line << "\" does not begin \"" << full << "\"";
}

TEST(SQLiteDatabaseFiles, PathsLongerThanPathMaxFailCleanly) {
    test::TempDir dir;
    test::LogCapture capture;
    const std::string path = dir.path() + "/" + std::string(PATH_MAX + 10, 'p') + ".db";
    auto database = SQLiteDatabase::create(path);
    EXPECT_FALSE(database->initialize());
    EXPECT_FALSE(database->open());
    EXPECT_FALSE(database->isDatabaseReady());
    auto errors = capture.texts(ANDROID_LOG_ERROR, kDatabaseTag);
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_TRUE(
        isLogLineOf(errors[0], "initialize:error=FailedToCreateDatabase, filePath=" + path));
    auto debug = capture.texts(ANDROID_LOG_DEBUG, kDatabaseTag);
    ASSERT_EQ(debug.size(), 1u);
    EXPECT_TRUE(isLogLineOf(debug[0], "open:status=FileDoesNotExist, filePath=" + path));
    auto utils = capture.texts(ANDROID_LOG_ERROR, "SmartHome:SQLiteUtils");
    ASSERT_EQ(utils.size(), 2u);
    EXPECT_TRUE(isLogLineOf(utils[0],
                            "openSQLiteDatabaseHelper:error=openSQLiteDatabaseHelperFailed, "
                            "reason=CouldNotOpenDatabase, rcode=14, filePath=" +
                                path + "errorMessage=unable to open database file"));
    EXPECT_EQ(utils[1],
              "createSQLiteDatabase:error=createSQLiteDatabaseFailed, "
              "reason=Couldn'tCreateDatabase.");
}

TEST(SQLiteDatabaseFiles, AClosedDatabaseRefusesWorkWithItsLines) {
    test::TempDir dir;
    test::LogCapture capture;
    auto closed = SQLiteDatabase::create(dir.file("none.db"));
    EXPECT_FALSE(closed->performQuery("SELECT 1;"));
    EXPECT_FALSE(closed->tableExists("t"));
    EXPECT_EQ(closed->createStatement("SELECT 1;"), nullptr);
    EXPECT_EQ(closed->beginTransaction(), nullptr);
    EXPECT_EQ(capture.texts(ANDROID_LOG_ERROR, kDatabaseTag),
              (std::vector<std::string>{
                  "createStatement:error=createStatementFailed, sqlString=SELECT 1;",
                  "beginTransaction:error=beginTransactionFailed, reason=QueryFailed"}));
    EXPECT_EQ(capture.texts(ANDROID_LOG_DEBUG, kDatabaseTag),
              (std::vector<std::string>{
                  "performQuery:error=performQueryFailed, SQL string",
                  "tableExists:reason=tableDoesn'tExist or ErrorInChecking, table=t",
                  "performQuery:error=performQueryFailed, SQL string"}));
    EXPECT_FALSE(FileIO::fileExists(dir.file("none.db")));
}

// A database not owned by a shared pointer could never be reached by its Transaction: it
// refuses before BEGIN, so the write that follows is not held in a transaction nobody ends.
TEST(SQLiteDatabaseFiles, ADatabaseNotOwnedBySharedPtrRefusesTransactions) {
    test::TempDir dir;
    test::LogCapture capture;
    SQLiteDatabase database(dir.file("plain.db"));
    ASSERT_TRUE(database.initialize());
    ASSERT_TRUE(database.performQuery("CREATE TABLE t (id INTEGER);"));
    EXPECT_EQ(database.beginTransaction(), nullptr);
    EXPECT_TRUE(database.performQuery("INSERT INTO t VALUES (1);"));
    database.close();
    ASSERT_TRUE(database.open());
    int rows = -1;
    EXPECT_TRUE(getNumberTableRows(&database, "t", &rows));
    EXPECT_EQ(rows, 1);
    database.close();
    EXPECT_EQ(capture.texts(ANDROID_LOG_ERROR, kDatabaseTag),
              std::vector<std::string>{
                  "beginTransaction:error=beginTransactionFailed, reason=NotOwnedBySharedPtr"});
}

TEST(SQLiteDatabaseFiles, AReadOnlyDirectoryRefusesANewDatabase) {
    if (geteuid() == 0) {
        GTEST_SKIP() << "permission checks do not apply to root";
    }
    test::TempDir dir;
    test::LogCapture capture;
    const std::string locked = dir.file("locked");
    ASSERT_EQ(mkdir(locked.c_str(), 0555), 0);
    auto database = SQLiteDatabase::create(locked + "/new.db");
    EXPECT_FALSE(database->initialize());
    EXPECT_FALSE(database->isDatabaseReady());
    EXPECT_EQ(capture.texts(ANDROID_LOG_ERROR, kDatabaseTag),
              std::vector<std::string>{
                  "initialize:error=FailedToCreateDatabase, filePath=" + locked + "/new.db"});
}

// A write that needs the file to grow, and the error lines it leaves (all tags, in order).
// The process's file size limit stands in for a full disk: SQLite reports the refused
// write (EFBIG) as an I/O error, rcode=10, where a full disk gives rcode=13.
struct GrowingWrite {
    const char* name;
    std::function<bool(SQLiteDatabase&)> run;  // true when the write was acknowledged
    std::vector<std::string> errors;
};

const char kBigInsert[] = "INSERT INTO t VALUES (100, randomblob(100000));";

const std::vector<GrowingWrite> kGrowingWrites = {
    {"statement on its own",
     [](SQLiteDatabase& database) { return database.performQuery(kBigInsert); },
     {std::string("performQuery:error=performQueryFailed, query=") + kBigInsert +
      ", rcode=10, errorMessage=disk I/O error"}},
    {"transaction failing at COMMIT",
     [](SQLiteDatabase& database) {
         auto transaction = database.beginTransaction();
         return transaction && database.performQuery(kBigInsert) && transaction->commit();
     },
     {"performQuery:error=performQueryFailed, query=COMMIT TRANSACTION;, rcode=10, "
      "errorMessage=disk I/O error",
      "commitTransaction:error=commitTransactionFailed, reason=QueryFailed"}},
    // With a tiny page cache the rows go to the file before COMMIT: the failed step makes
    // SQLite roll the whole transaction back, so the COMMIT finds none.
    {"transaction failing in a statement",
     [](SQLiteDatabase& database) {
         auto transaction = database.beginTransaction();
         auto insert = database.createStatement("INSERT INTO t VALUES (?, randomblob(3000));");
         bool written = transaction && insert && database.performQuery("PRAGMA cache_size = 2;");
         for (int id = 100; written && id < 200; ++id) {
             written = insert->bindIntParameter(1, id) && insert->step() && insert->reset();
         }
         insert.reset();
         return transaction && transaction->commit() && written;
     },
     {"step:error=stepFailed, reason=Executing the select did not generate a row or "
      "completeresult=10",
      "performQuery:error=performQueryFailed, query=COMMIT TRANSACTION;, rcode=1, "
      "errorMessage=cannot commit - no transaction is active",
      "commitTransaction:error=commitTransactionFailed, reason=QueryFailed"}},
};

int rowsOf(SQLiteDatabase& database) {
    int rows = -1;
    return getNumberTableRows(&database, "t", &rows) ? rows : -1;
}

// Runs in a child process: the write meets a file that may not grow, then the limit is
// lifted and the same database object, reopened, takes a transaction again.
void writeWithoutGrowth(const std::string& path, const GrowingWrite& write) {
    signal(SIGXFSZ, SIG_IGN);  // the write then fails with EFBIG instead of ending the process
    test::LogCapture capture;
    auto database = SQLiteDatabase::create(path);
    ASSERT_TRUE(database->open());
    struct stat info {};
    ASSERT_EQ(stat(path.c_str(), &info), 0);
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &limit), 0);
    const rlimit original = limit;
    limit.rlim_cur = static_cast<rlim_t>(info.st_size);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    EXPECT_FALSE(write.run(*database));
    EXPECT_EQ(rowsOf(*database), 10);
    std::vector<std::string> errors;
    for (const test::LogLine& line : capture.lines()) {
        if (line.priority == ANDROID_LOG_ERROR) {
            errors.push_back(line.text);
        }
    }
    EXPECT_EQ(errors, write.errors);

    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &original), 0);
    database->close();
    ASSERT_TRUE(database->open());
    auto transaction = database->beginTransaction();
    ASSERT_TRUE(transaction);
    EXPECT_TRUE(database->performQuery(kBigInsert));
    EXPECT_TRUE(transaction->commit());
    transaction.reset();
    database->close();
}

// Writes to a file that cannot grow fail with false and their lines, nothing committed
// before is lost, and once the file may grow the database takes writes and is intact.
TEST(SQLiteDatabaseFiles, AFileThatCannotGrowRefusesWritesAndKeepsCommittedRows) {
    for (const GrowingWrite& write : kGrowingWrites) {
        SCOPED_TRACE(write.name);
        test::TempDir dir;
        const std::string path = dir.file("full.db");
        auto database = SQLiteDatabase::create(path);
        ASSERT_TRUE(database->initialize());
        ASSERT_TRUE(database->performQuery("CREATE TABLE t (id INTEGER, payload BLOB);"));
        for (int id = 0; id < 10; ++id) {
            ASSERT_TRUE(database->performQuery("INSERT INTO t VALUES (" + std::to_string(id) +
                                               ", randomblob(1000));"));
        }
        database->close();

        pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            writeWithoutGrowth(path, write);
            _exit(testing::Test::HasFailure() ? 1 : 0);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "child status " << status;

        ASSERT_TRUE(database->open());
        EXPECT_EQ(rowsOf(*database), 11);
        EXPECT_TRUE(database->performQuery(kBigInsert));
        auto check = database->createStatement("PRAGMA integrity_check;");
        ASSERT_TRUE(check && check->step());
        EXPECT_EQ(check->getColumnText(0), "ok");
        check.reset();
        database->close();
    }
}

}  // namespace
}  // namespace smarthome
