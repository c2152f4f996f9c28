// Recognises addresses of the public network.
#pragma once

#include <sys/socket.h>

namespace nxhost {

/// False for loopback, link-local and private addresses, for those that do not belong to a single host of the public
/// network, and for addresses that embed such an address.
[[nodiscard]] bool isPublic(sockaddr const* address) noexcept;

}  // namespace nxhost
