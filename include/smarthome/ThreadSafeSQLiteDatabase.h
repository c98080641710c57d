// One SQLiteDatabase per file path behind one mutex, handed out by a process-wide registry
// (getInstance) keyed by the exact path string. Instances live until the process exits.
//
// Whole-call operations (initialize, open, performQuery, tableExists, ...) take the mutex
// for their duration. Multi-call work is serialised by the caller: lock(), then
// createStatement()/beginTransaction() and the objects they return, then unlock(). The
// mutex is not recursive: while holding lock(), do not call the locking operations on the
// same object (that deadlocks).
//
// rollbackTransaction() is an addition to the original operations (placed last in the
// interface): it ends the transaction of the inner database, the only way to end one whose
// COMMIT failed while its Transaction object is still alive (destroying that object ends it
// too). Connections wait up to kSQLiteBusyTimeoutMs (SQLiteUtils.h) for another
// connection's lock, e.g. a second instance registered under another spelling of the same
// file's path, or another process.
// Thread-safety: every operation may be called from any thread, as described above.
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "smarthome/IThreadSafeSQLiteDatabase.h"
#include "smarthome/SQLiteDatabase.h"

namespace smarthome {

class ThreadSafeSQLiteDatabase : public IThreadSafeSQLiteDatabase {
public:
    // The instance for path, created (unopened) on first use.
    static std::shared_ptr<ThreadSafeSQLiteDatabase> getInstance(const std::string& path);

    explicit ThreadSafeSQLiteDatabase(const std::string& path);
    ~ThreadSafeSQLiteDatabase() override;

    bool initialize() override;
    bool open() override;
    bool performQuery(const std::string& sql) override;
    bool getTableNames(std::vector<std::string>& names) override;
    bool tableExists(const std::string& table) override;
    bool columnExists(const std::string& table, const std::string& column) override;
    bool clearTable(const std::string& table) override;
    void close() override;
    // Not locked: hold lock() from before this call until the statement is destroyed.
    std::unique_ptr<SQLiteStatement> createStatement(const std::string& sql) override;
    bool isDatabaseReady() override;
    void lock() override;
    void unlock() override;
    // Not locked: hold lock() until the transaction is completed, and when its commit
    // failed until the Transaction is destroyed (that rolls it back) or
    // rollbackTransaction() has returned.
    std::unique_ptr<SQLiteDatabase::Transaction> beginTransaction() override;
    // Empties every table (rows deleted, tables kept), stopping at the first failure.
    bool clearAllTablesFromDb() override;
    // Not locked, like beginTransaction(): hold lock() until it returns. Rolls back the
    // transaction in progress (one whose COMMIT failed included); false, with the inner
    // database's line, when there is none or the rollback fails.
    bool rollbackTransaction() override;

private:
    std::shared_ptr<SQLiteDatabase> database;
    std::mutex mutex;
};

}  // namespace smarthome
