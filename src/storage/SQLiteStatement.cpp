#include "smarthome/SQLiteStatement.h"

#include <sqlite3.h>

#include "smarthome/SmartHomeLogger.h"

namespace smarthome {

namespace {

const SmartHomeLogger logger("SQLiteStatement");

}  // namespace

SQLiteStatement::SQLiteStatement(sqlite3* db, const std::string& sql) {
    int code = sqlite3_prepare_v2(db, sql.c_str(), -1, &stmt, nullptr);
    if (code != SQLITE_OK) {
        logger.e(
            "%s:error=constructorFailed, reason=Could not create prepared statement, "
            "rcode=%derrorMessage=%s",
            "SQLiteStatement", code, sqlite3_errmsg(db));
        sqlite3_finalize(stmt);
        stmt = nullptr;
    }
}

SQLiteStatement::~SQLiteStatement() {
    finalize();
}

void SQLiteStatement::finalize() {
    if (stmt == nullptr) {
        return;
    }
    int code = sqlite3_finalize(stmt);
    stmt = nullptr;
    if (code != SQLITE_OK) {
        logger.e("%s:error=finalizeFailed, reason=CouldReleasePreparedStatement, rcode=%d",
                 "finalize", code);
    }
}

bool SQLiteStatement::isValid() const {
    return stmt != nullptr;
}

bool SQLiteStatement::step() {
    if (stmt == nullptr) {
        logger.e("%s:error=StepInvalid", "step");
        return false;
    }
    stepResult = sqlite3_step(stmt);
    if (stepResult == SQLITE_ROW || stepResult == SQLITE_DONE) {
        return true;
    }
    logger.e(
        "%s:error=stepFailed, reason=Executing the select did not generate a row or "
        "completeresult=%d",
        "step", stepResult);
    return false;
}

bool SQLiteStatement::reset() {
    int code = sqlite3_reset(stmt);
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
    int code = sqlite3_bind_int(stmt, position, value);
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
    int code = sqlite3_bind_int64(stmt, position, value);
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
    // SQLite takes its own copy of the text (SQLITE_TRANSIENT), so the caller's string and
    // this object keep no text alive between binds: a statement reused for many rows does
    // not accumulate one copy per bind.
    int code = sqlite3_bind_text(stmt, position, value.c_str(), -1, SQLITE_TRANSIENT);
    if (code != SQLITE_OK) {
        logger.e("%s:error=bindInt64ParameterFailed, rcode=%d", "bindStringParameter", code);
        return false;
    }
    return true;
}

int SQLiteStatement::getStepResult() const {
    return stepResult;
}

int SQLiteStatement::getColumnCount() const {
    return sqlite3_column_count(stmt);
}

std::string SQLiteStatement::getColumnName(int column) const {
    if (column < 0) {
        logger.e("%s:error=getColumnNameFailed, reason=invalidPosition", "getColumnName");
        return {};
    }
    const char* name = sqlite3_column_name(stmt, column);
    return name != nullptr ? name : "";
}

std::string SQLiteStatement::getColumnText(int column) const {
    if (column < 0) {
        logger.e("%s:error=getColumnTextFailed, reason=invalidPosition", "getColumnText");
        return {};
    }
    const unsigned char* text = sqlite3_column_text(stmt, column);
    if (text == nullptr) {
        return {};
    }
    return std::string(reinterpret_cast<const char*>(text),
                       static_cast<size_t>(sqlite3_column_bytes(stmt, column)));
}

int SQLiteStatement::getColumnInt(int column) const {
    if (column < 0) {
        logger.e("%s:error=getColumnIntFailed, reason=invalidPosition", "getColumnInt");
        return 0;
    }
    return sqlite3_column_int(stmt, column);
}

long long SQLiteStatement::getColumnInt64(int column) const {
    if (column < 0) {
        logger.e("%s:error=getColumnInt64Failed, reason=invalidPosition", "getColumnInt64");
        return 0;
    }
    return sqlite3_column_int64(stmt, column);
}

}  // namespace smarthome
