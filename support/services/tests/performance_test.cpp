// Charges time to activities, and prints it.
#include <chrono>
#include <thread>

#include "foundation/urOS/OStream.h"
#include "support/services/PerfScope.h"
#include "support/services/Performance.h"
#include "support/services/nx_printf.h"
#include "support/services/tests/Output.h"

namespace nxSupport {
namespace {

constexpr PerformanceCode performanceCode(int value) { return static_cast<PerformanceCode>(value); }

struct PerformanceTest : OutputTest {
    PerformanceTest() {
        for (int i = 0; i < numPerformanceCodes; ++i) performance.getWatch(performanceCode(i)).clear();
    }
    ~PerformanceTest() override { performance = pristine; }

    /// The codes whose watches are running.
    std::vector<int> running() {
        std::vector<int> result;
        for (int i = 0; i < numPerformanceCodes; ++i)
            if (performance.getWatch(performanceCode(i)).isRunning()) result.push_back(i);
        return result;
    }
    static void wait() { std::this_thread::sleep_for(std::chrono::milliseconds(2)); }

    Performance& performance = Performance::getInstance();
    Performance const pristine = performance;
};
using Codes = std::vector<int>;

TEST_F(PerformanceTest, AScopeChargesOneActivityAtATime) {
    {
        PerfScope scope;
        EXPECT_EQ(running(), Codes());
        for (int const value : {2, 2, 17, -1, 19, 2}) {  // values that are not activities change nothing
            scope.charge(performanceCode(value));
            EXPECT_EQ(running(), Codes{2});
        }
        scope.charge(Perf_UpdateDoc);
        EXPECT_EQ(running(), Codes{5});
        PerfScope inner;
        inner.charge(Perf_Tumble);
        EXPECT_EQ(running(), (Codes{5, 16}));
        PerfScope const copy(scope);
        inner.charge(Perf_None);
        EXPECT_EQ(running(), Codes{5});
    }
    EXPECT_EQ(running(), Codes());
}

TEST_F(PerformanceTest, ChargingAgainGoesOnUnlessClearedEachTime) {
    urOS::StopWatch& watch = performance.getWatch(Perf_DrawScene);
    PerfScope scope;
    scope.charge(Perf_DrawScene);
    wait();
    scope.charge(Perf_None);
    double const first = watch.elapsed();
    EXPECT_GE(first, 0.002);
    scope.charge(Perf_DrawScene);
    scope.charge(Perf_None);
    EXPECT_GE(watch.elapsed(), first);
    Performance::clearEachCharge() = true;
    scope.charge(Perf_DrawScene);
    EXPECT_LT(watch.elapsed(), first);
}

TEST_F(PerformanceTest, TimesArePrintedByLabelAndRatesAsReciprocals) {
    for (PerformanceCode const one : {Perf_UpdateUI, Perf_Tumble}) {
        performance.getWatch(one).start();
        wait();
        performance.getWatch(one).stop();
    }
    performance.getWatch(performanceCode(17)).start();  // not an activity
    performance.printTimes(urOS::AppOutput::getInstance());
    static_cast<void>(urOS::AppOutput::getInstance().flush());
    nx_printf("%s = %.2f%c", "pi", 3.14159, '\n');
    double const spent = performance.getWatch(Perf_UpdateUI).elapsed(),
                 tumbled = performance.getWatch(Perf_Tumble).elapsed();
    EXPECT_EQ(printed(),
              urString::CString::format("Update UI = %.03f\nTumble = %4.8f\npi = 3.14\n", spent, 1 / tumbled).view());
    EXPECT_FALSE(performance.getWatch(performanceCode(17)).isRunning());
    for (int const none : {-1, 17, 18}) {
        EXPECT_EQ(Performance::labelFormat(performanceCode(none)), "~ unknown ~");
        EXPECT_FALSE(Performance::displayInverse(performanceCode(none)));
    }
    EXPECT_TRUE(Performance::displayInverse(Perf_Tumble) && !Performance::displayInverse(Perf_DrawTotal));
}

}  // namespace
}  // namespace nxSupport
