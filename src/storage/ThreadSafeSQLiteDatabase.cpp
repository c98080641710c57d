#include "smarthome/ThreadSafeSQLiteDatabase.h"

#include "base/Mutex.h"
#include "smarthome/SmartHomeLogger.h"
#include "smarthome/StringUtils.h"
#include "smarthome/SynchronizedHashMap.h"

namespace smarthome {

namespace {

const SmartHomeLogger logger("ThreadSafeSQLiteDatabase");

using Registry = SynchronizedHashMap<std::string, std::shared_ptr<ThreadSafeSQLiteDatabase>>;

// Process-wide and never emptied: instances live until the process exits. Leaked on purpose
// so that no instance is destroyed during static destruction while still in use.
Registry& registry() {
    static Registry* instances = new Registry();
    return *instances;
}

// Makes the lookup and the insert of getInstance one critical section, so that two first
// calls for a path cannot build two instances.
detail::Mutex& registryMutex() {
    static detail::Mutex* mutex = new detail::Mutex();
    return *mutex;
}

// The body of the whole-call operations: the inner database's answer under the mutex.
template <typename Call>
bool forwardLocked(std::mutex& mutex, const std::shared_ptr<SQLiteDatabase>& database,
                   const char* operation, Call call) {
    std::lock_guard<std::mutex> lock(mutex);
    if (!database) {
        logger.e("%s:reason=DatabaseIsNull", operation);
        return false;
    }
    return call(*database);
}

}  // namespace

std::shared_ptr<ThreadSafeSQLiteDatabase> ThreadSafeSQLiteDatabase::getInstance(
    const std::string& path) {
    detail::MutexLock lock(registryMutex());
    auto found = registry().find(path);
    if (found.first) {
        logger.d("%s:InstanceFound, storageFilePath=%s", "getInstance", path.c_str());
        return found.second;
    }
    auto instance = std::make_shared<ThreadSafeSQLiteDatabase>(path);
    if (!registry().insert(path, instance)) {
        logger.e("%s:event=getInstanceFailed,reason=CouldNotInsertDatabaseInstance", "getInstance");
    }
    logger.d("%s:InstanceNotFound, storageFilePath=%s", "getInstance", path.c_str());
    return instance;
}

ThreadSafeSQLiteDatabase::ThreadSafeSQLiteDatabase(const std::string& path) {
    std::lock_guard<std::mutex> lock(mutex);
    database = SQLiteDatabase::create(path);
}

ThreadSafeSQLiteDatabase::~ThreadSafeSQLiteDatabase() {
    if (database) {
        database->close();
    }
}

bool ThreadSafeSQLiteDatabase::initialize() {
    return forwardLocked(mutex, database, "initialize",
                         [&](SQLiteDatabase& inner) { return inner.initialize(); });
}

bool ThreadSafeSQLiteDatabase::open() {
    return forwardLocked(mutex, database, "open",
                         [&](SQLiteDatabase& inner) { return inner.open(); });
}

bool ThreadSafeSQLiteDatabase::performQuery(const std::string& sql) {
    return forwardLocked(mutex, database, "performQuery",
                         [&](SQLiteDatabase& inner) { return inner.performQuery(sql); });
}

bool ThreadSafeSQLiteDatabase::getTableNames(std::vector<std::string>& names) {
    return forwardLocked(mutex, database, "getTableNames",
                         [&](SQLiteDatabase& inner) { return inner.getTableNames(names); });
}

bool ThreadSafeSQLiteDatabase::tableExists(const std::string& table) {
    return forwardLocked(mutex, database, "tableExists",
                         [&](SQLiteDatabase& inner) { return inner.tableExists(table); });
}

bool ThreadSafeSQLiteDatabase::columnExists(const std::string& table, const std::string& column) {
    return forwardLocked(mutex, database, "columnExists",
                         [&](SQLiteDatabase& inner) { return inner.columnExists(table, column); });
}

bool ThreadSafeSQLiteDatabase::clearTable(const std::string& table) {
    return forwardLocked(mutex, database, "clearTable",
                         [&](SQLiteDatabase& inner) { return inner.clearTable(table); });
}

bool ThreadSafeSQLiteDatabase::isDatabaseReady() {
    return forwardLocked(mutex, database, "isDatabaseReady",
                         [&](SQLiteDatabase& inner) { return inner.isDatabaseReady(); });
}

void ThreadSafeSQLiteDatabase::close() {
    std::lock_guard<std::mutex> lock(mutex);
    if (database) {
        database->close();
    }
}

std::unique_ptr<SQLiteStatement> ThreadSafeSQLiteDatabase::createStatement(const std::string& sql) {
    if (!database) {
        logger.e("%s:reason=DatabaseIsNull", "createStatement");
        return nullptr;
    }
    return database->createStatement(sql);
}

std::unique_ptr<SQLiteDatabase::Transaction> ThreadSafeSQLiteDatabase::beginTransaction() {
    if (!database) {
        logger.e("%s:reason=DatabaseIsNull", "beginTransaction");
        return nullptr;
    }
    return database->beginTransaction();
}

bool ThreadSafeSQLiteDatabase::rollbackTransaction() {
    if (!database) {
        logger.e("%s:reason=DatabaseIsNull", "rollbackTransaction");
        return false;
    }
    return database->rollbackTransaction();
}

void ThreadSafeSQLiteDatabase::lock() {
    mutex.lock();
}

void ThreadSafeSQLiteDatabase::unlock() {
    mutex.unlock();
}

bool ThreadSafeSQLiteDatabase::clearAllTablesFromDb() {
    std::lock_guard<std::mutex> lock(mutex);
    if (!database) {
        logger.e("%s:reason=DatabaseIsNull", "clearAllTablesFromDb");
        return false;
    }
    std::vector<std::string> names;
    if (!database->getTableNames(names)) {
        logger.e("%s:error=removeAllTablesFromDb, reason=GetTableNamesFailed",
                 "clearAllTablesFromDb");
        return false;
    }
    logger.i("%s:listOftables=%s", "clearAllTablesFromDb", StringUtils::toString(names).c_str());
    for (const std::string& name : names) {
        if (!database->clearTable(name)) {
            logger.e("%s:error=removeAllTablesFromDb, reason=clearTableFailed, name=%s",
                     "clearAllTablesFromDb", name.c_str());
            return false;
        }
    }
    logger.i("%s:TableCleanupSuccessful", "clearAllTablesFromDb");
    return true;
}

}  // namespace smarthome
