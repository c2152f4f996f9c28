// Charges time to activities.
#include "support/services/PerfScope.h"

#include "support/services/Performance.h"
#include "support/services/Timeline.h"

namespace nxSupport {

PerfScope::~PerfScope() { stop(); }

void PerfScope::charge(PerformanceCode code) {
    if (code == current_ || (!isActivity(code) && code != Perf_None)) return;
    stop();
    current_ = code;
    if (code != Perf_None) start();
}

void PerfScope::start() {
    Performance& performance = Performance::getInstance();
    urOS::StopWatch& watch = performance.getWatch(current_);
    if (performance.clearEachCharge_) watch.clear();
    if (Timeline* const timeline = Timeline::active()) [[unlikely]]
        timeline->beginPerformance(current_);
    watch.start();
}

void PerfScope::stop() {
    if (current_ == Perf_None) return;
    Performance::getInstance().getWatch(current_).stop();
    if (Timeline* const timeline = Timeline::active()) [[unlikely]]
        timeline->endPerformance(current_);
}

}  // namespace nxSupport
