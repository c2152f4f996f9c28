// The limits of a script.
#pragma once

#include <cstddef>
#include <cstdint>

namespace nxLC {

/// Limits what a script may use. 0 sets no limit.
///
/// Bytes include those of the state and of the native objects that scripts create or receive: `ur::Account`.
struct Limits {
    /// Lua instructions that one call from native code into a script may run, including everything that it calls and
    /// all coroutines. The call may also take a microsecond of the processor's time for each, but no more.
    std::uint64_t instructions = 0;
    /// Bytes that the call may add to those in use when it begins.
    std::size_t memory = 0;
    /// Bytes that may be in use in total while a script runs.
    std::size_t totalMemory = 0;
    /// When a table passes into native code, each shared part is copied at every occurrence. This many values are
    /// allowed beyond those that the state can hold at once; a text counts as one value per 16 bytes. 0 allows none.
    std::size_t repeatedValues = std::size_t(1) << 21U;
};

}  // namespace nxLC
