// Time lines: recording, and the written trace.
#include <gmock/gmock.h>

#include "foundation/urOS/MemoryIOStream.h"
#include "krcache/tests/TestKeys.h"
#include "plst/Array.h"
#include "plst/Dictionary.h"
#include "plst/Double.h"
#include "plst/String.h"
#include "plst/casts.h"
#include "plst/json.h"
#include "support/messaging/tests/Host.h"
#include "support/services/PerfScope.h"
#include "support/services/Timeline.h"
#include "support/services/impl/Recording.h"

namespace nxSupport {
namespace {

using nxPLST::asDictionary;

/// The trace, read by the library's own reader.
struct Trace {
    explicit Trace(Timeline const& timeline) {
        urOS::MemoryIOStream stream;
        static_cast<void>(stream.open(urOS::openForWriting));
        EXPECT_TRUE(timeline.write(stream).ok());
        ur::Reference<nxPLST::Item> item;
        EXPECT_TRUE(nxPLST::convertFromJSON(item, stream.contents()));
        root = asDictionary(item);
        for (auto const& one : nxPLST::asArray(root->get("traceEvents"))->array()) events.push_back(asDictionary(one));
        events.erase(events.begin(), events.begin() + 2);  // the names of the two tracks
    }
    /// The phase and name of each event.
    [[nodiscard]] std::string text() const {
        std::string all;
        for (std::size_t i = 0; i < events.size(); ++i) all += text(i, "ph") + ' ' + text(i, "name") + '\n';
        return all;
    }
    [[nodiscard]] std::string text(std::size_t i, char const* member) const {
        return nxPLST::asString(events[i]->get(member))->value().c_str();
    }
    /// Returns -1 if there is none.
    [[nodiscard]] double number(std::size_t i, char const* member) const {
        auto const value = nxPLST::asDouble(events[i]->get(member));
        return value ? value->value() : -1;
    }

    ur::Reference<nxPLST::Dictionary const> root;
    std::vector<ur::Reference<nxPLST::Dictionary const>> events;
};

TEST(Timeline, RecordsEveryKindOfEventAndWritesATrace) {
    Timeline timeline;
    Timeline::setActive(&timeline);
    Host host;
    host.setContextObserver(&timeline);
    urKRCache::test::Cache cache;
    cache.manager.setObserver(&timeline);
    PerfScope frame;
    {
        Context const edit(&host, Context::Momentary);
        frame.charge(Perf_TaskPreBat);
        ScriptCallScope const call("main.lua:\"run\"\n\xff");
        auto const shim = cache.shim(ur::make<urKRCache::test::Key>(1, 100));
        cache.access(shim);
        Context const look(&host, Context::Const);
        cache.manager.clear();
    }
    frame.charge(Perf_DrawTotal);  // continues
    Context const unfinished(&host, Context::Bare);

    Trace const trace(timeline);
    EXPECT_EQ(trace.text(),
              "X Momentary\nX TASK PreBat\nX main.lua:\"run\"\n\xef\xbf\xbd\nX build urKRCache::test::Key\nX Const\ni "
              "drop urKRCache::test::Key\nB Draw (total)\nB Bare\n");
    for (std::size_t i = 1; i < trace.events.size(); ++i) {
        EXPECT_GE(trace.number(i, "ts"), trace.number(i - 1, "ts"));
        EXPECT_EQ(trace.number(i, "dur") >= 0, trace.text(i, "ph") == "X");
        EXPECT_EQ(trace.number(i, "tid"), trace.text(i, "cat") == "performance" ? 2 : 1);
    }
    double const end = trace.number(0, "ts") + trace.number(0, "dur");
    EXPECT_LE(trace.number(4, "ts") + trace.number(4, "dur"), end + 0.002) << "what is inside ends before";
    EXPECT_EQ(nxPLST::asDouble(asDictionary(trace.events[3]->get("args"))->get("bytes"))->value(), 100);
    EXPECT_EQ(nxPLST::asString(asDictionary(trace.events[5]->get("args"))->get("why"))->value(), "request");
    host.setContextObserver(nullptr);
    cache.manager.setObserver(nullptr);
}

TEST(Timeline, ShowsSpansThatOverlapMarksAndCounters) {
    Timeline timeline;
    std::size_t const first = timeline.beginSpan("GET a");
    std::size_t const second = timeline.beginSpan("GET b");
    timeline.mark("Move");
    timeline.endSpan(first, "200 \"OK\"");
    timeline.count("cache", 1.5);
    timeline.beginSpan("GET c");
    timeline.endSpan(second, "404");
    Trace const trace(timeline);
    EXPECT_EQ(trace.text(), "b GET a\ne GET a\nb GET b\ne GET b\ni Move\nC cache\nb GET c\n");
    EXPECT_EQ(trace.number(0, "id"), trace.number(1, "id"));
    EXPECT_NE(trace.number(0, "id"), trace.number(2, "id"));
    EXPECT_LE(trace.number(2, "ts"), trace.number(1, "ts")) << "the second begins before the first ends";
    EXPECT_EQ(nxPLST::asString(asDictionary(trace.events[1]->get("args"))->get("result"))->value(), "200 \"OK\"");
    EXPECT_EQ(nxPLST::asDouble(asDictionary(trace.events[5]->get("args"))->get("value"))->value(), 1.5);

    Timeline full(0);
    full.endSpan(full.beginSpan("x"), "y");
    full.count("x", 1);
    EXPECT_EQ(full.droppedCount(), 2U);
}

TEST(Timeline, ScriptCallsLeftByAnErrorEndTogether) {
    Timeline timeline;
    Timeline::setActive(&timeline);
    {
        ScriptCallScope const outer("outer");
        for (char const* name : {"a", "b", "a"}) timeline.beginScriptCall(name);
        timeline.endScriptCalls(3);
        EXPECT_EQ(Trace(timeline).text(), "B outer\nB a\nB b\nX a\n");
    }
    EXPECT_EQ(Trace(timeline).text(), "X outer\nX a\nX b\nX a\n");
}

TEST(Timeline, KeepsTimesToTheNanosecondAndNoneBeforeItsOwnBeginning) {
    using namespace std::chrono_literals;
    Timeline timeline;
    Host host;
    auto const begin = ContextObserver::Clock::now() + 5s;
    std::pair<std::chrono::nanoseconds, std::chrono::nanoseconds> const spans[] = {
        {0s, 1500007ns}, {1500007ns, 0s}, {-1h, 1ns}};
    for (auto const& [from, to] : spans) {
        Context const context(&host, Context::Const);
        timeline.onEnd(context, begin, {});  // its begin was not observed
        timeline.onBegin(context, begin + from);
        timeline.onEnd(context, begin + to, {});
    }
    Trace const trace(timeline);
    EXPECT_EQ(trace.text(), "X Const\nX Const\nX Const\n");
    EXPECT_GE(trace.number(0, "ts"), 5e6);
    EXPECT_NEAR(trace.number(0, "dur"), 1500.007, 1e-6);
    EXPECT_EQ(trace.number(1, "dur"), 0);
    EXPECT_EQ(trace.number(2, "ts"), 0);
}

TEST(Timeline, IgnoresWhatIsNoActivityOrUnderWayAndCutsLongNames) {
    ScriptCallScope const unrecorded("nowhere");
    Timeline timeline;
    for (int const none : {-1, 17, 18, 1 << 30}) {
        timeline.beginPerformance(static_cast<PerformanceCode>(none));
        timeline.endPerformance(static_cast<PerformanceCode>(none));
    }
    for (int i = 0; i < 2; ++i) timeline.beginPerformance(Perf_DrawInit);
    timeline.beginScriptCall(std::string(1000, 'n'));
    EXPECT_EQ(Trace(timeline).text(), "B Draw Init\nB " + std::string(impl::Recording::longestName, 'n') + "\n");
    impl::Recording full(1);
    for (char const* name : {"a", "b"}) full.beginNamed(impl::Recording::Kind::script, std::string_view(name));
    EXPECT_TRUE(full.names.size() == 1 && full.dropped == 1);
}

TEST(Timeline, KeepsNoMoreThanItsLimitAndForgetsNothingOnTheWayOut) {
    {
        Timeline timeline(3);
        Timeline::setActive(&timeline);
        PerfScope scope;
        ScriptCallScope const outer("outer");
        for (int i = 0; i < 4; ++i) {
            ScriptCallScope const call(std::to_string(i));
            scope.charge(i % 2 == 0 ? Perf_DrawInit : Perf_Tumble);
        }
        timeline.onBuildEnd(1);  // its begin was not observed
        timeline.onLeave(ur::TypeInfo::of<int>(), 1, urKRCache::Leaving::limit);
        Trace const trace(timeline);
        EXPECT_EQ(trace.text(), "B outer\nX 0\nX Draw Init\n");
        EXPECT_EQ(nxPLST::asDouble(asDictionary(trace.root->get("otherData"))->get("dropped"))->value(), 7);
        EXPECT_EQ(timeline.droppedCount(), 7);
    }
    EXPECT_EQ(Timeline::active(), nullptr);
}

}  // namespace
}  // namespace nxSupport
