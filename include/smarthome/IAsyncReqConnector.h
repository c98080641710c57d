// Asynchronous request side of a connector: named handlers that answer through a reply
// function, possibly later and from another thread.
// Thread-safety: defined by each implementation.
#pragma once

#include <functional>
#include <string>

#include "smarthome/ConnectorConstants.h"

namespace smarthome {

class IAsyncReqConnector {
public:
    using ReplyCallback = std::function<void(bool ok, const char* data, unsigned size)>;
    using AsyncRequestHandler = std::function<void(
        const char* data, unsigned size, ReplyCallback reply, const std::string& requestTag)>;
    using RecurringCallback = std::function<void(const char* data, unsigned size)>;

    virtual ~IAsyncReqConnector() = default;

    virtual bool registerAsyncRequestHandler(const std::string& requestName,
                                             AsyncRequestHandler handler) = 0;
    virtual bool unregisterAsyncRequestHandler(const std::string& requestName) = 0;
    // Returns a status of ConnectorConstants.
    virtual int makeAsyncRequest(const std::string& serviceName, const std::string& requestName,
                                 const char* data, unsigned size, ReplyCallback reply) = 0;

    // Recurring callbacks are a feature of other transports; by default not supported.
    virtual bool setRecurringCallback(RecurringCallback /*callback*/) { return false; }
    virtual int makeAsyncRequestWithRecurringCallback(const std::string& /*serviceName*/,
                                                      const std::string& /*requestName*/,
                                                      const char* /*data*/, unsigned /*size*/) {
        return ConnectorConstants::STATUS_NOT_SUPPORTED;
    }
};

}  // namespace smarthome
