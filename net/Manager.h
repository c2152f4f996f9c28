// Where requests and connections come from.
#pragma once

#include "foundation/ur/Export.h"
#include "net/Connection.h"
#include "net/Request.h"

namespace nxNet {

/// Makes requests and connections. The host derives from it, owns it and hands it to its scripts and modules.
class NX_API Manager {
public:
    virtual ~Manager();

    [[nodiscard]] ur::Reference<Request> createRequest() { return onCreateRequest(); }
    [[nodiscard]] ur::Reference<Connection> createConnection() { return onCreateConnection(); }

protected:
    Manager() = default;
    Manager(Manager const&) = default;
    Manager& operator=(Manager const&) = default;

    /// A new request; a plain one will do.
    virtual ur::Reference<Request> onCreateRequest() = 0;
    /// A new connection of the host's own class.
    virtual ur::Reference<Connection> onCreateConnection() = 0;
};

}  // namespace nxNet
