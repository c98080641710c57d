#include "smarthome/SQLiteStatement.h"

#include <sqlite3.h>

#include "smarthome/SmartHomeLogger.h"

namespace smarthome {

namespace {

const SmartHomeLogger logger("SQLiteStatement");

}  // namespace

void SQLiteStatement::Finalizer::operator()(sqlite3_stmt* stmt) const {
    sqlite3_finalize(stmt);
}

SQLiteStatement::SQLiteStatement(sqlite3* db, const std::string& sql) {
    sqlite3_stmt* prepared = nullptr;
    int code = sqlite3_prepare_v2(db, sql.c_str(), -1, &prepared, nullptr);
    if (code != SQLITE_OK) {
        logger.e(
            "%s:error=constructorFailed, reason=Could not create prepared statement, "
            "rcode=%derrorMessage=%s",
            "SQLiteStatement", code, sqlite3_errmsg(db));
        sqlite3_finalize(prepared);  // SQLite leaves it null on failure; no-op then
        return;
    }
    // An empty or comment-only text prepares to no statement: it stays invalid.
    stmt.reset(prepared);
}

SQLiteStatement::~SQLiteStatement() {
    finalize();
}

void SQLiteStatement::finalize() {
    if (!stmt) {
        return;
    }
    // SQLite releases the statement whatever it answers; the answer repeats the error of
    // the last step when that failed (a full disk, a constraint), which step() has logged
    // already. Only another code is a failure of the finalize itself.
    int code = sqlite3_finalize(stmt.release());
    if (code != SQLITE_OK && code != stepResult) {
        logger.e("%s:error=finalizeFailed, reason=CouldReleasePreparedStatement, rcode=%d",
                 "finalize", code);
    }
}

bool SQLiteStatement::isValid() const {
    return stmt != nullptr;
}

bool SQLiteStatement::step() {
    if (!stmt) {
        logger.e("%s:error=StepInvalid", "step");
        return false;
    }
    stepResult = sqlite3_step(stmt.get());
    if (stepResult == SQLITE_ROW || stepResult == SQLITE_DONE) {
        return true;
    }
    logger.e(
        "%s:error=stepFailed, reason=Executing the select did not generate a row or "
        "completeresult=%d",
        "step", stepResult);
    return false;
}

// reset, the binds and the column reads pass an invalid (null) statement on to SQLite,
// which answers SQLITE_OK for a reset, SQLITE_MISUSE for a bind and a NULL value for a
// column; only the column name needs a guard of its own.

bool SQLiteStatement::reset() {
    int code = sqlite3_reset(stmt.get());
    if (code != SQLITE_OK) {
        logger.e("%s:error=stepFailed, reason=Could not reset the prepared statement, rcode=%d",
                 "reset", code);
        return false;
    }
    return true;
}

bool SQLiteStatement::bindIntParameter(int position, int value) {
    if (position < 1) {
        logger.e("%s:error=bindIntParameterFailed, reason=invalidPosition", "bindIntParameter");
        return false;
    }
    int code = sqlite3_bind_int(stmt.get(), position, value);
    if (code != SQLITE_OK) {
        logger.e("%s:error=bindIntParameterFailed, rcode=%d", "bindIntParameter", code);
        return false;
    }
    return true;
}

bool SQLiteStatement::bindInt64Parameter(int position, long long value) {
    if (position < 1) {
        logger.e("%s:error=bindInt64ParameterFailed, reason=invalidPosition", "bindInt64Parameter");
        return false;
    }
    int code = sqlite3_bind_int64(stmt.get(), position, value);
    if (code != SQLITE_OK) {
        logger.e("%s:error=bindInt64ParameterFailed, rcode=%d", "bindInt64Parameter", code);
        return false;
    }
    return true;
}

bool SQLiteStatement::bindStringParameter(int position, const std::string& value) {
    if (position < 1) {
        logger.e("%s:error=bindStringParameterFailed, reason=invalidPosition",
                 "bindStringParameter");
        return false;
    }
    // SQLite keeps its own copy of the text for as long as it is bound (SQLITE_TRANSIENT):
    // the caller's string may change or go at once, and a statement reused for many rows
    // holds one copy per parameter rather than one per bind. The text runs to its first
    // NUL, as the length is -1.
    int code = sqlite3_bind_text(stmt.get(), position, value.c_str(), -1, SQLITE_TRANSIENT);
    if (code != SQLITE_OK) {
        // The Int64 text is shared with bindInt64Parameter: log processing matches it.
        logger.e("%s:error=bindInt64ParameterFailed, rcode=%d", "bindStringParameter", code);
        return false;
    }
    return true;
}

int SQLiteStatement::getStepResult() const {
    return stepResult;
}

int SQLiteStatement::getColumnCount() const {
    return sqlite3_column_count(stmt.get());
}

std::string SQLiteStatement::getColumnName(int column) const {
    if (column < 0) {
        logger.e("%s:error=getColumnNameFailed, reason=invalidPosition", "getColumnName");
        return {};
    }
    if (!stmt) {
        return {};
    }
    const char* name = sqlite3_column_name(stmt.get(), column);
    return name != nullptr ? name : "";
}

std::string SQLiteStatement::getColumnText(int column) const {
    if (column < 0) {
        logger.e("%s:error=getColumnTextFailed, reason=invalidPosition", "getColumnText");
        return {};
    }
    const unsigned char* text = sqlite3_column_text(stmt.get(), column);
    if (text == nullptr) {
        return {};
    }
    return std::string(reinterpret_cast<const char*>(text),
                       static_cast<size_t>(sqlite3_column_bytes(stmt.get(), column)));
}

int SQLiteStatement::getColumnInt(int column) const {
    if (column < 0) {
        logger.e("%s:error=getColumnIntFailed, reason=invalidPosition", "getColumnInt");
        return 0;
    }
    return sqlite3_column_int(stmt.get(), column);
}

long long SQLiteStatement::getColumnInt64(int column) const {
    if (column < 0) {
        logger.e("%s:error=getColumnInt64Failed, reason=invalidPosition", "getColumnInt64");
        return 0;
    }
    return sqlite3_column_int64(stmt.get(), column);
}

}  // namespace smarthome
