// What the cache reports about itself: counts, dependencies, traces, and observers.
#include <gmock/gmock.h>

#include <chrono>
#include <thread>

#include "krcache/ManagerObserver.h"
#include "krcache/TraceRecorder.h"
#include "krcache/tests/TestKeys.h"

namespace urKRCache::test {
namespace {

using Event = TraceRecorder::Event;
using Entry = TraceRecorder::Entry;
using ur::make;

struct PatchKey : Key {
    using Key::Key;
};

struct TellingTest : testing::Test, Cache {
    TellingTest() { static_cast<void>(memory.open(urOS::openForWriting)); }

    urOS::MemoryIOStream memory;
};

TEST_F(TellingTest, StatisticsCountWhatHappenedAndTracesKeepIt) {
    TraceRecorder recorder;
    manager.setTraceRecorder(&recorder);
    auto const a = shim(make<Key>(1, 1000)), b = shim(make<Key>(2, 500)), patch = shim(make<PatchKey>(3, 70));
    for (auto const& one : {a, b, patch, a}) access(one);
    for (unsigned const limit : {1100, 0}) manager.setMemoryLimit(limit);  // drops b
    manager.setSerializable(patch);
    manager.clearResource(a), manager.clearResource(patch);
    access(patch), access(b);
    manager.removeResource(b);
    manager.setTraceRecorder(nullptr);
    access(patch);
    manager.setSerializable(a);
    keyOf(a).size = Key::none, access(a);
    keyOf(a).size = 3, access(a), manager.clearResource(a);
    keyOf(a).onInitialize = [] { throw 1; };
    EXPECT_THROW(access(a), int);

    Statistics const s = manager.statistics();
    EXPECT_THAT((std::vector{s.hits, s.builds, s.buildsWithout, s.clearedForLimit, s.clearedOnRequest,
                             s.clearedByRemoval, s.clearedByPageFailure, s.clearedByBuildFailure}),
                testing::ElementsAre(2, 6, 1, 1, 1, 1, 1, 1));
    EXPECT_THAT((std::vector{s.pagesOut, s.pagesOutBytes, s.pagesIn, s.pagesInBytes, s.memoryUsed, s.peakMemoryUsed}),
                testing::ElementsAre(1, 7, 1, 7, 70, 1570));
    ASSERT_EQ(s.classes.size(), 2);
    for (ClassUsage const& usage : s.classes) {
        bool const isPatch = usage.keyClass == ur::TypeInfo::of<PatchKey>();
        EXPECT_THAT((std::vector{usage.resources, usage.bytes, usage.builds}),
                    testing::ElementsAreArray(isPatch ? std::vector{1, 70, 1} : std::vector{0, 0, 6}));
    }

    EXPECT_THAT(
        recorder.entries(),
        testing::ElementsAre(Entry{0, 1000, Event::build}, Entry{1, 500, Event::build}, Entry{2, 70, Event::build},
                             Entry{0, 1000, Event::hit}, Entry{1, 500, Event::clear}, Entry{0, 1000, Event::clear},
                             Entry{2, 70, Event::pageOut}, Entry{2, 70, Event::pageIn}, Entry{1, 500, Event::build},
                             Entry{1, 500, Event::clear}, Entry{1, 500, Event::remove}));
    ASSERT_TRUE(recorder.write(memory).ok());
    static_cast<void>(memory.open(urOS::openRead));
    TraceRecorder copy;
    ASSERT_TRUE(copy.read(memory).ok());
    for (std::string const text : {"hit 1 2\nhit 1", "hit 1 2 3\n", "hit 4294967296 1\n", "miss 1 2\n", "hit 1 -2\n"}) {
        static_cast<void>(memory.open(urOS::openForWriting));
        static_cast<void>(memory.write(text.data(), text.size()));
        static_cast<void>(memory.open(urOS::openRead));
        EXPECT_TRUE(copy.read(memory).isError()) << text;
        EXPECT_EQ(copy.entries(), recorder.entries());
    }
}

TEST(BuildTimes, OfSomeBuildsStandForAll) {
    Cache cache({.timedBuilds = 1, .buildsPerSample = 2});
    auto const shim = cache.shim(make<Key>(1));
    for (int build = 0; build < 3; ++build) {
        if (build == 2) keyOf(shim).onBuild = [] { std::this_thread::sleep_for(std::chrono::milliseconds(3)); };
        cache.access(shim), cache.manager.clear();
    }
    ASSERT_EQ(cache.manager.statistics().classes.size(), 1);
    EXPECT_GE(cache.manager.statistics().classes[0].buildSeconds, 0.006);
}

TEST_F(TellingTest, DependenciesAsTextAndAsAGraph) {
    auto const source = shim(make<Key>(1, 2'097'152)), other = shim(make<Key>(2));
    auto const key = make<Key>(3);
    key->sources = {source, other};
    access(source), access(shim(key)), manager.lockResource(source);
    urOS::OStream out(memory);
    manager.printDependencies(out), manager.printDependenciesAsDot(out);
    static_cast<void>(out.flush());
    std::string text(memory.contents().view());
    std::string const name = ur::TypeInfo::of<Key>().readableName();
    for (std::size_t at; (at = text.find(name)) != std::string::npos;) text.replace(at, name.size(), "K");
    EXPECT_EQ(text,
              "#0 K: locked, 2097152 bytes\n#1 K: absent, 0 bytes\n#2 K: in memory, 1000 bytes, from #0 #1\n"
              "digraph resources {\n  node [shape=box];\n  n0 [label=\"#0 K\\nlocked, 2.00 MB\"];\n"
              "  n1 [label=\"#1 K\\nabsent, 0.00 MB\"];\n  n2 [label=\"#2 K\\nin memory, 0.00 MB\"];\n"
              "  n0 -> n2;\n  n1 -> n2;\n}\n");
}

TEST_F(TellingTest, AnObserverSeesBuildsAndWhyResourcesGo) {
    struct Log : ManagerObserver {
        void onBuildBegin(ur::TypeInfo keyClass) noexcept override { text += "build " + nameOf(keyClass) + '\n'; }
        void onBuildEnd(unsigned bytes) noexcept override { text += "built " + std::to_string(bytes) + '\n'; }
        void onLeave(ur::TypeInfo keyClass, unsigned bytes, Leaving why) noexcept override {
            text += nameOf(keyClass) + ' ' + std::to_string(bytes) + ' ' + std::to_string(int(why)) + '\n';
        }
        static std::string nameOf(ur::TypeInfo type) { return type == ur::TypeInfo::of<PatchKey>() ? "patch" : "key"; }

        std::string text;
    } log;
    manager.setObserver(&log);
    auto const source = shim(make<Key>(1, 1000)), patch = shim(make<PatchKey>(2, 70));
    keyOf(patch).onBuild = [&] { access(source); };
    access(patch);
    manager.setMemoryLimit(100);  // drops the source
    manager.setSerializable(patch);
    manager.clear();
    manager.removeResource(patch);
    auto const broken = shim(make<PatchKey>(3));
    keyOf(broken).onBuild = [] { throw 1; };
    EXPECT_THROW(access(broken), int);
    keyOf(broken).onBuild = [&] { manager.setObserver(nullptr); };
    access(broken);
    EXPECT_EQ(log.text,
              "build patch\nbuild key\nbuilt 1000\nbuilt 70\nkey 1000 0\npatch 70 5\npatch 70 2\n"
              "build patch\nbuilt 0\nbuild patch\n");
}

}  // namespace
}  // namespace urKRCache::test
