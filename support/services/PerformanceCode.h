// The activities to which time is charged.
#pragma once

#include <cstdint>

namespace nxSupport {

/// An activity of a task or of a frame.
enum PerformanceCode : std::int32_t {
    Perf_TaskPreBat = 0,
    Perf_TaskPreExec = 1,
    Perf_TaskExecute = 2,
    Perf_TaskPostExec = 3,
    Perf_UpdateRel = 4,
    Perf_UpdateDoc = 5,
    Perf_UpdateUI = 6,
    Perf_TaskPostBat = 7,
    Perf_DrawInit = 8,
    Perf_DrawScene = 9,
    Perf_DrawScreen = 10,
    Perf_DrawXray = 11,
    Perf_DrawViewDp = 12,
    Perf_DrawSelect = 13,
    Perf_DrawShadow = 14,
    Perf_DrawTotal = 15,
    Perf_Tumble = 16,
    Perf_None = 18,  ///< not an activity: no time is charged
};

/// The number of activities. They have the values from 0 on.
inline constexpr std::int32_t numPerformanceCodes = 17;

/// Whether the value is an activity. False for `Perf_None` and for any value without a name.
[[nodiscard]] constexpr bool isActivity(PerformanceCode code) noexcept {
    return code >= 0 && code < numPerformanceCodes;
}

}  // namespace nxSupport
