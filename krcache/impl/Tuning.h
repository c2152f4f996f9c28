// What decides which code of a cache runs, and how soon.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/urOS/sysInfo.h"

namespace urKRCache {

/// Sizes of a manager. Tests make managers with smaller ones, so that a few keys reach the deep cases.
struct Tuning {
    std::size_t tableSlots = 16;             ///< of the table of keys at first; a power of two, 2 at least
    std::uint64_t pageExtension = 1048576;   ///< bytes by which the page file grows at least
    std::size_t pageBlock = 65536;           ///< bytes that are written and checked at a time
    std::uint64_t sampleInterval = 2097152;  ///< bytes requested between two samples of the resident size
    std::uint64_t timedBuilds = 16;          ///< of each class of keys, the first are all timed
    std::uint64_t buildsPerSample = 256;     ///< and later one of so many; a power of two
    /// How deep removals, and evictions, may nest that hooks of others cause.
    unsigned nestedHooks = 16;
    /// Of the process, in bytes.
    std::uint64_t (*residentSize)() = [] { return urOS::sysInfo().processResidentMemory() << 10; };
};

}  // namespace urKRCache
