// One prepared SQLite statement and its bound parameters. Binds are 1-based, columns
// 0-based; failures return false/empty/0 and write one error line (tag
// "SmartHome:SQLiteStatement").
// Ownership: owns the prepared statement; SQLite holds its own copy of each bound string
// while it is bound. Does not keep its database alive: destroy statements before closing it
// (a database closed under a live statement is released by SQLite only when the statement
// is finalized).
// Thread-safety: none; one thread at a time, as its database.
#pragma once

#include <memory>
#include <string>

struct sqlite3;
struct sqlite3_stmt;

namespace smarthome {

class SQLiteStatement {
public:
    // Prepares sql on db; on failure the statement is invalid (see isValid()).
    SQLiteStatement(sqlite3* db, const std::string& sql);
    ~SQLiteStatement();
    SQLiteStatement(const SQLiteStatement&) = delete;
    SQLiteStatement& operator=(const SQLiteStatement&) = delete;

    // Finalizes the statement; safe to call twice. Logs "finalizeFailed" only for a code
    // of its own: SQLite repeats a failed last step's code here, and step() logged that.
    void finalize();
    bool isValid() const;
    // True for a row or completion; tell them apart with getStepResult().
    bool step();
    // Rewinds; bindings are kept.
    bool reset();
    bool bindIntParameter(int position, int value);
    bool bindInt64Parameter(int position, long long value);
    // Binds a copy of value up to its first NUL; value may change or go once this returns.
    bool bindStringParameter(int position, const std::string& value);
    // The last result code of step() (meaningful only after a step).
    int getStepResult() const;
    int getColumnCount() const;
    // "" for a column past the count (and for an invalid statement).
    std::string getColumnName(int column) const;
    // "" for a NULL value or a column past the count.
    std::string getColumnText(int column) const;
    int getColumnInt(int column) const;
    long long getColumnInt64(int column) const;

private:
    struct Finalizer {
        void operator()(sqlite3_stmt* stmt) const;
    };

    std::unique_ptr<sqlite3_stmt, Finalizer> stmt;
    int stepResult = 0;
};

}  // namespace smarthome
