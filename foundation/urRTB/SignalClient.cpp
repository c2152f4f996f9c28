// Tracks owned connections.
#include "foundation/urRTB/SignalClient.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace urRTB {

Connection SignalClient::own(Connection const& connection) {
    ScopedConnection guard(connection);
    if (connections_.size() == connections_.capacity()) forgetEnded();
    connections_.push_back(connection);
    return guard.release();
}

void SignalClient::disconnectAll() noexcept {
    // The end of a callback may destroy this client.
    auto const ended = std::exchange(connections_, {});
    for (Connection const& connection : ended) connection.disconnect();
}

std::size_t SignalClient::connectionCount() const noexcept {
    auto const count =
        std::count_if(connections_.begin(), connections_.end(), [](auto const& c) { return c.connected(); });
    return static_cast<std::size_t>(count);
}

// Leaves at least half of the capacity free, so that the cost per connection stays constant.
void SignalClient::forgetEnded() {
    auto const ended =
        std::stable_partition(connections_.begin(), connections_.end(), [](auto const& c) { return c.connected(); });
    // Destroyed last: dropping a handle may free a callback whose destructor comes back here.
    ur::vector<Connection> dropped(std::make_move_iterator(ended), std::make_move_iterator(connections_.end()));
    connections_.erase(ended, connections_.end());
    connections_.reserve(std::max<std::size_t>(4, connections_.size() * 2));
}

}  // namespace urRTB
