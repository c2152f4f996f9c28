// A scoped object that charges time to activities.
#pragma once

#include "foundation/ur/Export.h"
#include "support/services/PerformanceCode.h"

namespace nxSupport {

/// Charges the time from each `charge` to the next, or to its own destruction, to at most one activity.
///
/// Usually a local variable. A copy charges the same activity; the first of the two to stop also stops its watch. The
/// charged time is also recorded on the active `Timeline`, if there is one. Main thread only.
class NX_API PerfScope {
public:
    PerfScope() noexcept = default;
    PerfScope(PerfScope const&) noexcept = default;
    PerfScope& operator=(PerfScope const&) noexcept = default;
    virtual ~PerfScope();

    /// Charges `code` from now on, or nothing for `Perf_None`. Charging the current activity again continues it without
    /// a break. Any other value is ignored.
    void charge(PerformanceCode code);

private:
    void start();
    void stop();

    PerformanceCode current_ = Perf_None;
};

}  // namespace nxSupport
