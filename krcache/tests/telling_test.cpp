// What the cache tells about itself: counts, dependencies, traces.
#include <gmock/gmock.h>

#include "krcache/ManagerObserver.h"
#include "krcache/TraceRecorder.h"
#include "krcache/tests/TestKeys.h"

namespace urKRCache::test {
namespace {

using Event = TraceRecorder::Event;
using testing::ElementsAre;
using ur::make;

struct PatchKey : Key {
    using Key::Key;
};

struct TellingTest : testing::Test, Cache {
    TellingTest() { static_cast<void>(memory.open(urOS::openForWriting)); }

    std::string printed(void (Manager::*print)(urOS::OStream&) const) {
        urOS::OStream out(memory);
        (manager.*print)(out);
        static_cast<void>(out.flush());
        return std::string(memory.contents().view());
    }

    urOS::MemoryIOStream memory;
};

TEST_F(TellingTest, StatisticsCountWhatHappened) {
    auto const a = shim(make<Key>(1, 1000)), b = shim(make<Key>(2, 500)), patch = shim(make<PatchKey>(3, 70));
    for (auto const& one : {a, b, patch, a}) access(one);
    manager.setMemoryLimit(1100);  // b goes
    manager.setMemoryLimit(0);
    manager.setSerializable(patch);
    manager.clear();  // a goes, patch is paged out
    access(patch);
    access(b);
    manager.removeResource(b);

    Statistics const counts = manager.statistics();
    EXPECT_EQ(counts.hits, 1);
    EXPECT_EQ(counts.builds, 4);
    EXPECT_EQ(counts.clearedForLimit, 1);
    EXPECT_EQ(counts.clearedOnRequest, 1);
    EXPECT_EQ(counts.clearedByRemoval, 1);
    EXPECT_EQ(counts.pagesOut, 1);
    EXPECT_EQ(counts.pagesInBytes, 7);
    EXPECT_EQ(counts.memoryUsed, 70);
    EXPECT_EQ(counts.peakMemoryUsed, 1570);
    ASSERT_EQ(counts.classes.size(), 2);
    for (ClassUsage const& usage : counts.classes) {
        bool const isPatch = usage.keyClass == ur::TypeInfo::of<PatchKey>();
        EXPECT_EQ(usage.resources, isPatch ? 1 : 0);
        EXPECT_EQ(usage.bytes, isPatch ? 70 : 0);
        EXPECT_EQ(usage.builds, isPatch ? 1 : 3);
        EXPECT_GE(usage.buildSeconds, 0);
    }
}

TEST_F(TellingTest, DependenciesAsTextAndAsAGraph) {
    auto const source = shim(make<Key>(1, 2'097'152)), other = shim(make<Key>(2));
    auto const top = derived(3, {source, other});
    access(source), access(top), manager.lockResource(source);
    std::string const name = ur::TypeInfo::of<Key>().readableName();
    EXPECT_EQ(printed(&Manager::printDependencies), "#0 " + name +
                                                        ": locked, 2097152 bytes\n"  //
                                                        "#1 " +
                                                        name +
                                                        ": absent, 0 bytes\n"  //
                                                        "#2 " +
                                                        name + ": in memory, 1000 bytes, from #0 #1\n");
    static_cast<void>(memory.open(urOS::openForWriting));
    EXPECT_EQ(printed(&Manager::printDependenciesAsDot),
              "digraph resources {\n  node [shape=box];\n"
              "  n0 [label=\"#0 " +
                  name +
                  "\\nlocked, 2.00 MB\"];\n"
                  "  n1 [label=\"#1 " +
                  name +
                  "\\nabsent, 0.00 MB\"];\n"
                  "  n2 [label=\"#2 " +
                  name +
                  "\\nin memory, 0.00 MB\"];\n"
                  "  n0 -> n2;\n  n1 -> n2;\n}\n");
}

TEST_F(TellingTest, TracesAreWrittenAndReadBack) {
    TraceRecorder recorder;
    manager.setTraceRecorder(&recorder);
    auto const a = shim(make<Key>(1)), b = shim(make<Key>(2, 10));
    manager.setSerializable(b);
    access(a), access(a), access(b);
    manager.clear();
    access(b);
    manager.removeResource(a);
    manager.setTraceRecorder(nullptr);
    access(b);
    using Entry = TraceRecorder::Entry;
    EXPECT_THAT(recorder.entries(),
                testing::UnorderedElementsAre(Entry{0, 1000, Event::build}, Entry{0, 1000, Event::hit},
                                              Entry{1, 10, Event::build}, Entry{0, 1000, Event::clear},
                                              Entry{1, 10, Event::pageOut}, Entry{1, 10, Event::pageIn},
                                              Entry{0, 1000, Event::remove}));
    ASSERT_TRUE(recorder.write(memory).ok());
    ASSERT_TRUE(memory.open(urOS::openRead).ok());
    TraceRecorder copy;
    ASSERT_TRUE(copy.read(memory).ok());
    EXPECT_EQ(copy.entries(), recorder.entries());
}

TEST_F(TellingTest, AFileThatIsNoTraceIsRefusedAsAWhole) {
    for (std::string const text :
         {"hit 1 2\nhit 1", "hit 1 2 3\n", "hit 4294967296 1\n", "miss 1 2\n", "hit 1 -2\n", "\n"}) {
        static_cast<void>(memory.open(urOS::openForWriting));
        static_cast<void>(memory.write(text.data(), text.size()));
        static_cast<void>(memory.open(urOS::openRead));
        TraceRecorder recorder;
        recorder.record(Event::hit, 5, 6);
        EXPECT_TRUE(recorder.read(memory).isError()) << text;
        EXPECT_EQ(recorder.entries().size(), 1);
    }
}

struct Log : ManagerObserver {
    void onBuildBegin(ur::TypeInfo keyClass) noexcept override { text += "build " + nameOf(keyClass) + '\n'; }
    void onBuildEnd(unsigned bytes) noexcept override { text += "built " + std::to_string(bytes) + '\n'; }
    void onLeave(ur::TypeInfo keyClass, unsigned bytes, Leaving why) noexcept override {
        text += nameOf(keyClass) + ' ' + std::to_string(bytes) + ' ' + std::to_string(int(why)) + '\n';
    }
    static std::string nameOf(ur::TypeInfo type) { return type == ur::TypeInfo::of<PatchKey>() ? "patch" : "key"; }

    std::string text;
};

TEST_F(TellingTest, AnObserverSeesBuildsAndWhyResourcesGo) {
    Log log;
    manager.setObserver(&log);
    auto const source = shim(make<Key>(1, 1000));
    auto const patch = shim(make<PatchKey>(2, 70));
    keyOf(patch).onBuild = [&] { access(source); };
    access(patch);
    manager.setMemoryLimit(100);  // the source goes
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
