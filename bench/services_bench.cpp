// Performance scopes and script calls without a time line, which must cost next to nothing.
#include <array>

#include "bench/rows.h"
#include "foundation/urOS/StopWatch.h"
#include "support/services/PerfScope.h"
#include "support/services/Performance.h"
#include "support/services/Timeline.h"

namespace bench {
namespace {

constexpr int repetitions = 100000;

/// A program's own replacement: the watches of two activities, switched by hand.
void switchByHand(int i) {
    static std::array<urOS::StopWatch, 2> watches;
    watches[i % 2 == 0 ? 1 : 0].stop();
    watches[i % 2 == 0 ? 0 : 1].start();
    keep(watches);
}

void switchScope(int i) {
    static nxSupport::PerfScope scope;
    scope.charge(i % 2 == 0 ? nxSupport::Perf_UpdateDoc : nxSupport::Perf_DrawScene);
}

/// Takes as long as a very short script call.
[[gnu::noinline]] int work(int seed) {
    for (int i = 0; i < 300; ++i) {
        seed = seed * 5 + 1;
        keep(seed);
    }
    return seed;
}

void callRecorded(int i) {
    nxSupport::ScriptCallScope const call("work");
    keep(work(i));
}

}  // namespace

void addServiceRows(Suite& suite) {
    suite.compare("timeline-off/performance-scope", 1.15, [] {
        return Sides{repeated("PerfScope", repetitions, switchScope),
                     repeated("stopwatches", repetitions, switchByHand)};
    });
    suite.compare("timeline-off/script-call", 1.1, [] {
        return Sides{repeated("ScriptCallScope", repetitions, callRecorded),
                     repeated("bare call", repetitions, [](int i) { keep(work(i)); })};
    });
}

}  // namespace bench
