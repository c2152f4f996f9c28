// Tests autosave files: what they cost, and what a crash at any moment leaves.
#if defined(__linux__)
#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <cstdlib>
#include <random>

#include "foundation/urOS/tests/FileTest.h"
#include "support/documents/tests/Scene.h"

namespace nxSupport::test {
namespace {

struct Recovery : urOS::Files {
    Scene scene;

    std::uintmax_t bytes(Autosave const& autosave) const {
        return urOS::fs::file_size(autosave.path().asMultibyte().c_str());
    }
    static std::string recovered(urString::IString const& file) {
        Scene rescued;
        auto const error = recover(rescued.document, file);
        if (error.isError()) return std::string(error.message());
        EXPECT_TRUE(rescued.document.isModified());
        audit(rescued.document);
        return rescued.text();
    }
};

TEST_F(Recovery, WritesOnlyWhatHasChanged) {
    Object& group = scene.add(scene.root(), "Group", "g");
    scene.document.edit("Many", [&] {
        for (int i = 0; i < 2000; ++i) group.append(scene.document.make("Ball"));
    });
    Autosave autosave(scene.document, wide(path()), 1'000'000);
    ASSERT_TRUE(autosave.write().ok());
    auto before = bytes(autosave);
    auto const grown = [&] { return bytes(autosave) - std::exchange(before, bytes(autosave)); };
    ASSERT_TRUE(autosave.write().ok());
    EXPECT_EQ(grown(), 0U);
    auto const costs = [&](auto edit) {
        scene.document.edit("Edit", edit);
        EXPECT_TRUE(autosave.write().ok());
        EXPECT_EQ(recovered(autosave.path()), scene.text());
        return grown();
    };
    Object& ball = group.children()[7];
    EXPECT_LT(costs([&] { ball.set("free", std::string(100'000, 'x')); }), 100'500U);
    EXPECT_LT(costs([&] { ball.set("size", 2); }), 500U) << "not the large value beside it";
    EXPECT_LT(costs([&] { ball.setValue("free", nullptr), ball.moveTo(scene.root(), 0); }), 1000U);
    EXPECT_LT(costs([&] { group.moveTo(scene.root(), 0); }), 500U) << "with all that is in it";
    EXPECT_LT(costs([&] { scene.root().remove(group), scene.root().append(scene.document.make("Ball")); }), 1000U);
    EXPECT_LT(costs([&] { scene.root().append(&group), group.children()[3].set("size", 5); }), 1000U);
    while (scene.document.undo()) {
        ASSERT_TRUE(autosave.write().ok());
        EXPECT_EQ(recovered(autosave.path()), scene.text());
    }
    EXPECT_TRUE(recoverable(wide(path())).empty()) << "in use";
}

TEST_F(Recovery, LeavesOneFileOfBoundedSize) {
    Object& ball = scene.add(scene.root(), "Ball", "b");
    std::uintmax_t most = 0;
    {
        Autosave autosave(scene.document, wide(path()), 4096);
        autosave.setName("n");
        for (int i = 0; i < 300; ++i) {
            scene.document.edit("Edit", [&] { ball.set("free", i); });
            ASSERT_TRUE(autosave.write().ok());
            most = std::max(most, bytes(autosave));
        }
    }
    EXPECT_LT(most, 8192U);
    EXPECT_EQ(fileCount(), 1U);
    auto const found = recoverable(wide(path()));
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].name, "n");
    EXPECT_LT(std::chrono::system_clock::now() - found[0].time, std::chrono::minutes(1));
    EXPECT_EQ(recovered(found[0].path), scene.text());
}

TEST_F(Recovery, BeginsAndEndsWithUnsavedChanges) {
    Autosave autosave(scene.document, wide(path()));
    EXPECT_TRUE(autosave.write().ok());
    EXPECT_EQ(fileCount(), 0U) << "nothing to lose";
    scene.add(scene.root(), "Ball", "b");
    EXPECT_TRUE(autosave.write().ok());
    ASSERT_TRUE(save(scene.document, wide(path("saved.json"))).ok());
    EXPECT_TRUE(autosave.discard().ok() && autosave.write().ok());
    EXPECT_EQ(fileCount(), 1U);
    scene.add(scene.root(), "Ball", "c");
    EXPECT_TRUE(autosave.write().ok());
    ASSERT_TRUE(open(scene.document, wide(path("saved.json"))).ok());
    EXPECT_TRUE(autosave.write().ok());
    EXPECT_EQ(recovered(autosave.path()), scene.text()) << "after all objects were replaced";
    Autosave nowhere(scene.document, wide(path("missing")));
    scene.add(scene.root(), "Ball", "d");
    EXPECT_FALSE(nowhere.write().ok());
    scene.add(scene.root(), "Ball", "e");
    EXPECT_FALSE(autosave.write().ok()) << "the document has another one";
}

TEST_F(Recovery, IsKeptByTheDocument) {
    urOS::fs::create_directory(path("first"));
    ur::Reference<Object> const ball(&scene.add(scene.root(), "Ball", "b"));
    auto const file = [&] { return recoverable(wide(path()))[0].path; };
    {
        Scene other;
        other.add(other.root(), "Ball", "lost");
        ASSERT_TRUE(autosave(other.document, wide(path("first"))).ok());
        ASSERT_TRUE(autosave(other.document, wide(path()), "plan").ok());
        EXPECT_TRUE(recoverable(wide(path("first"))).empty()) << "it is in the other folder now";
    }
    EXPECT_EQ(recovered(file()).substr(0, 5), "Group");
    EXPECT_EQ(recoverable(wide(path()))[0].name, "plan");
    bool isModified = false;
    scene.document.replacedSignal().addCallback([&] {
        isModified = scene.document.isModified();
        throw std::runtime_error("listener");
    });
    EXPECT_THROW(static_cast<void>(recover(scene.document, file())), std::runtime_error);
    EXPECT_TRUE(isModified && scene.document.isModified() && !ball->document());
    ASSERT_TRUE(autosave(scene.document, wide(path())).ok());
    auto const before = fileCount();
    ASSERT_TRUE(save(scene.document, wide(path("saved.nx"))).ok());
    EXPECT_EQ(fileCount(), before) << "one more, and one less";
}

TEST_F(Recovery, TakesWhatIsCompleteOfAnyFile) {
    Object& ball = scene.add(scene.root(), "Ball", "b");
    std::vector<std::string> states;
    std::vector<std::size_t> ends;
    Autosave autosave(scene.document, wide(path()));
    for (int i = 0; i < 5; ++i) {
        scene.document.edit("Edit", [&] { ball.set("free", i); });
        ASSERT_TRUE(autosave.write().ok());
        states.push_back(scene.text());
        ends.push_back(bytes(autosave));
    }
    std::string const whole = textOf(autosave.path().asMultibyte().c_str());
    for (std::size_t size = 0; size < whole.size(); size += 7) {
        put(path("torn.autosave"), whole.substr(0, size));
        auto const complete = static_cast<std::size_t>(std::ranges::upper_bound(ends, size) - ends.begin());
        auto const text = recovered(wide(path("torn.autosave")));
        EXPECT_THAT(text, complete > 0 ? states[complete - 1] : path("torn.autosave") + ": holds no document");
        std::string changed = whole;
        changed[size] ^= 1;
        put(path("torn.autosave"), changed);
        EXPECT_EQ(recovered(wide(path("torn.autosave"))), text) << "a changed byte ends it like a missing one";
    }
}

#if defined(__linux__)
/// Makes one edit after the other, the same for the same seed.
class Work {
public:
    Work(Document& document, unsigned seed) : document_(document), random_(seed) {
        document.edit("Begin", [&] { document.root().set("name", "modified"); });
        document.history().clear();  // so that there is always something to lose
    }

    void edit() {
        document_.edit("Edit", [&] {
            Object& root = document_.root();
            auto const size = root.children().size();
            if (size < 3 || random_() % 3 == 0) {
                root.insert(random_() % (size + 1), document_.make(random_() % 2 == 0 ? "Group" : "Ball"));
            } else if (random_() % 3 == 0) {
                root.remove(root.children()[random_() % size]);
            } else {
                Object& object = root.children()[random_() % size];
                if (!object.moveTo(root.children()[random_() % size], 0)) object.set("free", double(random_()));
            }
        });
        if (random_() % 5 == 0) document_.undo();
    }

private:
    Document& document_;
    std::minstd_rand random_;
};

/// The values and structure, without identities, which differ from one process to the next.
std::string shapeOf(Object const& object) {
    std::string text = std::string(object.objectClass().name()) + textOf(object.value("free")) + "[";
    for (Object const& child : object.children()) text += shapeOf(child);
    return text + "]";
}

/// Autosaves after each few edits until it is killed, and says so after each time.
[[noreturn]] void workUntilKilled(std::string const& folder, unsigned seed, int acknowledge) {
    Scene scene;
    Work work(scene.document, seed);
    Autosave autosave(scene.document, folder.c_str(), 2000);
    for (;;) {
        for (int i = 0; i < 3; ++i) work.edit();
        if (autosave.write().isError()) ::_exit(1);
        if (::write(acknowledge, "x", 1) != 1) ::_exit(2);
    }
}

TEST_F(Recovery, LosesNothingOlderThanTheLastAutosaveWheneverTheProcessDies) {
    char const* const given = std::getenv("NX_CRASHES");
    int const crashes = given ? std::atoi(given) : 50;
    std::minstd_rand random(std::random_device{}());
    int recoveredTimes = 0;
    for (int crash = 0; crash < crashes; ++crash) {
        auto const seed = static_cast<unsigned>(random());
        SCOPED_TRACE("seed " + std::to_string(seed));
        int ends[2];
        ASSERT_EQ(::pipe(ends), 0);
        pid_t const child = ::fork();
        if (child == 0) workUntilKilled(path(), seed, ends[1]);
        ::close(ends[1]);
        std::size_t acknowledged = 0;
        char x = 0;
        if (crash % 4 > 0) acknowledged += ::read(ends[0], &x, 1) == 1;  // otherwise it may die before its first one
        ::usleep(static_cast<useconds_t>(random() % 40'000));
        ::kill(child, SIGKILL);
        ASSERT_EQ(::waitpid(child, nullptr, 0), child);
        while (::read(ends[0], &x, 1) == 1) ++acknowledged;
        ::close(ends[0]);

        auto const found = recoverable(wide(path()));
        ASSERT_TRUE(found.size() == 1 || acknowledged == 0);
        if (found.empty()) continue;
        Scene rescued;
        ASSERT_TRUE(recover(rescued.document, found[0].path).ok());
        Scene twin;
        Work work(twin.document, seed);
        bool isThere = false;
        for (std::size_t i = 1; i <= acknowledged + 1 && !isThere; ++i) {
            for (int edit = 0; edit < 3; ++edit) work.edit();
            isThere = i >= acknowledged && shapeOf(twin.root()) == shapeOf(rescued.root());
        }
        EXPECT_TRUE(isThere) << "after " << acknowledged << " autosaves";
        EXPECT_LT(urOS::fs::file_size(found[0].path.asMultibyte().c_str()), 100'000U);
        urOS::fs::remove(found[0].path.asMultibyte().c_str());
        ++recoveredTimes;
    }
    EXPECT_GT(recoveredTimes, crashes / 2);
    for (auto const& left : urOS::fs::directory_iterator(path()))
        urOS::fs::last_write_time(left, urOS::fs::file_time_type::clock::now() - std::chrono::minutes(2));
    EXPECT_TRUE(recoverable(wide(path())).empty());
    EXPECT_EQ(fileCount(), 0U) << "what a crash while the whole document was written has left";
}
#endif

}  // namespace
}  // namespace nxSupport::test
