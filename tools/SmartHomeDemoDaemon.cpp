// smarthome-demo-daemon: a small hub daemon built on SmartHomeUtils, running on the host port.
//
// A handful of simulated devices report their state through the daemon's in-process
// connector. The reports are published from a TaskExecutor (the "adapter"), delivered to a
// Handler on a Looper (the "hub"), which handles them one at a time: it logs each with the
// device's MAC address masked, keeps the latest state of every device and a history row per
// change in an SQLite database under the secured storage directory, tallies unreachable
// devices and emits one metric per report. A synchronous "getState" request on the same
// connector answers a device's stored state. After a bounded number of reports the daemon
// checks that every stored state matches the last report of its device, emits a failure-ratio
// metric per device model, shuts down in order and prints a summary.
//
//   smarthome-demo-daemon [--events N] [--devices N] [--seed N] [--help]
//
// Exit status: 0 when the run completed and its checks held, 1 on a failure (the reason is
// printed), 2 for bad arguments.

#include <sqlite3.h>
#include <stdlib.h>  // mkdtemp, setenv

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <future>
#include <map>
#include <memory>
#include <mutex>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "smarthome-host/HostPort.h"
#include "smarthome/DatabaseUtility.h"
#include "smarthome/DynamicThreadPool.h"
#include "smarthome/Handler.h"
#include "smarthome/JSONUtil.h"
#include "smarthome/Looper.h"
#include "smarthome/SHMetric.h"
#include "smarthome/SQLiteUtils.h"
#include "smarthome/SmartHomeLogger.h"
#include "smarthome/SmartHomedInProcessConnector.h"
#include "smarthome/StringUtils.h"
#include "smarthome/TaskExecutor.h"
#include "smarthome/ThreadSafeSQLiteDatabase.h"

namespace smarthome {
namespace {

const SmartHomeLogger logger("SmartHomeDemoDaemon");

constexpr char kProgram[] = "SmartHome";
// A source listed in the metric id table, so the records go to a known schema.
constexpr char kMetricSource[] = "ZigbeeOtaUpdate";
constexpr char kPublisher[] = "ZigbeeAdapter";
constexpr char kStateEvent[] = "deviceStateChanged";
constexpr char kGetStateRequest[] = "getState";
constexpr char kDatabaseDirectory[] = "DemoHub";
constexpr int kMsgStateReport = 1;
// Generous bound on the whole simulation; a run that exceeds it has hung somewhere.
constexpr std::chrono::seconds kRunTimeout{120};

struct Options {
    int events = 200;
    int devices = 5;
    int seed = 47;
};

struct SimulatedDevice {
    std::string mac;
    std::string manufacturer;
    std::string model;
};

struct DeviceState {
    std::string powerState;
    int brightness = 0;
};

// Counts the metric records the library emits and keeps the first one for the summary.
// The port serialises calls to the sink; the mutex guards the reads from the main thread.
class MetricsCounter {
public:
    MetricsCounter() {
        port::setMetricsSink([this](int, const std::string& program, const std::string& groupId,
                                    const std::string& schemaId, int, const std::string& record) {
            std::lock_guard<std::mutex> lock(mutex);
            if (count++ == 0) {
                first = program + " " + groupId + " " + schemaId + ": " + record;
            }
        });
    }
    ~MetricsCounter() { port::setMetricsSink({}); }
    MetricsCounter(const MetricsCounter&) = delete;
    MetricsCounter& operator=(const MetricsCounter&) = delete;

    int emitted() {
        std::lock_guard<std::mutex> lock(mutex);
        return count;
    }
    std::string firstRecord() {
        std::lock_guard<std::mutex> lock(mutex);
        return first;
    }

private:
    std::mutex mutex;
    int count = 0;
    std::string first;
};

// The secured storage base: SMARTHOME_SECURED_STORAGE_DIR when set, otherwise a fresh
// temporary directory that is removed again on exit.
class SecuredStorage {
public:
    bool prepare() {
        const char* configured = getenv("SMARTHOME_SECURED_STORAGE_DIR");
        if (configured != nullptr && configured[0] != '\0') {
            base = configured;
            return true;
        }
        std::error_code error;
        std::string pattern =
            (std::filesystem::temp_directory_path(error) / "smarthome-demo-XXXXXX").string();
        if (error || mkdtemp(&pattern[0]) == nullptr) {
            return false;
        }
        base = pattern;
        temporary = true;
        return setenv("SMARTHOME_SECURED_STORAGE_DIR", base.c_str(), 1) == 0;
    }
    ~SecuredStorage() {
        if (temporary) {
            std::error_code ignored;
            std::filesystem::remove_all(base, ignored);
        }
    }
    const std::string& directory() const { return base; }
    bool isTemporary() const { return temporary; }

private:
    std::string base;
    bool temporary = false;
};

// Holds the database lock for a scope: statements and transactions created under it must
// be destroyed before it.
class DatabaseLock {
public:
    explicit DatabaseLock(IThreadSafeSQLiteDatabase& database) : database(database) {
        database.lock();
    }
    ~DatabaseLock() { database.unlock(); }
    DatabaseLock(const DatabaseLock&) = delete;
    DatabaseLock& operator=(const DatabaseLock&) = delete;

private:
    IThreadSafeSQLiteDatabase& database;
};

// The hub's storage: the latest state per device and one history row per state change.
// Used from the looper thread (writes) and the executor (reads); the database's lock
// serialises them.
class StateStore {
public:
    bool open(const std::string& path) {
        database = ThreadSafeSQLiteDatabase::getInstance(path);
        // initialize() creates only a new file; a database left by an earlier run is opened.
        if (!database->initialize() && !database->open()) {
            return false;
        }
        // Each run starts from empty tables so that its checks see only its own reports.
        return database->performQuery(
                   "CREATE TABLE IF NOT EXISTS DeviceState (mac TEXT PRIMARY KEY, "
                   "powerState TEXT NOT NULL, brightness INTEGER NOT NULL, "
                   "updates INTEGER NOT NULL)") &&
               database->performQuery(
                   "CREATE TABLE IF NOT EXISTS StateHistory (seq INTEGER PRIMARY KEY, "
                   "mac TEXT NOT NULL, powerState TEXT NOT NULL, brightness INTEGER NOT NULL)") &&
               database->clearAllTablesFromDb();
    }

    // Upserts the device's state and appends the change to the history, in one transaction.
    bool store(int seq, const std::string& mac, const DeviceState& state) {
        DatabaseLock lock(*database);
        auto transaction = database->beginTransaction();
        if (!transaction) {
            return false;
        }
        auto upsert = database->createStatement(
            "INSERT INTO DeviceState (mac, powerState, brightness, updates) VALUES (?, ?, ?, 1) "
            "ON CONFLICT(mac) DO UPDATE SET powerState = excluded.powerState, "
            "brightness = excluded.brightness, updates = updates + 1");
        auto append = database->createStatement(
            "INSERT INTO StateHistory (seq, mac, powerState, brightness) VALUES (?, ?, ?, ?)");
        const bool written = upsert->bindStringParameter(1, mac) &&
                             upsert->bindStringParameter(2, state.powerState) &&
                             upsert->bindIntParameter(3, state.brightness) && upsert->step() &&
                             append->bindIntParameter(1, seq) &&
                             append->bindStringParameter(2, mac) &&
                             append->bindStringParameter(3, state.powerState) &&
                             append->bindIntParameter(4, state.brightness) && append->step();
        // Statements end before the transaction completes; a failed write rolls back.
        upsert.reset();
        append.reset();
        if (!written) {
            transaction->rollback();
            return false;
        }
        return transaction->commit();
    }

    // The stored state, or false when the device has none (or the query failed).
    bool load(const std::string& mac, DeviceState& state) {
        DatabaseLock lock(*database);
        auto query = database->createStatement(
            "SELECT powerState, brightness FROM DeviceState WHERE mac = ?");
        if (!query->bindStringParameter(1, mac) || !query->step() ||
            query->getStepResult() != SQLITE_ROW) {
            return false;
        }
        state.powerState = query->getColumnText(0);
        state.brightness = query->getColumnInt(1);
        return true;
    }

    // Rows in table, or -1 when the count fails. table is one of this class's own names.
    int countRows(const std::string& table) {
        DatabaseLock lock(*database);
        auto query =
            database->createStatement("SELECT COUNT(*) FROM " + quoteSQLiteIdentifier(table));
        if (!query->step() || query->getStepResult() != SQLITE_ROW) {
            return -1;
        }
        return query->getColumnInt(0);
    }

    void close() {
        if (database) {
            database->close();
        }
    }

private:
    std::shared_ptr<ThreadSafeSQLiteDatabase> database;
};

// The hub component: its Handler serialises the reports on the looper thread.
class Hub {
public:
    Hub(const std::shared_ptr<Looper>& looper, StateStore& store,
        const std::vector<SimulatedDevice>& devices)
        : store(store),
          handler(looper, [this](std::unique_ptr<Message> message) { handle(*message); }) {
        for (const SimulatedDevice& device : devices) {
            tallies.emplace(device.mac, SHMetric::Device(device.manufacturer, device.model));
        }
    }

    // Called on the publishing thread: hands the payload to the looper thread.
    bool onEvent(const char* data, unsigned size) {
        auto payload = std::make_shared<std::string>(data != nullptr ? data : "", size);
        return handler.sendMessage(
            handler.obtainMessage(kMsgStateReport, ++received, -1, std::shared_ptr<void>(payload)));
    }

    // Withdraws what is still queued and waits for a running report.
    void quit() { handler.quitSafely(); }

    // Read once the looper has quit.
    int handled = 0;
    int stateChanges = 0;
    int unreachable = 0;
    int failures = 0;
    std::map<std::string, SHMetric::Device> tallies;

private:
    void handle(const Message& message) {
        if (message.what != kMsgStateReport) {
            return;
        }
        ++handled;
        const auto& payload = *static_cast<const std::string*>(message.data.get());
        JSONDocument report;
        if (!JSONUtil::parseIntoValue(report, payload, &logger) || !report.IsObject()) {
            ++failures;
            return;
        }
        const JSONValue& macValue = JSONUtil::getOptionalValue(report, "mac");
        const JSONValue& reachableValue = JSONUtil::getOptionalValue(report, "reachable");
        const std::string mac = StringUtils::toUpperCase(
            StringUtils::trim(macValue.IsString() ? macValue.GetString() : ""));
        auto tally = tallies.find(mac);
        if (tally == tallies.end() || !reachableValue.IsBool()) {
            logger.w("%s:event=stateReportDropped,reason=unknownDeviceOrMalformed,device=%s",
                     "handleStateReport", logger.compressAndObfuscateUid(mac).c_str());
            ++failures;
            return;
        }
        const std::string device = logger.compressAndObfuscateMac(mac);
        if (!reachableValue.GetBool()) {
            tally->second.recordRequest(false);
            ++unreachable;
            logger.i("%s:event=deviceUnreachable,seq=%d,device=%s", "handleStateReport",
                     message.arg1, device.c_str());
            emitCounter("DemoDeviceUnreachable");
            return;
        }
        DeviceState state;
        const JSONValue& power = JSONUtil::getOptionalValue(report, "powerState");
        const JSONValue& brightness = JSONUtil::getOptionalValue(report, "brightness");
        state.powerState = power.IsString() ? power.GetString() : "";
        state.brightness = brightness.IsInt() ? brightness.GetInt() : -1;
        if (state.powerState.empty() || state.brightness < 0 ||
            !store.store(message.arg1, mac, state)) {
            tally->second.recordRequest(false);
            logger.e("%s:event=stateNotStored,device=%s", "handleStateReport", device.c_str());
            ++failures;
            return;
        }
        tally->second.recordRequest(true);
        ++stateChanges;
        logger.i("%s:event=stateChanged,seq=%d,device=%s,powerState=%s,brightness=%d",
                 "handleStateReport", message.arg1, device.c_str(), state.powerState.c_str(),
                 state.brightness);
        emitCounter("DemoStateReportHandled");
    }

    static void emitCounter(const std::string& name) {
        // Emitted when it goes out of scope.
        const SHMetric metric(kProgram, kMetricSource, name);
    }

    StateStore& store;
    std::atomic<int> received{0};
    Handler handler;  // last: destroyed (and joined with its callback) before the rest
};

// The protocol adapter's side: builds the device reports and publishes them on the
// connector. Runs only on the executor, whose jobs are serialised, so the connector (which
// has no lock of its own) is never used by two threads at once.
class Simulator {
public:
    Simulator(std::vector<SimulatedDevice> devices, int seed)
        : devices(std::move(devices)), random(static_cast<unsigned>(seed)) {}

    void publishOne() {
        const SimulatedDevice& device = devices[pick(devices.size())];
        // About one report in sixteen finds the device unreachable.
        const bool reachable = pick(16) != 0;
        JSONDocument report;
        auto& allocator = report.GetAllocator();
        report.SetObject();
        report.AddMember("mac", JSONValue(device.mac, allocator), allocator);
        report.AddMember("reachable", reachable, allocator);
        if (reachable) {
            DeviceState state{pick(2) == 0 ? "ON" : "OFF", static_cast<int>(pick(101))};
            report.AddMember("powerState", JSONValue(state.powerState, allocator), allocator);
            report.AddMember("brightness", state.brightness, allocator);
            expected[device.mac] = state;
        }
        if (!SmartHomedInProcessConnector::getInstance()->publishEvent(
                kStateEvent, JSONUtil::getStringForJSON(report))) {
            ++unpublished;
        }
    }

    // Asks the hub for every device's state through the connector and compares it with
    // the last report sent. Returns the number of devices whose answer matched.
    int verify() {
        int matched = 0;
        for (const auto& entry : expected) {
            auto reply = SmartHomedInProcessConnector::getInstance()->makeSyncRequest(
                "com.tirn47.smarthomed", kGetStateRequest, entry.first.data(),
                static_cast<unsigned>(entry.first.size()));
            JSONDocument answer;
            const std::string text(reply.second.begin(), reply.second.end());
            if (reply.first != ConnectorConstants::STATUS_DELIVERED ||
                !JSONUtil::parseIntoValue(answer, text, &logger)) {
                continue;
            }
            const JSONValue& power = JSONUtil::getOptionalValue(answer, "powerState");
            const JSONValue& brightness = JSONUtil::getOptionalValue(answer, "brightness");
            const bool same = power.IsString() && entry.second.powerState == power.GetString() &&
                              brightness.IsInt() && entry.second.brightness == brightness.GetInt();
            logger.i("%s:event=stateQueried,device=%s,match=%s", "verify",
                     logger.compressAndObfuscateMac(entry.first).c_str(), same ? "true" : "false");
            matched += same ? 1 : 0;
        }
        return matched;
    }

    int devicesWithState() const { return static_cast<int>(expected.size()); }
    int unpublished = 0;

private:
    size_t pick(size_t bound) {
        return std::uniform_int_distribution<size_t>(0, bound - 1)(random);
    }

    std::vector<SimulatedDevice> devices;
    std::mt19937 random;
    std::map<std::string, DeviceState> expected;  // mac -> last state reported
};

// Answers "getState" with the stored state of the device whose MAC is the request payload.
std::vector<char> answerGetState(StateStore& store, const char* data, unsigned size) {
    const std::string mac(data != nullptr ? data : "", size);
    JSONDocument answer;
    auto& allocator = answer.GetAllocator();
    answer.SetObject();
    DeviceState state;
    if (store.load(mac, state)) {
        answer.AddMember("powerState", JSONValue(state.powerState, allocator), allocator);
        answer.AddMember("brightness", state.brightness, allocator);
    } else {
        answer.AddMember("error", "UNKNOWN_DEVICE", allocator);
    }
    const std::string text = JSONUtil::getStringForJSON(answer);
    return std::vector<char>(text.begin(), text.end());
}

std::vector<SimulatedDevice> makeDevices(int count) {
    static const char* const kModels[][2] = {{"Acme", "Bulb"},     {"Acme", "Plug"},
                                             {"Lumo", "Strip"},    {"Zenith", "Dimmer"},
                                             {"Zenith", "Sensor"}, {"Lumo", "Bulb"}};
    std::vector<SimulatedDevice> devices;
    for (int i = 0; i < count; ++i) {
        char mac[32];
        std::snprintf(mac, sizeof(mac), "00:17:88:A1:B2:%02X", static_cast<unsigned>(i) & 0xFFU);
        const auto& model = kModels[i % 6];
        devices.push_back({mac, model[0], model[1]});
    }
    return devices;
}

bool parseOptions(int argc, char** argv, Options& options) {
    for (int i = 1; i < argc; ++i) {
        const std::string name = argv[i];
        int* target = name == "--events"    ? &options.events
                      : name == "--devices" ? &options.devices
                      : name == "--seed"    ? &options.seed
                                            : nullptr;
        if (target == nullptr || i + 1 >= argc || !StringUtils::stringToInt(argv[++i], target)) {
            return false;
        }
    }
    return options.events >= 1 && options.events <= 1000000 && options.devices >= 1 &&
           options.devices <= 64 && options.seed >= 0;
}

int fail(const char* reason) {
    std::fprintf(stderr, "smarthome-demo-daemon: %s\n", reason);
    return 1;
}

int run(const Options& options) {
    MetricsCounter metrics;
    SecuredStorage storage;
    if (!storage.prepare()) {
        return fail("cannot create a temporary secured storage directory");
    }
    const std::string path = DatabaseUtility::getCapInstanceDatabasePath(kDatabaseDirectory);
    StateStore store;
    if (path.empty() || !store.open(path)) {
        store.close();
        return fail(("cannot open the state database under " + storage.directory()).c_str());
    }
    logger.i("%s:event=started,events=%d,devices=%d", "run", options.events, options.devices);

    const std::vector<SimulatedDevice> devices = makeDevices(options.devices);
    auto looper = Looper::create();
    Hub hub(looper, store, devices);
    auto connector = SmartHomedInProcessConnector::getInstance();
    connector->subscribeForEvent(kPublisher, kStateEvent, [&hub](const char* data, unsigned size) {
        hub.onEvent(data, size);
    });
    connector->registerSyncRequestHandler(
        kGetStateRequest,
        [&store](const char* data, unsigned size) { return answerGetState(store, data, size); });

    // The adapter publishes every report, then waits for the hub to have handled them all
    // (flush) before it queries the stored states.
    auto pool = std::make_shared<DynamicThreadPool>(2);
    auto executor = TaskExecutor::create([](std::unique_ptr<Message>) {}, pool);
    Simulator simulator(devices, options.seed);
    std::promise<int> verified;
    for (int i = 0; i < options.events; ++i) {
        executor->post([&simulator] { simulator.publishOne(); });
    }
    executor->post([&] {
        looper->flush();
        verified.set_value(simulator.verify());
    });
    auto result = verified.get_future();
    if (result.wait_for(kRunTimeout) != std::future_status::ready) {
        // Something hangs: the executor's job still uses this frame, so no orderly
        // shutdown is possible.
        fail("the simulation did not finish in time");
        std::_Exit(1);
    }
    const int matched = result.get();

    // Shut down in dependency order: no new reports, then the hub, then its looper.
    executor->quitSafely();
    pool->shutdown();
    connector->unsubscribeForEvent(kPublisher, kStateEvent);
    connector->unregisterSyncRequestHandler(kGetStateRequest);
    hub.quit();
    looper->quitSafely();

    int ratios = 0;
    for (const auto& entry : hub.tallies) {
        const SHMetric::Device& device = entry.second;
        if (device.getTotal() == 0) {
            continue;  // no ratio without requests
        }
        const SHMetric metric(
            kProgram, kMetricSource,
            SHMetric::getMetricNameFromModel(device.getManufacturerName(), device.getModelName(),
                                             "DemoFailureRatio"),
            device.getFailureRatio());
        ++ratios;
    }
    const int stateRows = store.countRows("DeviceState");
    const int historyRows = store.countRows("StateHistory");
    store.close();
    logger.i("%s:event=stopped,handled=%d", "run", hub.handled);

    std::printf("smarthome-demo-daemon summary\n");
    std::printf("  events handled    %d of %d (%d state changes, %d unreachable, %d failed)\n",
                hub.handled, options.events, hub.stateChanges, hub.unreachable, hub.failures);
    std::printf("  rows stored       %d in DeviceState, %d in StateHistory\n", stateRows,
                historyRows);
    std::printf("  getState checks   %d of %d devices matched their last report\n", matched,
                simulator.devicesWithState());
    std::printf("  metrics emitted   %d (%d report counters, %d failure ratios)\n",
                metrics.emitted(), hub.handled, ratios);
    std::printf("  first metric      %s\n", metrics.firstRecord().c_str());
    std::printf("  database          %s%s\n", path.c_str(),
                storage.isTemporary() ? " (temporary, removed on exit)" : "");

    if (hub.handled != options.events || hub.failures != 0 || simulator.unpublished != 0) {
        return fail("not every report was published and handled");
    }
    if (stateRows != simulator.devicesWithState() || historyRows != hub.stateChanges) {
        return fail("the database does not hold one row per device and per state change");
    }
    if (matched != simulator.devicesWithState()) {
        return fail("a stored state differs from the device's last report");
    }
    if (metrics.emitted() != hub.handled + ratios) {
        return fail("the metrics emitted do not match the reports handled");
    }
    std::printf("all checks passed\n");
    return 0;
}

}  // namespace
}  // namespace smarthome

int main(int argc, char** argv) {
    smarthome::Options options;
    const bool help = argc == 2 && std::strcmp(argv[1], "--help") == 0;
    if (help || !smarthome::parseOptions(argc, argv, options)) {
        std::fprintf(help ? stdout : stderr,
                     "usage: %s [--events N (1..1000000, default 200)] [--devices N (1..64, "
                     "default 5)] [--seed N (default 47)]\n",
                     argv[0]);
        return help ? 0 : 2;
    }
    return smarthome::run(options);
}
