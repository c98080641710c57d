// One prepared SQLite statement with the strings bound to it. Binds are 1-based, columns
// 0-based; failures return false/empty/0 and write one error line (tag
// "SmartHome:SQLiteStatement").
// Ownership: owns the prepared statement (SQLite copies bound strings); does not keep its
// database alive: destroy statements before closing it.
// Thread-safety: none; one thread at a time, as its database.
#pragma once

#include <memory>
#include <string>

struct sqlite3;
struct sqlite3_stmt;

namespace smarthome {

class SQLiteStatement {
public:
    SQLiteStatement(sqlite3* db, const std::string& sql);
    ~SQLiteStatement();
    SQLiteStatement(const SQLiteStatement&) = delete;
    SQLiteStatement& operator=(const SQLiteStatement&) = delete;

    // Finalizes the statement; safe to call twice.
    void finalize();
    bool isValid() const;
    // True for a row or completion; tell them apart with getStepResult().
    bool step();
    // Rewinds; bindings are kept.
    bool reset();
    bool bindIntParameter(int position, int value);
    bool bindInt64Parameter(int position, long long value);
    bool bindStringParameter(int position, const std::string& value);
    // The last result code of step() (meaningful only after a step).
    int getStepResult() const;
    int getColumnCount() const;
    std::string getColumnName(int column) const;
    // "" for a NULL value.
    std::string getColumnText(int column) const;
    int getColumnInt(int column) const;
    long long getColumnInt64(int column) const;

private:
    sqlite3_stmt* stmt = nullptr;
    int stepResult = 0;
};

}  // namespace smarthome
