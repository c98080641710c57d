// Publish/subscribe side of a connector: named events, delivered to the callbacks that
// subscribed to (publisher, event). Payloads are opaque bytes.
// Thread-safety: defined by each implementation.
#pragma once

#include <functional>
#include <string>

namespace smarthome {

class IPubSubConnector {
public:
    using EventCallback = std::function<void(const char* data, unsigned size)>;

    virtual ~IPubSubConnector() = default;

    virtual bool subscribeForEvent(const std::string& publisher, const std::string& event,
                                   EventCallback callback) = 0;
    virtual bool unsubscribeForEvent(const std::string& publisher, const std::string& event) = 0;
    virtual bool unsubscribeFromPublisher(const std::string& publisher) = 0;
    virtual bool publishEvent(const std::string& event) = 0;
    virtual bool publishEvent(const std::string& event, const std::string& payload) = 0;
    virtual bool publishEvent(const std::string& event, const char* data, unsigned size) = 0;
};

}  // namespace smarthome
