// The scoped object by which code charges its time to activities.
#pragma once

#include "foundation/ur/Export.h"
#include "support/services/PerformanceCode.h"

namespace nxSupport {

/// Charges the time from each `charge` to the next, or to its own end, to one activity at most.
///
/// Usually a local variable. A copy is charging the same activity, and either of the two then stops its watch.
/// What it charges is also recorded on the active `Timeline`, if there is one. Main thread only.
class NX_API PerfScope {
public:
    PerfScope() noexcept = default;
    PerfScope(PerfScope const&) noexcept = default;
    PerfScope& operator=(PerfScope const&) noexcept = default;
    virtual ~PerfScope();

    /// Charges `code` from now on, or nothing for `Perf_None`. Charging what is being charged already goes on
    /// without a break. A value that is neither changes nothing.
    void charge(PerformanceCode code);

private:
    void start();
    void stop();

    PerformanceCode current_ = Perf_None;
};

}  // namespace nxSupport
