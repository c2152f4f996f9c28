// Sizes and intervals of a cache that tests can change.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/urOS/sysInfo.h"

namespace urKRCache {

/// Sizes of a manager. Tests use smaller ones, so that a few keys reach the deep cases.
struct Tuning {
    std::size_t tableSlots = 16;             ///< initial slots in the table of keys; a power of two, at least 2
    std::uint64_t pageExtension = 1048576;   ///< the fewest bytes by which the page file grows
    std::size_t pageBlock = 65536;           ///< bytes written and checked at a time
    std::uint64_t sampleInterval = 2097152;  ///< bytes requested between two samples of the resident size
    std::uint64_t timedBuilds = 16;          ///< this many first builds of each class of keys are all timed
    std::uint64_t buildsPerSample = 256;     ///< later one of this many is timed; a power of two
    /// The deepest nesting of removals, and of evictions, that hooks cause.
    unsigned nestedHooks = 16;
    /// Returns the resident size of the process in bytes.
    std::uint64_t (*residentSize)() = [] { return urOS::sysInfo().processResidentMemory() << 10; };
};

}  // namespace urKRCache
