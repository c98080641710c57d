#include "smarthome/ThreadSafeSQLiteDatabase.h"

#include <android/log.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "smarthome/FileIO.h"
#include "smarthome/SQLiteDatabase.h"
#include "smarthome/SQLiteUtils.h"
#include "smarthome/SynchronizedHashMap.h"
#include "storage/StorageTestSupport.h"
#include "testing/TestSupport.h"

namespace smarthome {
namespace {

const char kTag[] = "SmartHome:ThreadSafeSQLiteDatabase";

TEST(SynchronizedHashMap, FindReportsPresenceAndInsertRefusesPresentKeys) {
    SynchronizedHashMap<std::string, int> map;
    EXPECT_EQ(map.find("a"), std::make_pair(false, 0));
    EXPECT_TRUE(map.insert("a", 1));
    EXPECT_FALSE(map.insert("a", 2));
    EXPECT_EQ(map.find("a"), std::make_pair(true, 1));
}

TEST(ThreadSafeSQLiteDatabase, OneInstancePerExactPath) {
    test::TempDir dir;
    test::LogCapture capture;
    const std::string path = dir.file("r.db");
    auto first = ThreadSafeSQLiteDatabase::getInstance(path);
    auto second = ThreadSafeSQLiteDatabase::getInstance(path);
    auto other = ThreadSafeSQLiteDatabase::getInstance(path + "/");
    EXPECT_EQ(first, second);
    EXPECT_NE(first, other);
    EXPECT_FALSE(first->isDatabaseReady());
    EXPECT_EQ(
        capture.texts(ANDROID_LOG_DEBUG, kTag),
        (std::vector<std::string>{"getInstance:InstanceNotFound, storageFilePath=" + path,
                                  "getInstance:InstanceFound, storageFilePath=" + path,
                                  "getInstance:InstanceNotFound, storageFilePath=" + path + "/"}));
}

TEST(ThreadSafeSQLiteDatabase, LockedStatementsWriteWhatTheShellReads) {
    test::TempDir dir;
    const std::string path = dir.file("shell.db");
    auto database = ThreadSafeSQLiteDatabase::getInstance(path);
    ASSERT_TRUE(database->initialize());
    ASSERT_TRUE(database->performQuery("CREATE TABLE devices (id INTEGER, name TEXT);"));
    database->lock();
    {
        auto transaction = database->beginTransaction();
        auto statement = database->createStatement("INSERT INTO devices VALUES (?, ?);");
        ASSERT_TRUE(transaction && statement);
        for (int i = 0; i < 100; ++i) {
            statement->bindIntParameter(1, i);
            statement->bindStringParameter(2, "lamp'" + std::to_string(i));
            ASSERT_TRUE(statement->step());
            ASSERT_TRUE(statement->reset());
        }
        statement.reset();
        ASSERT_TRUE(transaction->commit());
    }
    database->unlock();
    EXPECT_TRUE(database->tableExists("devices"));
    EXPECT_TRUE(database->columnExists("devices", "name"));
    EXPECT_EQ(test::sqliteShell(path, "SELECT count(*), max(id) FROM devices;"), "100|99\n");
    EXPECT_EQ(test::sqliteShell(path, "SELECT name FROM devices WHERE id = 7;"), "lamp'7\n");
    database->close();
}

TEST(ThreadSafeSQLiteDatabase, ClearAllTablesKeepsTablesAndLogsTheList) {
    test::TempDir dir;
    test::LogCapture capture;
    auto database = ThreadSafeSQLiteDatabase::getInstance(dir.file("clear.db"));
    ASSERT_TRUE(database->initialize());
    EXPECT_TRUE(database->clearAllTablesFromDb());
    ASSERT_TRUE(database->performQuery("CREATE TABLE a (x); CREATE TABLE b (y);"));
    ASSERT_TRUE(database->performQuery("INSERT INTO a VALUES (1); INSERT INTO b VALUES (2);"));
    EXPECT_TRUE(database->clearAllTablesFromDb());
    std::vector<std::string> names;
    EXPECT_TRUE(database->getTableNames(names));
    EXPECT_EQ(names, (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(test::sqliteShell(dir.file("clear.db"),
                                "SELECT (SELECT count(*) FROM a) + (SELECT count(*) FROM b);"),
              "0\n");
    EXPECT_EQ(capture.texts(ANDROID_LOG_INFO, kTag),
              (std::vector<std::string>{"clearAllTablesFromDb:listOftables=[]",
                                        "clearAllTablesFromDb:TableCleanupSuccessful",
                                        "clearAllTablesFromDb:listOftables=[a, b]",
                                        "clearAllTablesFromDb:TableCleanupSuccessful"}));

    // A table whose rows cannot be deleted stops the loop there: earlier tables stay
    // cleared, later ones keep their rows.
    ASSERT_TRUE(database->performQuery(
        "CREATE TABLE c (z); INSERT INTO a VALUES (1); INSERT INTO b VALUES (2);"
        "INSERT INTO c VALUES (3);"
        "CREATE TRIGGER keep BEFORE DELETE ON b BEGIN SELECT RAISE(ABORT, 'kept'); END;"));
    capture.clear();
    EXPECT_FALSE(database->clearAllTablesFromDb());
    EXPECT_EQ(capture.texts(ANDROID_LOG_ERROR, kTag),
              std::vector<std::string>{"clearAllTablesFromDb:error=removeAllTablesFromDb, "
                                       "reason=clearTableFailed, name=b"});
    EXPECT_EQ(test::sqliteShell(dir.file("clear.db"),
                                "SELECT (SELECT count(*) FROM a), "
                                "(SELECT count(*) FROM b), "
                                "(SELECT count(*) FROM c);"),
              "0|1|1\n");
    database->close();
}

// What holds a read transaction on the file while the COMMIT runs.
enum class Reader { SecondRegistryEntry, Shell };
// How the caller ends the transaction whose COMMIT failed.
enum class Ending { TransactionScope, RollbackTransaction };

// Starts a read transaction on dir/x.db and keeps it until the returned handle is released
// (also when a failed assertion leaves the test early).
std::shared_ptr<void> holdReadTransaction(Reader reader, const test::TempDir& dir) {
    if (reader == Reader::Shell) {
        // The shell reads its input from the pipe popen gives and writes to ours.
        int output[2];
        EXPECT_EQ(pipe(output), 0);
        FILE* shell = popen(
            ("sqlite3 '" + dir.file("x.db") + "' >&" + std::to_string(output[1])).c_str(), "w");
        close(output[1]);
        EXPECT_GE(fputs("BEGIN; SELECT count(*) FROM t;\n", shell), 0);
        fflush(shell);
        char answer[3] = {};
        EXPECT_EQ(read(output[0], answer, 2), 2);  // once it answers, it holds the lock
        EXPECT_STREQ(answer, "1\n");
        return std::shared_ptr<void>(nullptr, [shell, output](void*) {
            fputs("COMMIT;\n", shell);
            EXPECT_EQ(pclose(shell), 0);
            close(output[0]);
        });
    }
    // The same file under another spelling of its path: a registry entry of its own.
    auto other = ThreadSafeSQLiteDatabase::getInstance(dir.path() + "/./x.db");
    EXPECT_TRUE(other->open());
    other->lock();
    std::shared_ptr<SQLiteStatement> select = other->createStatement("SELECT id FROM t;");
    EXPECT_TRUE(select && select->step() && select->getStepResult() == SQLITE_ROW);
    return std::shared_ptr<void>(nullptr, [other, select](void*) mutable {
        select.reset();
        other->unlock();
        other->close();
    });
}

int busyTimeoutOf(ThreadSafeSQLiteDatabase& database) {
    database.lock();
    auto pragma = database.createStatement("PRAGMA busy_timeout;");
    const int timeout = pragma && pragma->step() ? pragma->getColumnInt(0) : -1;
    pragma.reset();
    database.unlock();
    return timeout;
}

class FailedCommit : public testing::TestWithParam<std::tuple<Reader, Ending>> {};

// A COMMIT that meets a reader holding on past the busy timeout fails; once the caller
// ends that transaction (scope exit or rollbackTransaction), later transactions and
// statements are written for good.
TEST_P(FailedCommit, IsEndedSoThatLaterWritesPersist) {
    const auto [readerKind, ending] = GetParam();
    if (readerKind == Reader::Shell && std::system("command -v sqlite3 >/dev/null 2>&1") != 0) {
        GTEST_SKIP() << "no sqlite3 shell";
    }
    test::TempDir dir;
    test::LogCapture capture;
    auto database = ThreadSafeSQLiteDatabase::getInstance(dir.file("x.db"));
    ASSERT_TRUE(database->initialize());
    ASSERT_TRUE(database->performQuery("CREATE TABLE t (id INTEGER); INSERT INTO t VALUES (0);"));
    EXPECT_EQ(busyTimeoutOf(*database), kSQLiteBusyTimeoutMs);
    // The reader keeps its lock through the whole COMMIT, so the COMMIT fails whatever the
    // timeout; a short one only makes it give up sooner.
    ASSERT_TRUE(database->performQuery("PRAGMA busy_timeout = 20;"));
    auto reader = holdReadTransaction(readerKind, dir);
    capture.clear();
    {
        auto transaction = database->beginTransaction();
        ASSERT_TRUE(transaction);
        ASSERT_TRUE(database->performQuery("INSERT INTO t VALUES (1);"));
        EXPECT_FALSE(transaction->commit());
        if (ending == Ending::RollbackTransaction) {
            EXPECT_TRUE(database->rollbackTransaction());
        }
    }
    reader.reset();
    {
        auto transaction = database->beginTransaction();
        ASSERT_TRUE(transaction);
        ASSERT_TRUE(database->performQuery("INSERT INTO t VALUES (2);"));
        EXPECT_TRUE(transaction->commit());
    }
    EXPECT_TRUE(database->performQuery("INSERT INTO t VALUES (3);"));
    database->close();

    auto reopened = SQLiteDatabase::create(dir.file("x.db"));
    ASSERT_TRUE(reopened->open());
    auto ids = reopened->createStatement("SELECT group_concat(id) FROM t;");
    ASSERT_TRUE(ids && ids->step());
    EXPECT_EQ(ids->getColumnText(0), "0,2,3");
    ids.reset();
    reopened->close();
    EXPECT_EQ(capture.texts(ANDROID_LOG_ERROR, "SmartHome:SQLiteUtils"),
              std::vector<std::string>{"performQuery:error=performQueryFailed, query=COMMIT "
                                       "TRANSACTION;, rcode=5, errorMessage=database is locked"});
    EXPECT_EQ(capture.texts(ANDROID_LOG_ERROR, "SmartHome:SQLiteDatabase"),
              std::vector<std::string>{
                  "commitTransaction:error=commitTransactionFailed, reason=QueryFailed"});
    EXPECT_EQ(capture.texts(ANDROID_LOG_WARN, "SmartHome:SQLiteDatabase"),
              ending == Ending::TransactionScope
                  ? std::vector<std::string>{"~Transaction:reason=CommitFailed, action=Rollback"}
                  : std::vector<std::string>{});
}

INSTANTIATE_TEST_SUITE_P(
    ReadersAndEndings, FailedCommit,
    testing::Combine(testing::Values(Reader::SecondRegistryEntry, Reader::Shell),
                     testing::Values(Ending::TransactionScope, Ending::RollbackTransaction)),
    [](const auto& info) {
        return std::string(std::get<0>(info.param) == Reader::Shell ? "Shell" : "SecondEntry") +
               (std::get<1>(info.param) == Ending::TransactionScope ? "_ScopeExit" : "_Rollback");
    });

// A child process inserts inside a transaction and is killed: the uncommitted rows are
// gone when the file is reopened, the committed ones survive the same kill.
TEST(ThreadSafeSQLiteDatabase, KilledProcessesLeaveOnlyCommittedRows) {
    test::TempDir dir;
    const std::string path = dir.file("crash.db");
    {
        SQLiteDatabase setup(path);
        ASSERT_TRUE(setup.initialize());
        ASSERT_TRUE(setup.performQuery("CREATE TABLE t (id INTEGER, payload BLOB);"));
        setup.close();
    }
    for (bool commit : {false, true}) {
        int ready[2];
        ASSERT_EQ(pipe(ready), 0);
        pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            // No test assertions here: the child only reports through the pipe.
            close(ready[0]);
            auto database = ThreadSafeSQLiteDatabase::getInstance(path);
            bool ok = database->open();
            database->lock();
            auto transaction = database->beginTransaction();
            // About 4 MB: more than the page cache holds, so the uncommitted transaction
            // has already written into the file and only its journal can undo that.
            auto insert = database->createStatement("INSERT INTO t VALUES (?, randomblob(4000));");
            ok = ok && transaction && insert;
            for (int i = 0; ok && i < 1000; ++i) {
                ok = insert->bindIntParameter(1, i) && insert->step() && insert->reset();
            }
            if (ok && commit) {
                insert.reset();
                ok = transaction->commit();
            }
            char status = ok ? '1' : '0';
            (void)!write(ready[1], &status, 1);
            pause();  // killed here, with the transaction still open when not committed
            _exit(0);
        }
        close(ready[1]);
        char status = 0;
        ssize_t got = read(ready[0], &status, 1);
        close(ready[0]);
        kill(child, SIGKILL);
        int waited = 0;
        ASSERT_EQ(waitpid(child, &waited, 0), child);
        ASSERT_TRUE(WIFSIGNALED(waited) && WTERMSIG(waited) == SIGKILL);
        ASSERT_EQ(got, 1);
        ASSERT_EQ(status, '1');

        EXPECT_EQ(FileIO::fileExists(path + "-journal"), !commit);
        struct stat info {};
        ASSERT_EQ(stat(path.c_str(), &info), 0);
        EXPECT_GT(info.st_size, 1 << 20);  // rows reached the file in both cases

        // Reopened through the library (which rolls back what the dead process left in
        // its journal) and read again by the shell.
        SQLiteDatabase reopened(path);
        ASSERT_TRUE(reopened.open());
        int rows = -1;
        EXPECT_TRUE(getNumberTableRows(&reopened, "t", &rows));
        EXPECT_EQ(rows, commit ? 1000 : 0) << (commit ? "committed" : "uncommitted");
        reopened.close();
        EXPECT_EQ(test::sqliteShell(path, "PRAGMA integrity_check; SELECT count(*) FROM t;"),
                  commit ? "ok\n1000\n" : "ok\n0\n");
    }
}

}  // namespace
}  // namespace smarthome
