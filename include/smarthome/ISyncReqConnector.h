// Synchronous request side of a connector: named handlers that answer with bytes.
// Thread-safety: defined by each implementation.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace smarthome {

class ISyncReqConnector {
public:
    using SyncRequestHandler = std::function<std::vector<char>(const char* data, unsigned size)>;

    virtual ~ISyncReqConnector() = default;

    virtual bool registerSyncRequestHandler(const std::string& requestName,
                                            SyncRequestHandler handler) = 0;
    virtual bool unregisterSyncRequestHandler(const std::string& requestName) = 0;
    // Returns (status, reply): status 0 with the handler's reply, or an error status
    // (see ConnectorConstants) with an empty reply.
    virtual std::pair<int, std::vector<char>> makeSyncRequest(const std::string& serviceName,
                                                              const std::string& requestName,
                                                              const char* data, unsigned size) = 0;
};

}  // namespace smarthome
