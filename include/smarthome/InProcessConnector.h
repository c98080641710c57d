// Connector between components of one process: events and requests are delivered by
// direct calls on the caller's thread; an asynchronous request runs its handler on a new
// thread and returns once that handler has returned.
//
// Ownership: holds the subscribers' callbacks and the request handlers it is given.
// Thread-safety: none. Callers confine a connector to one thread or serialise access.
// A callback may itself subscribe, unsubscribe, publish or register on the same
// connector: deliveries work on a snapshot, so such changes take effect afterwards.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "smarthome/GenericConnector.h"
#include "smarthome/SmartHomeLogger.h"

namespace smarthome {

class InProcessConnector : public virtual GenericConnector {
public:
    explicit InProcessConnector(const std::string& connectorName);
    ~InProcessConnector() override = default;

    bool subscribeForEvent(const std::string& publisher, const std::string& event,
                           EventCallback callback) override;
    bool unsubscribeForEvent(const std::string& publisher, const std::string& event) override;
    bool unsubscribeFromPublisher(const std::string& publisher) override;
    bool publishEvent(const std::string& event) override;
    bool publishEvent(const std::string& event, const std::string& payload) override;
    bool publishEvent(const std::string& event, const char* data, unsigned size) override;

    bool registerSyncRequestHandler(const std::string& requestName,
                                    SyncRequestHandler handler) override;
    bool unregisterSyncRequestHandler(const std::string& requestName) override;
    std::pair<int, std::vector<char>> makeSyncRequest(const std::string& serviceName,
                                                      const std::string& requestName,
                                                      const char* data, unsigned size) override;

    bool registerAsyncRequestHandler(const std::string& requestName,
                                     AsyncRequestHandler handler) override;
    bool unregisterAsyncRequestHandler(const std::string& requestName) override;
    int makeAsyncRequest(const std::string& serviceName, const std::string& requestName,
                         const char* data, unsigned size, ReplyCallback reply) override;

private:
    using SharedEventCallback = std::shared_ptr<const EventCallback>;
    using SharedSyncHandler = std::shared_ptr<const SyncRequestHandler>;
    using SharedAsyncHandler = std::shared_ptr<const AsyncRequestHandler>;

    SmartHomeLogger logger;
    // event -> publisher -> wrapped subscriber callback
    std::unordered_map<std::string, std::map<std::string, SharedEventCallback>> subscriptions;
    std::unordered_map<std::string, SharedSyncHandler> syncHandlers;
    std::unordered_map<std::string, SharedAsyncHandler> asyncHandlers;
};

}  // namespace smarthome
