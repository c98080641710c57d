#include "smarthome/GenericConnector.h"

#include <utility>

namespace smarthome {

GenericConnector::GenericConnector(std::string connectorName,
                                   ConnectorConstants::ConnectorType type)
    : connectorName(std::move(connectorName)), connectorType(type) {}

bool GenericConnector::initialize() {
    return true;
}

}  // namespace smarthome
