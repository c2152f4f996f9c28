// How much time each activity has taken.
#pragma once

#include "foundation/ur/Export.h"
#include "foundation/ur/containers.h"
#include "foundation/urOS/StopWatch.h"
#include "foundation/urString/CString.h"
#include "support/services/PerformanceCode.h"

namespace urOS {
class OStream;
}

namespace nxSupport {

/// Keeps a stopwatch for each activity, which `PerfScope` starts and stops, and how its time is shown.
///
/// One for the process, made on first use; a copy has the times of that moment. Main thread only.
class NX_API Performance {
public:
    static Performance& getInstance();

    /// For a value that is no activity, a watch that stands at zero and that nobody else reads.
    [[nodiscard]] urOS::StopWatch& getWatch(PerformanceCode code);
    /// Whether charging an activity forgets its time so far. False until the host sets it.
    [[nodiscard]] static bool& clearEachCharge();

    /// Whether people are shown the reciprocal, a rate; false for a value that is no activity.
    [[nodiscard]] static bool displayInverse(PerformanceCode code) noexcept;
    /// The `printf` format, for one floating-point number, that shows the time (or the rate);
    /// "~ unknown ~" for a value that is no activity.
    [[nodiscard]] static urString::CString labelFormat(PerformanceCode code);

    /// Prints each activity that has time, by its label, one a line.
    void printTimes(urOS::OStream& out) const;

private:
    friend class PerfScope;

    Performance();

    ur::vector<urOS::StopWatch> watches_;  ///< by code
    bool clearEachCharge_ = false;
};

}  // namespace nxSupport
