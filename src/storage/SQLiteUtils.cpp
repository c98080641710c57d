#include "smarthome/SQLiteUtils.h"

#include <sqlite3.h>

#include "smarthome/FileIO.h"
#include "smarthome/SQLiteDatabase.h"
#include "smarthome/SQLiteStatement.h"
#include "smarthome/SmartHomeLogger.h"
#include "smarthome/StringUtils.h"

namespace smarthome {

namespace {

const SmartHomeLogger logger("SQLiteUtils");

// Runs a statement that returns nothing (DELETE, DROP): the shared body of clearTable and
// dropTable, with their own operation names and texts.
bool runWithoutResult(sqlite3* db, const std::string& sql, const char* operation,
                      const char* failure) {
    if (db == nullptr) {
        logger.e("%s:error=%s, reason=nullptrDbHandle", operation, failure);
        return false;
    }
    SQLiteStatement statement(db, sql);
    if (!statement.isValid()) {
        logger.e("%s:error=%s, reason=Couldn'tCreateStatement", operation, failure);
        return false;
    }
    if (!statement.step()) {
        logger.e("%s:error=%s, reason=StepExecutionFailed", operation, failure);
        return false;
    }
    return true;
}

}  // namespace

std::string quoteSQLiteIdentifier(const std::string& name) {
    std::string quoted;
    quoted.reserve(name.size() + 2);
    quoted.push_back('"');
    for (char c : name) {
        if (c == '"') {
            quoted.push_back('"');
        }
        quoted.push_back(c);
    }
    quoted.push_back('"');
    return quoted;
}

sqlite3* createSQLiteDatabase(const std::string& path) {
    if (FileIO::fileExists(path)) {
        logger.e("%s:error=createSQLiteDatabaseFailed, reason=FileAlreadyExists, file=%s",
                 "createSQLiteDatabase", path.c_str());
        return nullptr;
    }
    sqlite3* db = openSQLiteDatabaseHelper(path, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    if (db == nullptr) {
        logger.e("%s:error=createSQLiteDatabaseFailed, reason=Couldn'tCreateDatabase.",
                 "createSQLiteDatabase");
    }
    return db;
}

sqlite3* openSQLiteDatabase(const std::string& path) {
    if (!FileIO::fileExists(path)) {
        logger.e("%s:error=openSQLiteDatabaseFailed, reason=FileCouldn'tBeFound, file=%s",
                 "openSQLiteDatabase", path.c_str());
        return nullptr;
    }
    sqlite3* db = openSQLiteDatabaseHelper(path, SQLITE_OPEN_READWRITE);
    if (db == nullptr) {
        logger.e("%s:error=openSQLiteDatabaseFailed, reason=Couldn'tOpenDatabase",
                 "openSQLiteDatabase");
    }
    return db;
}

sqlite3* openSQLiteDatabaseHelper(const std::string& path, int flags) {
    sqlite3* db = nullptr;
    int code = sqlite3_open_v2(path.c_str(), &db, flags, nullptr);
    if (code != SQLITE_OK) {
        logger.e(
            "%s:error=openSQLiteDatabaseHelperFailed, reason=CouldNotOpenDatabase, "
            "rcode=%d, filePath=%serrorMessage=%s",
            "openSQLiteDatabaseHelper", code, path.c_str(),
            db != nullptr ? sqlite3_errmsg(db) : sqlite3_errstr(code));
        sqlite3_close(db);
        return nullptr;
    }
    // Never fails on an open handle.
    sqlite3_busy_timeout(db, kSQLiteBusyTimeoutMs);
    return db;
}

bool closeSQLiteDatabase(sqlite3* db) {
    if (db == nullptr) {
        logger.e("%s:error=closeSQLiteDatabaseFailed, reason=NullptrDbHandle",
                 "closeSQLiteDatabase");
    }
    int code = sqlite3_close(db);
    if (code != SQLITE_OK) {
        logger.e("%s:error=closeSQLiteDatabaseFailed, rcode=%d, errorMessage=%s",
                 "closeSQLiteDatabase", code, sqlite3_errmsg(db));
        return false;
    }
    return true;
}

bool performQuery(sqlite3* db, const std::string& sql) {
    if (db == nullptr) {
        logger.e("%s:error=performQueryFailed, reason=NullptrDbHandle", "performQuery");
        return false;
    }
    char* message = nullptr;
    int code = sqlite3_exec(db, sql.c_str(), nullptr, nullptr, &message);
    if (code != SQLITE_OK) {
        logger.e("%s:error=performQueryFailed, query=%s, rcode=%d, errorMessage=%s", "performQuery",
                 sql.c_str(), code, message != nullptr ? message : sqlite3_errmsg(db));
        sqlite3_free(message);
        return false;
    }
    return true;
}

bool getNumberTableRows(SQLiteDatabase* db, const std::string& table, int* rows) {
    if (db == nullptr) {
        logger.e("%s:error=getNumberTableRowsFailed, reason=NullptrDb", "getNumberTableRows");
        return false;
    }
    if (rows == nullptr) {
        logger.e("%s:error=getNumberTableRowsFailed, reason=NullptrNumberOfRows",
                 "getNumberTableRows");
        return false;
    }
    auto statement =
        db->createStatement("SELECT COUNT(*) FROM " + quoteSQLiteIdentifier(table) + ";");
    if (!statement) {
        logger.e("%s:error=getNumberTableRowsFailed, reason=Couildn'tCreateStatement",
                 "getNumberTableRows");
        return false;
    }
    if (!statement->step()) {
        logger.e("%s:error=getNumberTableRowsFailed", "getNumberTableRows");
        return false;
    }
    std::string text = statement->getColumnText(0);
    if (!StringUtils::stringToInt(text.c_str(), rows)) {
        logger.e("%s:error=getNumberTableRowsFailed, reason=StringToIntFailed, rows=%s",
                 "getNumberTableRows", text.c_str());
        return false;
    }
    return true;
}

bool getTableMaxIntValue(SQLiteDatabase* db, const std::string& table, const std::string& column,
                         int* maxValue) {
    if (db == nullptr) {
        logger.e("%s:error=getTableMaxIntValue, ,reason=NullptrDb", "getTableMaxIntValue");
        return false;
    }
    if (maxValue == nullptr) {
        logger.e("%s:error=getMaxIntFailed, ,reason=NullptrMaxInt", "getTableMaxIntValue");
        return false;
    }
    // The column is qualified by its table: a lone double-quoted name that matches no
    // column would be read as a string literal instead of failing.
    const std::string quotedTable = quoteSQLiteIdentifier(table);
    const std::string quotedColumn = quotedTable + "." + quoteSQLiteIdentifier(column);
    auto statement = db->createStatement("SELECT " + quotedColumn + " FROM " + quotedTable +
                                         " ORDER BY " + quotedColumn + " DESC LIMIT 1;");
    if (!statement) {
        logger.e("%s:error=getTableMaxIntValueFailed, reason=Couildn'tCreateStatement",
                 "getTableMaxIntValue");
        return false;
    }
    if (!statement->step()) {
        logger.e("%s:error=getTableMaxIntValueFailed", "getTableMaxIntValue");
        return false;
    }
    const int result = statement->getStepResult();
    if (result == SQLITE_DONE) {
        *maxValue = 0;
        return true;
    }
    if (result != SQLITE_ROW) {
        logger.e("%s:error=getTableMaxIntValueFailed, reason=StepFailedToEvaluate, stepResult=%d",
                 "getTableMaxIntValue", result);
        return false;
    }
    std::string text = statement->getColumnText(0);
    if (!StringUtils::stringToInt(text.c_str(), maxValue)) {
        logger.e("%s:error=getTableMaxIntValueFailed, reason=StringToIntFailed, rows=%s",
                 "getTableMaxIntValue", text.c_str());
        return false;
    }
    return true;
}

bool getTableNames(sqlite3* db, std::vector<std::string>& names) {
    // The tableExists texts are reused here on purpose: log processing matches them.
    if (db == nullptr) {
        logger.e("%s:error=tableExistsFailed, reason=nullptrDbHandle", "getTableNames");
        return false;
    }
    SQLiteStatement statement(db, "SELECT name FROM sqlite_master WHERE type='table';");
    if (!statement.isValid()) {
        logger.e("%s:error=tableExistsFailed, reason=Couldn'tCreateStatement", "getTableNames");
        return false;
    }
    while (statement.step() && statement.getStepResult() == SQLITE_ROW) {
        for (int column = 0; column < statement.getColumnCount(); ++column) {
            std::string name = statement.getColumnName(column);
            std::string value = statement.getColumnText(column);
            logger.d("%s:colName=%s, colValue=%s", "getTableNames", name.c_str(), value.c_str());
            if (!value.empty()) {
                names.push_back(value);
            }
        }
    }
    return true;
}

bool tableExists(sqlite3* db, const std::string& table) {
    if (db == nullptr) {
        logger.e("%s:error=tableExistsFailed, reason=nullptrDbHandle", "tableExists");
        return false;
    }
    // The name is bound as a value, so that no name can end the literal early.
    SQLiteStatement statement(db,
                              "SELECT count(*) FROM sqlite_master WHERE type='table' AND name=?;");
    if (!statement.isValid()) {
        logger.e("%s:error=tableExistsFailed, reason=Couldn'tCreateStatement", "tableExists");
        return false;
    }
    if (!statement.bindStringParameter(1, table) || !statement.step()) {
        logger.e("%s:error=tableExistsFailed, reason=StepExecutionFailed", "tableExists");
        return false;
    }
    const int result = statement.getStepResult();
    if (result == SQLITE_DONE) {
        return false;
    }
    if (result != SQLITE_ROW) {
        logger.e("%s:error=tableExistsFailed, reason=StepFailedToEvaluate", "tableExists");
        return false;
    }
    std::string text = statement.getColumnText(0);
    int count = 0;
    if (!StringUtils::stringToInt(text.c_str(), &count)) {
        logger.e("%s:error=tableExistsFailed, reason=StringToIntFailed, rows=%s", "tableExists",
                 text.c_str());
        return false;
    }
    return count == 1;
}

bool columnExists(sqlite3* db, const std::string& table, const std::string& column) {
    if (db == nullptr) {
        logger.e("%s:error=columnExistsFailed, reason=nullptrDbHandle", "columnExists");
        return false;
    }
    SQLiteStatement statement(db, "PRAGMA table_info(" + quoteSQLiteIdentifier(table) + ");");
    if (!statement.isValid()) {
        logger.e("%s:error=columnExistsFailed, reason=Couldn'tCreateStatement", "columnExists");
        return false;
    }
    if (!statement.step()) {
        logger.e("%s:error=columnExistsFailed, reason=StepExecutionFailed", "columnExists");
        return false;
    }
    while (statement.getStepResult() == SQLITE_ROW) {
        if (statement.getColumnText(1) == column) {
            return true;
        }
        if (!statement.step()) {
            return false;
        }
    }
    return false;
}

bool clearTable(sqlite3* db, const std::string& table) {
    return runWithoutResult(db, "DELETE FROM " + quoteSQLiteIdentifier(table) + ";", "clearTable",
                            "clearTableFailed");
}

bool dropTable(sqlite3* db, const std::string& table) {
    return runWithoutResult(db, "DROP TABLE IF EXISTS " + quoteSQLiteIdentifier(table) + ";",
                            "dropTable", "dropTableFailed");
}

}  // namespace smarthome
