// An owner of connections.
#pragma once

#include <cstddef>

#include "foundation/ur/Export.h"
#include "foundation/ur/containers.h"
#include "foundation/urRTB/Connection.h"

namespace urRTB {

/// Owns connections to any number of signals and ends them when destroyed.
///
/// Usually a member of the object whose member functions are connected, declared last so that it is destroyed first. A
/// copied client starts without connections; assigning changes neither side's. One thread at a time, like its signals.
class NX_API SignalClient {
public:
    SignalClient() noexcept = default;
    SignalClient(SignalClient const& /*other*/) noexcept {}
    SignalClient& operator=(SignalClient const& /*other*/) noexcept { return *this; }
    ~SignalClient() {
        while (!connections_.empty()) disconnectAll();  // repeat if the end of one added another
    }

    /// Adds the connection to the client and returns it.
    Connection own(Connection const& connection);
    void disconnectAll() noexcept;
    /// The number of owned connections that have not ended.
    [[nodiscard]] std::size_t connectionCount() const noexcept;

private:
    void forgetEnded();

    ur::vector<Connection> connections_;  ///< some may have ended
};

}  // namespace urRTB
