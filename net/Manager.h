// Creates requests and connections.
#pragma once

#include "foundation/ur/Export.h"
#include "net/Connection.h"
#include "net/Request.h"

namespace nxNet {

/// Creates requests and connections. The host derives from it, owns it and passes it to its scripts and modules.
class NX_API Manager {
public:
    virtual ~Manager();

    [[nodiscard]] ur::Reference<Request> createRequest() { return onCreateRequest(); }
    [[nodiscard]] ur::Reference<Connection> createConnection() { return onCreateConnection(); }

protected:
    Manager() = default;
    Manager(Manager const&) = default;
    Manager& operator=(Manager const&) = default;

    /// Creates a request; a plain one is enough.
    virtual ur::Reference<Request> onCreateRequest() = 0;
    /// Creates a connection of the host's own class.
    virtual ur::Reference<Connection> onCreateConnection() = 0;
};

}  // namespace nxNet
