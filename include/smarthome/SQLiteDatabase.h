// One SQLite database file: its open handle and at most one transaction. initialize()
// creates a new file (and only a new one), open() opens an existing one. Every failure
// returns false/empty and writes one line (tag "SmartHome:SQLiteDatabase").
//
// Ownership: owns the handle; must be owned by a std::shared_ptr (create()) before
// beginTransaction(), because a Transaction holds a weak reference to it: a database that
// is not is refused before BEGIN runs (error "beginTransaction:error=beginTransactionFailed,
// reason=NotOwnedBySharedPtr"), so that no write is held in a transaction nobody can end.
// Statements it hands out do not keep it alive: destroy them before close(). A handle that
// SQLite refuses to close because a statement is still alive is released once that
// statement is finalized.
//
// A failed COMMIT (another connection's reader outlasting the busy timeout, a deferred
// constraint, a full disk) leaves the transaction open, so that the caller may still roll
// it back; when the caller has not, destroying its Transaction does (warning
// "~Transaction:reason=CommitFailed, action=Rollback"). Left open, the transaction would
// take in every later write on the connection, and close would lose them all. When SQLite
// has already ended the transaction itself (it does after some I/O errors), the failed
// commit or rollback ends it here too.
// Thread-safety: none; ThreadSafeSQLiteDatabase adds the lock.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "smarthome/SQLiteStatement.h"

struct sqlite3;

namespace smarthome {

class SQLiteDatabase : public std::enable_shared_from_this<SQLiteDatabase> {
public:
    // Commits or rolls back the database's transaction; rolls back when destroyed without
    // either. Not copyable. Survives its database (then reports DatabaseAlreadyFinalized).
    class Transaction {
    public:
        explicit Transaction(std::weak_ptr<SQLiteDatabase> database);
        ~Transaction();
        Transaction(const Transaction&) = delete;
        Transaction& operator=(const Transaction&) = delete;

        bool commit();
        bool rollback();

    private:
        bool complete(bool commit);

        std::weak_ptr<SQLiteDatabase> database;
        // Which of the database's transactions this is (its count when this was made),
        // so that ending a failed commit never touches a later transaction.
        unsigned long number = 0;
        bool completed = false;
        bool commitFailed = false;
    };

    explicit SQLiteDatabase(const std::string& path);
    ~SQLiteDatabase();
    SQLiteDatabase(const SQLiteDatabase&) = delete;
    SQLiteDatabase& operator=(const SQLiteDatabase&) = delete;

    // A new database owned by a shared pointer, as beginTransaction() needs.
    static std::shared_ptr<SQLiteDatabase> create(const std::string& path);

    // Creates the file (mode 0777) and opens it; false when it exists or is open already.
    bool initialize();
    // Opens the existing file; false when it is missing or open already.
    bool open();
    void close();
    bool isDatabaseReady() const;
    bool performQuery(const std::string& sql);
    bool getTableNames(std::vector<std::string>& names);
    bool tableExists(const std::string& table);
    bool columnExists(const std::string& table, const std::string& column);
    bool clearTable(const std::string& table);
    // Answers only for a database that was open already: when this call has to open it,
    // the answer is false (and the database stays open).
    bool tableEmpty(const std::string& table);
    std::unique_ptr<SQLiteStatement> createStatement(const std::string& sql);
    std::unique_ptr<Transaction> beginTransaction();
    bool commitTransaction();
    bool rollbackTransaction();

private:
    bool endTransaction(const char* sql, const char* operation, const char* noTransactionFormat,
                        const char* queryFailedFormat);
    // Rolls back transaction number if it is still the one in progress (its commit failed).
    void endFailedCommit(unsigned long number);

    struct Closer {
        void operator()(sqlite3* db) const;
    };

    const std::string path;
    std::unique_ptr<sqlite3, Closer> db;
    bool transactionInProgress = false;
    unsigned long transactionCount = 0;  // transactions begun so far
};

}  // namespace smarthome
