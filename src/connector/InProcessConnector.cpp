#include "smarthome/InProcessConnector.h"

#include <future>
#include <sstream>
#include <system_error>

namespace smarthome {

InProcessConnector::InProcessConnector(const std::string& connectorName)
    : GenericConnector(connectorName, ConnectorConstants::ConnectorType::IN_PROCESS),
      logger("InProcessConnector") {}

bool InProcessConnector::subscribeForEvent(const std::string& publisher, const std::string& event,
                                           EventCallback callback) {
    std::string key = publisher + ":" + event;
    logger.d("%s:publisher:event=%s", "subscribeForEvent", key.c_str());
    const SmartHomeLogger* log = &logger;
    auto wrapped = std::make_shared<const EventCallback>(
        [log, key, callback = std::move(callback)](const char* data, unsigned size) {
            log->d("receivedEvent=%s", key.c_str());
            callback(data, size);
        });
    subscriptions[event][publisher] = std::move(wrapped);
    return true;
}

bool InProcessConnector::unsubscribeForEvent(const std::string& publisher,
                                             const std::string& event) {
    logger.d("%s:publisher=%s,event=%s", "unsubscribeForEvent", publisher.c_str(), event.c_str());
    auto entry = subscriptions.find(event);
    if (entry == subscriptions.end()) {
        logger.w("%s:clientIsNotSubscribedToTheEventName", "unsubscribeForEvent");
        return false;
    }
    entry->second.erase(publisher);
    return true;
}

bool InProcessConnector::unsubscribeFromPublisher(const std::string& publisher) {
    // Only the last event examined decides the warning: an earlier removal does not
    // prevent it.
    bool lastRemoved = false;
    for (auto& entry : subscriptions) {
        lastRemoved = entry.second.erase(publisher) > 0;
    }
    if (!lastRemoved) {
        logger.w("%s:noHandlerFoundForPublisher=%s", "unsubscribeFromPublisher", publisher.c_str());
    }
    return true;
}

bool InProcessConnector::publishEvent(const std::string& event) {
    return publishEvent(event, nullptr, 0);
}

bool InProcessConnector::publishEvent(const std::string& event, const std::string& payload) {
    return publishEvent(event, payload.data(), static_cast<unsigned>(payload.size()));
}

bool InProcessConnector::publishEvent(const std::string& event, const char* data, unsigned size) {
    auto entry = subscriptions.find(event);
    if (entry == subscriptions.end()) {
        logger.w("%s:noServiceRegisteredForEventName:%s", "publishEvent", event.c_str());
        return false;
    }
    // A callback may change the subscriptions; deliver to the ones present now.
    std::vector<SharedEventCallback> snapshot;
    snapshot.reserve(entry->second.size());
    for (const auto& subscriber : entry->second) {
        snapshot.push_back(subscriber.second);
    }
    for (const auto& callback : snapshot) {
        (*callback)(data, size);
    }
    return true;
}

bool InProcessConnector::registerSyncRequestHandler(const std::string& requestName,
                                                    SyncRequestHandler handler) {
    logger.d("%s:requestName=%s", "registerSyncRequestHandler", requestName.c_str());
    const SmartHomeLogger* log = &logger;
    syncHandlers[requestName] = std::make_shared<const SyncRequestHandler>(
        [log, requestName, handler = std::move(handler)](const char* data, unsigned size) {
            log->d("receivedSyncRequest=%s", requestName.c_str());
            return handler(data, size);
        });
    return true;
}

bool InProcessConnector::unregisterSyncRequestHandler(const std::string& requestName) {
    return syncHandlers.erase(requestName) > 0;
}

std::pair<int, std::vector<char>> InProcessConnector::makeSyncRequest(
    const std::string& /*serviceName*/, const std::string& requestName, const char* data,
    unsigned size) {
    auto entry = syncHandlers.find(requestName);
    if (entry == syncHandlers.end()) {
        logger.e("%s:event=RequestNameNotFound,action=DroppingRequest, requestName:%s",
                 "makeSyncRequest", requestName.c_str());
        return {ConnectorConstants::STATUS_NO_HANDLER, {}};
    }
    SharedSyncHandler handler = entry->second;  // the handler may unregister itself
    return {ConnectorConstants::STATUS_DELIVERED, (*handler)(data, size)};
}

bool InProcessConnector::registerAsyncRequestHandler(const std::string& requestName,
                                                     AsyncRequestHandler handler) {
    logger.d("%s:request=%s", "registerAsyncRequestHandler", requestName.c_str());
    asyncHandlers.emplace(requestName,
                          std::make_shared<const AsyncRequestHandler>(std::move(handler)));
    return true;
}

bool InProcessConnector::unregisterAsyncRequestHandler(const std::string& requestName) {
    return asyncHandlers.erase(requestName) > 0;
}

int InProcessConnector::makeAsyncRequest(const std::string& /*serviceName*/,
                                         const std::string& requestName, const char* data,
                                         unsigned size, ReplyCallback reply) {
    auto entry = asyncHandlers.find(requestName);
    if (entry == asyncHandlers.end()) {
        logger.e("%s:event=RequestNameNotFound,action=DroppingRequest, requestName:%s",
                 "makeAsyncRequest", requestName.c_str());
        return ConnectorConstants::STATUS_NO_HANDLER;
    }
    std::ostringstream tag;
    tag << static_cast<const void*>(&reply);
    SharedAsyncHandler handler = entry->second;
    try {
        // The handler runs on a thread of its own; the returned future waits for it when
        // it is destroyed at the end of this block, so the request has been handled when
        // this call returns.
        std::future<void> done =
            std::async(std::launch::async, [handler, data, size, reply, requestTag = tag.str()] {
                (*handler)(data, size, reply, requestTag);
            });
    } catch (const std::system_error& error) {
        logger.e("%s:event=cannotStartRequestThread,action=DroppingRequest, requestName:%s,err=%s",
                 "makeAsyncRequest", requestName.c_str(), error.what());
        return ConnectorConstants::STATUS_NOT_SUPPORTED;
    }
    return ConnectorConstants::STATUS_DELIVERED;
}

}  // namespace smarthome
