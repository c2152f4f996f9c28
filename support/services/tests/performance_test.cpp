// Charging time to activities, and printing.
#include <gmock/gmock.h>

#include <chrono>
#include <thread>

#include "foundation/urOS/OStream.h"
#include "support/services/PerfScope.h"
#include "support/services/Performance.h"
#include "support/services/nx_printf.h"
#include "support/services/tests/Output.h"

namespace nxSupport {
namespace {

constexpr PerformanceCode code(int value) { return static_cast<PerformanceCode>(value); }

struct PerformanceTest : testing::Test {
    PerformanceTest() { performance = Performance(pristine); }
    ~PerformanceTest() override { performance = pristine; }

    /// The codes whose watches run.
    std::vector<int> running() {
        std::vector<int> result;
        for (int i = 0; i < numPerformanceCodes; ++i)
            if (performance.getWatch(code(i)).isRunning()) result.push_back(i);
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
        for (int const value : {2, 2, 17, -1, 19, 2}) {  // what is no activity changes nothing
            scope.charge(code(value));
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
    scope.charge(Perf_DrawScene);  // without a break
    scope.charge(Perf_None);
    double const first = watch.elapsed();
    EXPECT_GE(first, 0.002);
    scope.charge(Perf_DrawScene);
    scope.charge(Perf_None);
    EXPECT_GE(watch.elapsed(), first);
    EXPECT_FALSE(Performance::clearEachCharge());
    Performance::clearEachCharge() = true;
    scope.charge(Perf_DrawScene);
    EXPECT_LT(watch.elapsed(), first);
}

TEST_F(PerformanceTest, EveryActivityHasItsLabel) {
    std::string labels;
    for (int i = -1; i <= 18; ++i) {
        labels += std::string(Performance::labelFormat(code(i)).view()) + '|';
        EXPECT_EQ(Performance::displayInverse(code(i)), i == 16);
    }
    EXPECT_EQ(labels,
              "~ unknown ~|TASK PreBat ... = %.03f|TASK PreExec ... = %.03f|TASK Execute ... = %.03f|"
              "TASK PostExec ... = %.03f|Update Rel = %.03f|Update Doc = %.03f|Update UI = %.03f|"
              "TASK PostBat ...  = %.03f|Draw Init = %.03f|Draw Scene = %.03f|Draw Screen = %.03f|Draw Xray = %.03f|"
              "Draw ViewDp = %.03f|Draw Select = %.03f|Draw Shadow = %.03f|Draw (total) = %.03f|Tumble = %4.8f|"
              "~ unknown ~|~ unknown ~|");
}

TEST_F(PerformanceTest, TimesArePrintedByLabelAndRatesAsReciprocals) {
    performance.getWatch(Perf_UpdateUI).start();
    performance.getWatch(Perf_Tumble).start();
    wait();
    performance.getWatch(Perf_UpdateUI).stop();
    performance.getWatch(Perf_Tumble).stop();
    performance.getWatch(code(17)).start();  // nobody's

    Output output;
    performance.printTimes(urOS::AppOutput::getInstance());
    static_cast<void>(urOS::AppOutput::getInstance().flush());
    nx_printf("%s = %.2f%c", "pi", 3.14159, '\n');
    std::string const expected = std::string(urString::CString::format("Update UI = %.03f\nTumble = %4.8f\n",
                                                                       performance.getWatch(Perf_UpdateUI).elapsed(),
                                                                       1 / performance.getWatch(Perf_Tumble).elapsed())
                                                 .view());
    EXPECT_EQ(output.take(), expected + "pi = 3.14\n");
    EXPECT_FALSE(performance.getWatch(code(17)).isRunning());
}

}  // namespace
}  // namespace nxSupport
