#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "smarthome/ThreadSafeSQLiteDatabase.h"
#include "storage/StorageTestSupport.h"
#include "support/TestSupport.h"

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
    std::atomic<bool> writing{true};
    std::vector<std::thread> threads;
    for (int w = 0; w < kWriters; ++w) {
        threads.emplace_back([&, w] {
            auto database = ThreadSafeSQLiteDatabase::getInstance(path);
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

}  // namespace
}  // namespace smarthome
