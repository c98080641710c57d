// Helpers over a raw SQLite handle or a SQLiteDatabase: open and create files, run a
// query, count rows, read a column maximum, list tables, test for a table or a column,
// empty or drop a table. Each failure returns false/null and writes one error line
// (tag "SmartHome:SQLiteUtils").
//
// Table and column names go into the SQL as quoted identifiers (quoteSQLiteIdentifier), so
// any name works, keywords, quotes and spaces included; tableExists binds the name as a
// value. Every connection opened here waits up to kSQLiteBusyTimeoutMs for another
// connection's lock before a statement fails with SQLITE_BUSY (rcode=5).
// Thread-safety: none of their own; the handle's user serialises access.
#pragma once

#include <string>
#include <vector>

struct sqlite3;

namespace smarthome {

class SQLiteDatabase;

// How long (milliseconds) a statement on a connection opened by openSQLiteDatabaseHelper
// waits for a lock held by another connection, in this process or another one, before it
// fails with SQLITE_BUSY: a COMMIT waits for readers to finish, a write for another
// connection's write transaction. Without a timeout a COMMIT meeting any reader fails at
// once. One connection can change it with "PRAGMA busy_timeout = <ms>;".
constexpr int kSQLiteBusyTimeoutMs = 5000;

// name as an SQL identifier: in double quotes, each double quote inside doubled. The one
// place where table and column names are made safe to paste into SQL.
std::string quoteSQLiteIdentifier(const std::string& name);

sqlite3* createSQLiteDatabase(const std::string& path);
sqlite3* openSQLiteDatabase(const std::string& path);
sqlite3* openSQLiteDatabaseHelper(const std::string& path, int flags);
bool closeSQLiteDatabase(sqlite3* db);
bool performQuery(sqlite3* db, const std::string& sql);
bool getNumberTableRows(SQLiteDatabase* db, const std::string& table, int* rows);
bool getTableMaxIntValue(SQLiteDatabase* db, const std::string& table, const std::string& column,
                         int* maxValue);
// Appends the names of the database's tables to names (which is not cleared first).
bool getTableNames(sqlite3* db, std::vector<std::string>& names);
bool tableExists(sqlite3* db, const std::string& table);
bool columnExists(sqlite3* db, const std::string& table, const std::string& column);
bool clearTable(sqlite3* db, const std::string& table);
bool dropTable(sqlite3* db, const std::string& table);

}  // namespace smarthome
