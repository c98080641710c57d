#include "smarthome/SQLiteDatabase.h"

#include <sqlite3.h>
#include <sys/stat.h>

#include "smarthome/FileIO.h"
#include "smarthome/SQLiteUtils.h"
#include "smarthome/SmartHomeLogger.h"

namespace smarthome {

namespace {

const SmartHomeLogger logger("SQLiteDatabase");

}  // namespace

void SQLiteDatabase::Closer::operator()(sqlite3* db) const {
    // close_v2 never fails for a valid handle: with statements still alive it defers the
    // release until the last of them is finalized.
    sqlite3_close_v2(db);
}

std::shared_ptr<SQLiteDatabase> SQLiteDatabase::create(const std::string& path) {
    return std::make_shared<SQLiteDatabase>(path);
}

SQLiteDatabase::SQLiteDatabase(const std::string& path) : path(path) {}

SQLiteDatabase::~SQLiteDatabase() {
    if (db) {
        logger.w("%s:reason=DB wasn't closed before destruction of SQLiteDatabase, file path=%s",
                 "~SQLiteDatabase", path.c_str());
        close();
    }
    if (transactionInProgress) {
        // After the close: the rollback finds no handle and logs its own failure.
        logger.e("%s:reason=IncompleteTransaction, action=RollBack.", "~SQLiteDatabase");
        rollbackTransaction();
    }
}

bool SQLiteDatabase::initialize() {
    if (db) {
        logger.d("%s:status=DatabaseAlreadyOpen", "initialize");
        return false;
    }
    if (FileIO::fileExists(path)) {
        logger.d("%s:status=FileAlreadyExists, filePath=%s", "initialize", path.c_str());
        return false;
    }
    db.reset(createSQLiteDatabase(path));
    if (!db) {
        logger.e("%s:error=FailedToCreateDatabase, filePath=%s", "initialize", path.c_str());
        return false;
    }
    chmod(path.c_str(), 0777);
    return true;
}

bool SQLiteDatabase::open() {
    if (db) {
        logger.d("%s:status=DatabaseAlreadyOpen", "open");
        return false;
    }
    if (!FileIO::fileExists(path)) {
        logger.d("%s:status=FileDoesNotExist, filePath=%s", "open", path.c_str());
        return false;
    }
    db.reset(openSQLiteDatabase(path));
    if (!db) {
        logger.e("%s:status=FailedToOpenDatabase, filePath=%s", "open", path.c_str());
        return false;
    }
    return true;
}

void SQLiteDatabase::close() {
    if (!db) {
        return;
    }
    // The handle is given up whatever the close answers. When SQLite refuses (a statement
    // of a careless caller is still alive), the handle goes to close_v2 through the
    // deleter instead of leaking: SQLite releases it, and rolls back what it still holds
    // open, when that statement is finalized.
    if (closeSQLiteDatabase(db.get())) {
        // Closed: the handle is gone, so the owner only forgets it.
        static_cast<void>(db.release());
    } else {
        db.reset();
    }
}

bool SQLiteDatabase::isDatabaseReady() const {
    return db != nullptr;
}

bool SQLiteDatabase::performQuery(const std::string& sql) {
    if (!smarthome::performQuery(db.get(), sql)) {
        // The text names the SQL without carrying it (the failing query is in the
        // SQLiteUtils line just before); kept as the log vocabulary.
        logger.d("%s:error=performQueryFailed, SQL string", "performQuery");
        return false;
    }
    return true;
}

bool SQLiteDatabase::getTableNames(std::vector<std::string>& names) {
    if (!smarthome::getTableNames(db.get(), names)) {
        logger.e("%s:reason=QueryFailedErrorInChecking", "getTableNames");
        return false;
    }
    return true;
}

bool SQLiteDatabase::tableExists(const std::string& table) {
    if (!smarthome::tableExists(db.get(), table)) {
        logger.d("%s:reason=tableDoesn'tExist or ErrorInChecking, table=%s", "tableExists",
                 table.c_str());
        return false;
    }
    return true;
}

bool SQLiteDatabase::columnExists(const std::string& table, const std::string& column) {
    if (!smarthome::columnExists(db.get(), table, column)) {
        logger.d("%s:reason=columnDoesn'tExist or ErrorInChecking, table=%s, column=%s",
                 "columnExists", table.c_str(), column.c_str());
        return false;
    }
    return true;
}

bool SQLiteDatabase::clearTable(const std::string& table) {
    if (!smarthome::clearTable(db.get(), table)) {
        logger.e("%s:error=FailedToClearTable, table=%s", "clearTable", table.c_str());
        return false;
    }
    return true;
}

bool SQLiteDatabase::tableEmpty(const std::string& table) {
    const std::string sql = "SELECT count(*) FROM " + quoteSQLiteIdentifier(table);
    if (open()) {
        logger.e("%s:error=tableEmpty, reason=DatabaseJustOpened", "tableEmpty");
        return false;
    }
    auto statement = createStatement(sql);
    if (!statement) {
        return false;
    }
    if (!statement->step()) {
        logger.e("%s:error=FailedToQuery", "tableEmpty");
        return false;
    }
    return statement->getColumnInt(0) == 0;
}

std::unique_ptr<SQLiteStatement> SQLiteDatabase::createStatement(const std::string& sql) {
    auto statement = std::make_unique<SQLiteStatement>(db.get(), sql);
    if (!statement->isValid()) {
        logger.e("%s:error=createStatementFailed, sqlString=%s", "createStatement", sql.c_str());
        return nullptr;
    }
    return statement;
}

std::unique_ptr<SQLiteDatabase::Transaction> SQLiteDatabase::beginTransaction() {
    // Without an owning shared pointer the Transaction could never reach this database
    // again: its commit would fail and the BEGIN would swallow every later write.
    if (weak_from_this().expired()) {
        logger.e("%s:error=beginTransactionFailed, reason=NotOwnedBySharedPtr", "beginTransaction");
        return nullptr;
    }
    if (transactionInProgress) {
        logger.e("%s:error=beginTransactionFailed, reason=OneTransactionAlreadyinProgress",
                 "beginTransaction");
        return nullptr;
    }
    if (!performQuery("BEGIN TRANSACTION;")) {
        logger.e("%s:error=beginTransactionFailed, reason=QueryFailed", "beginTransaction");
        return nullptr;
    }
    transactionInProgress = true;
    ++transactionCount;
    return std::make_unique<Transaction>(weak_from_this());
}

bool SQLiteDatabase::commitTransaction() {
    return endTransaction("COMMIT TRANSACTION;", "commitTransaction",
                          "%s:error=commitTransactionFailed, reason=NoTransactionInProgress",
                          "%s:error=commitTransactionFailed, reason=QueryFailed");
}

bool SQLiteDatabase::rollbackTransaction() {
    return endTransaction("ROLLBACK TRANSACTION;", "rollbackTransaction",
                          "%s:error=rollbackTransactionFailed, reason=NoTransactionInProgress",
                          "%s:error=rollbackTransactionFailed, reason=QueryFailed");
}

bool SQLiteDatabase::endTransaction(const char* sql, const char* operation,
                                    const char* noTransactionFormat,
                                    const char* queryFailedFormat) {
    if (!transactionInProgress) {
        logger.e(noTransactionFormat, operation);
        return false;
    }
    if (!performQuery(sql)) {
        logger.e(queryFailedFormat, operation);
        // The flag stays set, so that a later rollback is still possible, unless SQLite has
        // already rolled the transaction back itself (after some I/O errors, a full disk
        // among them): then nothing is left to end, and a flag left set would refuse every
        // later beginTransaction.
        if (db && sqlite3_get_autocommit(db.get()) != 0) {
            transactionInProgress = false;
        }
        return false;
    }
    transactionInProgress = false;
    return true;
}

void SQLiteDatabase::endFailedCommit(unsigned long number) {
    if (transactionInProgress && transactionCount == number) {
        logger.w("%s:reason=CommitFailed, action=Rollback", "~Transaction");
        static_cast<void>(rollbackTransaction());
    }
}

SQLiteDatabase::Transaction::Transaction(std::weak_ptr<SQLiteDatabase> database)
    : database(std::move(database)) {
    if (auto owner = this->database.lock()) {
        number = owner->transactionCount;
    }
}

SQLiteDatabase::Transaction::~Transaction() {
    if (!completed) {
        logger.e("%s:error=TransactionFailedToComplete, action=Rollback", "~Transaction");
        rollback();
        return;
    }
    if (commitFailed) {
        if (auto owner = database.lock()) {
            owner->endFailedCommit(number);
        }
    }
}

bool SQLiteDatabase::Transaction::commit() {
    return complete(true);
}

bool SQLiteDatabase::Transaction::rollback() {
    return complete(false);
}

bool SQLiteDatabase::Transaction::complete(bool commit) {
    const char* operation = commit ? "commit" : "rollback";
    if (completed) {
        logger.e(commit ? "%s:error=commitFailed, reason=TransactionAlreadyCompleted"
                        : "%s:error=rollbackFailed, reason=TransactionAlreadyCompleted",
                 operation);
        return false;
    }
    auto owner = database.lock();
    if (!owner) {
        logger.e(commit ? "%s:error=commitFailed, reason=DatabaseAlreadyFinalized"
                        : "%s:error=rollbackFailed, reason=DatabaseAlreadyFinalized",
                 operation);
        return false;
    }
    // Completed even when the query fails: the database's flag tells what happened. A
    // failed commit is remembered, so that this scope still ends the transaction.
    completed = true;
    if (!commit) {
        return owner->rollbackTransaction();
    }
    commitFailed = !owner->commitTransaction();
    return !commitFailed;
}

}  // namespace smarthome
