// How much a script may use up.
#pragma once

#include <cstddef>
#include <cstdint>

namespace nxLC {

/// What one call from native code into a script may use, with everything that it calls in turn. 0 sets no limit.
struct Limits {
    /// Instructions of the Lua machine, counted in thousands.
    std::uint64_t instructions = 0;
    /// Bytes that the call may add to what the state holds at its beginning.
    std::size_t memory = 0;
};

}  // namespace nxLC
