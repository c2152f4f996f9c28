// The debug channel of histories.
#pragma once

#include "foundation/ur/Export.h"
#include "foundation/urOS/DebugChannel.h"

namespace nxTXN {

/// The channel of all managers of the process, disabled by default. Use it on the managers' thread.
[[nodiscard]] NX_API urOS::DebugChannel& debugChannel();
/// Puts a channel in its place, which the caller owns and keeps while it is in use; null for the former one again.
NX_API void setDebugChannel(urOS::DebugChannel* channel) noexcept;

}  // namespace nxTXN
