// The daemon's one shared in-process connector, named "com.tirn47.smarthomed".
// Thread-safety: getInstance may be called from any thread (the first call creates the
// instance exactly once); the connector it returns is not thread-safe.
#pragma once

#include <memory>

#include "smarthome/InProcessConnector.h"

namespace smarthome {

class SmartHomedInProcessConnector {
public:
    static std::shared_ptr<InProcessConnector> getInstance();
};

}  // namespace smarthome
