// How much a script may use up.
#pragma once

#include <cstddef>
#include <cstdint>

namespace nxLC {

/// What scripts may use. 0 sets no limit.
///
/// Bytes are those of the state and of the native objects that scripts have made or met: `ur::Account`.
struct Limits {
    /// Instructions of the Lua machine that one call from native code into a script may run, with everything that it
    /// calls in turn. Those of coroutines count.
    std::uint64_t instructions = 0;
    /// Bytes that the call may add to what is there at its beginning.
    std::size_t memory = 0;
    /// Bytes that may be there altogether while a script runs.
    std::size_t totalMemory = 0;
    /// When a table crosses into native code, its shared parts are written out each time: so many values more than the
    /// state can hold at once, a text counting as one for each 16 bytes. 0 allows none.
    std::size_t repeatedValues = std::size_t(1) << 21U;
};

}  // namespace nxLC
