// The interface of a database shared by every user of one file path in the process.
// Thread-safety: see ThreadSafeSQLiteDatabase.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "smarthome/SQLiteDatabase.h"
#include "smarthome/SQLiteStatement.h"

namespace smarthome {

class IThreadSafeSQLiteDatabase {
public:
    virtual ~IThreadSafeSQLiteDatabase() = default;
    virtual bool initialize() = 0;
    virtual bool open() = 0;
    virtual bool performQuery(const std::string& sql) = 0;
    virtual bool getTableNames(std::vector<std::string>& names) = 0;
    virtual bool tableExists(const std::string& table) = 0;
    virtual bool columnExists(const std::string& table, const std::string& column) = 0;
    virtual bool clearTable(const std::string& table) = 0;
    virtual void close() = 0;
    virtual std::unique_ptr<SQLiteStatement> createStatement(const std::string& sql) = 0;
    virtual bool isDatabaseReady() = 0;
    virtual void lock() = 0;
    virtual void unlock() = 0;
    virtual std::unique_ptr<SQLiteDatabase::Transaction> beginTransaction() = 0;
    virtual bool clearAllTablesFromDb() = 0;
    // Added after the functions above, so that their virtual slots keep their order.
    virtual bool rollbackTransaction() = 0;
};

}  // namespace smarthome
