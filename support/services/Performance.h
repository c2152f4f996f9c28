// Measures the time of each activity.
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

/// Keeps a stopwatch for each activity, which `PerfScope` starts and stops, and the format of its time.
///
/// There is one object for the process, created on first use; a copy keeps the times of that moment. Main thread only.
class NX_API Performance {
public:
    static Performance& getInstance();

    /// For a value that is not an activity, returns a watch at zero that is used for nothing else.
    [[nodiscard]] urOS::StopWatch& getWatch(PerformanceCode code);
    /// Whether charging an activity first resets its time. False by default; the host may set it.
    [[nodiscard]] static bool& clearEachCharge();

    /// Whether to show the reciprocal, which is a rate. False for a value that is not an activity.
    [[nodiscard]] static bool displayInverse(PerformanceCode code) noexcept;
    /// The `printf` format for the time (or rate), with one floating-point number. "~ unknown ~" for a value that is
    /// not an activity.
    [[nodiscard]] static urString::CString labelFormat(PerformanceCode code);

    /// Prints each activity with a time, with its label, one per line.
    void printTimes(urOS::OStream& out) const;

private:
    friend class PerfScope;

    Performance();

    ur::vector<urOS::StopWatch> watches_;  ///< by code
    bool clearEachCharge_ = false;
};

}  // namespace nxSupport
