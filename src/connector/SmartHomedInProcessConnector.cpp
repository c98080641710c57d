#include "smarthome/SmartHomedInProcessConnector.h"

namespace smarthome {

std::shared_ptr<InProcessConnector> SmartHomedInProcessConnector::getInstance() {
    static const std::shared_ptr<InProcessConnector> instance =
        std::make_shared<InProcessConnector>("com.tirn47.smarthomed");
    return instance;
}

}  // namespace smarthome
