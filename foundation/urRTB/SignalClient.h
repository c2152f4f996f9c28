// The owner of connections.
#pragma once

#include <cstddef>

#include "foundation/ur/Export.h"
#include "foundation/ur/containers.h"
#include "foundation/urRTB/Connection.h"

namespace urRTB {

/// Owns connections to any number of signals and ends them when it goes.
///
/// Usually a member of the object whose member functions are connected, declared last so that it goes first.
/// A copied client starts without connections, and assigning leaves both sides alone.
/// Used by one thread at a time, like the signals it is connected to.
class NX_API SignalClient {
public:
    SignalClient() noexcept = default;
    SignalClient(SignalClient const& /*other*/) noexcept {}
    SignalClient& operator=(SignalClient const& /*other*/) noexcept { return *this; }
    ~SignalClient() {
        while (!connections_.empty()) disconnectAll();  // again if the end of one gave this client another
    }

    /// Makes the connection one of the client's, and returns it.
    Connection own(Connection const& connection);
    void disconnectAll() noexcept;
    /// The number of connections owned that have not ended.
    [[nodiscard]] std::size_t connectionCount() const noexcept;

private:
    void forgetEnded();

    ur::vector<Connection> connections_;  ///< some may have ended
};

}  // namespace urRTB
