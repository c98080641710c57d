#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "smarthome/ThreadSafeSQLiteDatabase.h"
#include "storage/StorageTestSupport.h"
#include "testing/TestSupport.h"

namespace smarthome {
namespace {

// Eight writers through getInstance with lock / transaction / statement / commit / unlock
// while a reader uses the locking queries: every row arrives, nothing is busy.
TEST(ThreadSafeSQLiteDatabaseConcurrency, EightWritersAndAReaderOnOnePath) {
    test::TempDir dir;
    test::LogCapture capture;  // keeps the per-call debug lines off stderr
    const std::string path = dir.file("stress.db");
    auto setup = ThreadSafeSQLiteDatabase::getInstance(path);
    ASSERT_TRUE(setup->initialize());
    ASSERT_TRUE(setup->performQuery("CREATE TABLE rows (writer INTEGER, n INTEGER);"));

    constexpr int kWriters = 8;
    constexpr int kRows = 10000;
    std::atomic<int> failures{0};
    std::atomic<int> waiting{kWriters + 1};
    std::atomic<bool> writing{true};
    auto startTogether = [&waiting] {
        --waiting;
        while (waiting.load() > 0) {
            std::this_thread::yield();
        }
    };
    std::vector<std::thread> threads;
    for (int w = 0; w < kWriters; ++w) {
        threads.emplace_back([&, w] {
            auto database = ThreadSafeSQLiteDatabase::getInstance(path);
            if (database != setup) {
                ++failures;
            }
            startTogether();
            database->lock();
            auto transaction = database->beginTransaction();
            auto statement = database->createStatement("INSERT INTO rows VALUES (?, ?);");
            if (!transaction || !statement) {
                ++failures;
            }
            for (int n = 0; statement && n < kRows; ++n) {
                if (!statement->bindIntParameter(1, w) || !statement->bindIntParameter(2, n) ||
                    !statement->step() || !statement->reset()) {
                    ++failures;
                    break;
                }
            }
            statement.reset();
            if (!transaction || !transaction->commit()) {
                ++failures;
            }
            database->unlock();
        });
    }
    std::thread reader([&] {
        auto database = ThreadSafeSQLiteDatabase::getInstance(path);
        startTogether();
        while (writing) {
            std::vector<std::string> names;
            if (!database->tableExists("rows") || !database->getTableNames(names)) {
                ++failures;
            }
        }
    });
    for (auto& thread : threads) {
        thread.join();
    }
    writing = false;
    reader.join();
    EXPECT_EQ(failures.load(), 0);

    auto database = ThreadSafeSQLiteDatabase::getInstance(path);
    database->lock();
    auto count = database->createStatement("SELECT count(*) FROM rows;");
    ASSERT_TRUE(count && count->step());
    EXPECT_EQ(count->getColumnInt(0), kWriters * kRows);
    count.reset();
    database->unlock();
    EXPECT_EQ(test::sqliteShell(path, "SELECT count(*) FROM rows;"),
              std::to_string(kWriters * kRows) + "\n");
    for (const auto& line : capture.texts()) {
        EXPECT_EQ(line.find("rcode=5"), std::string::npos) << line;  // SQLITE_BUSY
    }
    database->close();
}

// First calls for the same paths racing on several threads all get one instance per path.
TEST(ThreadSafeSQLiteDatabaseConcurrency, RacingFirstCallsShareOneInstancePerPath) {
    test::TempDir dir;
    test::LogCapture capture;
    constexpr int kThreads = 8;
    constexpr int kPaths = 200;
    std::vector<std::vector<std::shared_ptr<ThreadSafeSQLiteDatabase>>> seen(
        kThreads, std::vector<std::shared_ptr<ThreadSafeSQLiteDatabase>>(kPaths));
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            for (int p = 0; p < kPaths; ++p) {
                // Each thread walks the paths from a different start.
                int index = (p + t * kPaths / kThreads) % kPaths;
                seen[t][index] =
                    ThreadSafeSQLiteDatabase::getInstance(dir.file(std::to_string(index)));
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    for (int p = 0; p < kPaths; ++p) {
        for (int t = 0; t < kThreads; ++t) {
            ASSERT_TRUE(seen[t][p]);
            EXPECT_EQ(seen[t][p], seen[0][p]) << "path " << p << ", thread " << t;
        }
    }
    int created = 0;
    for (const auto& line : capture.texts()) {
        created += line.rfind("getInstance:InstanceNotFound", 0) == 0 ? 1 : 0;
    }
    EXPECT_EQ(created, kPaths);
}

}  // namespace
}  // namespace smarthome
