// Which addresses belong to the public network.
#pragma once

#include <sys/socket.h>

namespace nxhost {

/// False for loopback, link-local and private addresses, for those that mean no single host of the public network, and
/// for addresses in which such a one is wrapped.
[[nodiscard]] bool isPublic(sockaddr const* address) noexcept;

}  // namespace nxhost
