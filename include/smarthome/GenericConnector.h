// Base of every connector transport: all three connector interfaces, a name and a
// transport kind.
// Thread-safety: name and type are immutable; the rest is up to the transport.
#pragma once

#include <string>

#include "smarthome/ConnectorConstants.h"
#include "smarthome/IAsyncReqConnector.h"
#include "smarthome/IPubSubConnector.h"
#include "smarthome/ISyncReqConnector.h"

namespace smarthome {

class GenericConnector : public virtual IPubSubConnector,
                         public virtual ISyncReqConnector,
                         public virtual IAsyncReqConnector {
public:
    GenericConnector(std::string connectorName, ConnectorConstants::ConnectorType type);
    ~GenericConnector() override = default;

    // Nothing to set up for the transports of this library: always true.
    virtual bool initialize();

    const std::string& getConnectorName() const { return connectorName; }
    ConnectorConstants::ConnectorType getConnectorType() const { return connectorType; }

private:
    const std::string connectorName;
    const ConnectorConstants::ConnectorType connectorType;
};

}  // namespace smarthome
