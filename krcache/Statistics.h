// Counts of a manager's work and contents.
#pragma once

#include <cstdint>

#include "foundation/ur/TypeInfo.h"
#include "foundation/ur/containers.h"

namespace urKRCache {

/// The resources of one class of keys.
struct ClassUsage {
    ur::TypeInfo keyClass;
    std::uint64_t bytes = 0;      ///< in memory now, as measured when they were built or read back
    std::uint64_t builds = 0;     ///< calls of `onCreateResource`
    std::uint64_t resources = 0;  ///< in memory now
    double buildSeconds = 0;      ///< in builds, including the sources built within; estimated after the first 16
                                  ///< builds
};

/// Counts since the manager was created, unless stated otherwise. A value.
struct Statistics {
    std::uint64_t hits = 0;             ///< accesses that found the resource in memory
    std::uint64_t builds = 0;           ///< resources built by keys
    std::uint64_t buildsWithout = 0;    ///< calls in which a key built nothing
    std::uint64_t clearedForLimit = 0;  ///< resources dropped to stay within the limit
    std::uint64_t clearedOnRequest = 0;
    std::uint64_t clearedByRemoval = 0;
    std::uint64_t clearedByPageFailure = 0;   ///< dropped because the page file could not store or return them
    std::uint64_t clearedByBuildFailure = 0;  ///< dropped because their initialisation threw
    std::uint64_t pagesOut = 0;
    std::uint64_t pagesOutBytes = 0;
    std::uint64_t pagesIn = 0;
    std::uint64_t pagesInBytes = 0;
    std::uint64_t memoryUsed = 0;  ///< in bytes, now
    std::uint64_t peakMemoryUsed = 0;
    ur::vector<ClassUsage> classes;  ///< in the platform's order of type identities
};

/// One count, for reports and scripts.
struct StatisticsRow {
    char const* name;
    char const* unit;  ///< empty for plain counts
    std::uint64_t Statistics::*value;
};

/// Every count of `Statistics`, once.
inline constexpr StatisticsRow statisticsRows[] = {
    {"hits", "", &Statistics::hits},
    {"builds", "", &Statistics::builds},
    {"buildsWithout", "", &Statistics::buildsWithout},
    {"evictions", "", &Statistics::clearedForLimit},
    {"clearedOnRequest", "", &Statistics::clearedOnRequest},
    {"clearedByRemoval", "", &Statistics::clearedByRemoval},
    {"clearedByPageFailure", "", &Statistics::clearedByPageFailure},
    {"clearedByBuildFailure", "", &Statistics::clearedByBuildFailure},
    {"pagesOut", "", &Statistics::pagesOut},
    {"pagesOutBytes", "bytes", &Statistics::pagesOutBytes},
    {"pagesIn", "", &Statistics::pagesIn},
    {"pagesInBytes", "bytes", &Statistics::pagesInBytes},
    {"memoryUsed", "bytes", &Statistics::memoryUsed},
    {"peakMemoryUsed", "bytes", &Statistics::peakMemoryUsed},
};
static_assert(sizeof(Statistics) ==
                  sizeof statisticsRows / sizeof *statisticsRows * sizeof(std::uint64_t) + sizeof Statistics::classes,
              "each count has a row");

}  // namespace urKRCache
