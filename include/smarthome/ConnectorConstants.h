// Constants shared by every connector transport: the transport kinds and the status
// codes that requests return.
#pragma once

namespace smarthome {

struct ConnectorConstants {
    // The transport a connector object implements.
    enum class ConnectorType {
        IN_PROCESS,  // components of one process, calls made directly
        IPC,         // components of different processes
    };

    static constexpr int STATUS_DELIVERED = 0;
    static constexpr int STATUS_NO_HANDLER = 2;
    static constexpr int STATUS_NOT_SUPPORTED = 4;
};

}  // namespace smarthome
