// Storage costs: 100 000 inserts through ThreadSafeSQLiteDatabase (lock, one transaction,
// one prepared statement bound, stepped and reset per row, commit) against the same work
// written directly on the SQLite C API in the same run, which the library must stay within
// 1.1 times of; and the registry lookup with 1 000 paths registered.
#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <cstdio>
#include <string>
#include <vector>

#include "smarthome/ThreadSafeSQLiteDatabase.h"
#include "testing/RatioReporter.h"
#include "testing/TestSupport.h"

namespace {

constexpr int kRows = 100000;

std::string freshPath(const smarthome::test::TempDir& dir, const char* name, int round) {
    std::string path = dir.file(std::string(name) + std::to_string(round) + ".db");
    std::remove(path.c_str());
    return path;
}

void BM_Inserts_SQLiteCApi(benchmark::State& state) {
    smarthome::test::TempDir dir;
    int round = 0;
    for (auto _ : state) {
        state.PauseTiming();
        const std::string path = freshPath(dir, "capi", round++);
        sqlite3* db = nullptr;
        sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
        sqlite3_exec(db, "CREATE TABLE t (id INTEGER, name TEXT);", nullptr, nullptr, nullptr);
        state.ResumeTiming();

        sqlite3_exec(db, "BEGIN TRANSACTION;", nullptr, nullptr, nullptr);
        sqlite3_stmt* stmt = nullptr;
        sqlite3_prepare_v2(db, "INSERT INTO t VALUES (?, ?);", -1, &stmt, nullptr);
        for (int i = 0; i < kRows; ++i) {
            sqlite3_bind_int(stmt, 1, i);
            sqlite3_bind_text(stmt, 2, "device", -1, SQLITE_TRANSIENT);
            sqlite3_step(stmt);
            sqlite3_reset(stmt);
        }
        sqlite3_finalize(stmt);
        sqlite3_exec(db, "COMMIT TRANSACTION;", nullptr, nullptr, nullptr);

        state.PauseTiming();
        sqlite3_close(db);
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * kRows);
}

void BM_Inserts_ThreadSafeSQLiteDatabase(benchmark::State& state) {
    smarthome::test::TempDir dir;
    int round = 0;
    for (auto _ : state) {
        state.PauseTiming();
        const std::string path = freshPath(dir, "library", round++);
        auto database = smarthome::ThreadSafeSQLiteDatabase::getInstance(path);
        database->initialize();
        database->performQuery("CREATE TABLE t (id INTEGER, name TEXT);");
        state.ResumeTiming();

        database->lock();
        {
            auto transaction = database->beginTransaction();
            auto statement = database->createStatement("INSERT INTO t VALUES (?, ?);");
            for (int i = 0; i < kRows; ++i) {
                statement->bindIntParameter(1, i);
                statement->bindStringParameter(2, "device");
                statement->step();
                statement->reset();
            }
            statement.reset();
            transaction->commit();
        }
        database->unlock();

        state.PauseTiming();
        database->close();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * kRows);
}

BENCHMARK(BM_Inserts_SQLiteCApi)->Unit(benchmark::kMillisecond)->Iterations(5)->Repetitions(5);
BENCHMARK(BM_Inserts_ThreadSafeSQLiteDatabase)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5)
    ->Repetitions(5);

void BM_GetInstance_1000Paths(benchmark::State& state) {
    std::vector<std::string> paths;
    for (int i = 0; i < 1000; ++i) {
        paths.push_back("/tmp/smarthome-bench-registry/db" + std::to_string(i) + ".db");
        smarthome::ThreadSafeSQLiteDatabase::getInstance(paths.back());
    }
    size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(smarthome::ThreadSafeSQLiteDatabase::getInstance(paths[next]));
        next = (next + 1) % paths.size();
    }
}
BENCHMARK(BM_GetInstance_1000Paths);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    smarthome::bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    // Required: library time at most 1.1 x the C API's, i.e. C API / library >= 1 / 1.1.
    bool ok =
        reporter.printRatios({{"BM_Inserts_SQLiteCApi/iterations:5/repeats:5",
                               "BM_Inserts_ThreadSafeSQLiteDatabase/iterations:5/repeats:5"}},
                             1.0 / 1.1, "100 000 inserts: SQLite C API relative to the library");
    benchmark::Shutdown();
    return ok ? 0 : 1;
}
