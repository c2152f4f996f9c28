// Tests replacing files as a whole.
#include "foundation/urOS/AtomicFile.h"
#include "foundation/urOS/tests/FileTest.h"

#if defined(__linux__)
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <optional>

namespace {

/// The system calls of a commit, in order, and the one that must fail.
struct Calls {
    std::string log;
    std::string failing;
    int error = 0;
};
Calls calls;

/// Records the call and passes it on, or makes it fail.
template <class Function, class... Arguments>
int noted(std::string const& what, char const* name, Function* /*like*/, Arguments... arguments) {
    calls.log += what + ", ";
    if (calls.failing == what) {
        errno = calls.error;
        return -1;
    }
    static auto* const real = reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
    return real(arguments...);
}

}  // namespace

// These override the C library's functions in this program.
extern "C" int fsync(int file) {
    struct stat facts = {};
    fstat(file, &facts);
    return noted(S_ISDIR(facts.st_mode) ? "sync folder" : "sync file", "fsync", &fsync, file);
}
extern "C" [[gnu::visibility("default")]] int rename(char const* from, char const* to) noexcept {
    return noted("rename", "rename", &rename, from, to);
}
extern "C" int fallocate(int file, int mode, off_t start, off_t bytes) {
    return noted("reserve", "fallocate", &fallocate, file, mode, start, bytes);
}
extern "C" int fsetxattr(int file, char const* name, void const* value, size_t bytes, int flags) noexcept {
    return noted("attribute", "fsetxattr", &fsetxattr, file, name, value, bytes, flags);
}
#endif

namespace urOS {
namespace {

class AtomicFiles : public Files {
protected:
    AtomicFiles() { put(target(), "the old text"); }

    [[nodiscard]] std::string target() const { return path("target"); }
    [[nodiscard]] std::string text() const { return textOf(target()); }
    urUtil::Error save(std::string const& text) const {
        AtomicFile file;
        urUtil::Error error = file.open(wide(target()));
        if (error.ok()) error = file.write(text.data(), text.size());
        EXPECT_EQ(this->text(), "the old text");
        return error.ok() ? file.commit() : error;
    }
};

TEST_F(AtomicFiles, TakeTheOldOnesPlaceWhenCommitted) {
    AtomicFile file;
    ASSERT_TRUE(file.open(wide(target())).ok());
    ASSERT_TRUE(file.write("new", 3).ok());
    EXPECT_EQ(text(), "the old text");
    EXPECT_TRUE(file.commit().ok());
    EXPECT_EQ(text(), "new");
    EXPECT_EQ(fileCount(), 1U);
    EXPECT_TRUE(file.commit().isError()) << "there is nothing left to commit";
    char byte = 0;
    std::size_t done = 7;
    EXPECT_EQ(file.read(&byte, 1, &done).code(), EBADF);
    EXPECT_EQ(done, 0U);
}

TEST_F(AtomicFiles, ThatAreNotCommittedOrFailLeaveTheOldFileAndNothingElse) {
    AtomicFile file;
    {
        AtomicFile dropped;
        for (AtomicFile* const each : {&dropped, &file}) {
            ASSERT_TRUE(each->open(wide(target())).ok());
            ASSERT_TRUE(each->write("new", 3).ok());
        }
    }
    EXPECT_EQ(text(), "the old text");
    fs::remove(target());
    fs::create_directories(path("target/in the way"));
    EXPECT_TRUE(file.commit().isError());
    EXPECT_TRUE(file.open(wide(path("no folder/target"))).isError());
    EXPECT_TRUE(file.commit().isError());
    EXPECT_EQ(fileCount(), 1U);
}

#if defined(__linux__)

/// The properties of a file except its content.
struct Facts {
    explicit Facts(std::string const& path) { EXPECT_EQ(stat(path.c_str(), &facts), 0); }
    [[nodiscard]] bool sameFile(Facts const& other) const { return facts.st_ino == other.facts.st_ino; }
    struct stat facts = {};
};

/// Drops the process's privileges while it lives, if the test runs with all rights.
class Unprivileged {
public:
    Unprivileged() { EXPECT_TRUE(!wasRoot_ || seteuid(nobody) == 0); }
    Unprivileged(Unprivileged const&) = delete;
    Unprivileged& operator=(Unprivileged const&) = delete;
    ~Unprivileged() { EXPECT_TRUE(!wasRoot_ || seteuid(0) == 0); }

private:
    static constexpr uid_t nobody = 65534;
    bool const wasRoot_ = geteuid() == 0;
};

TEST_F(AtomicFiles, AreOnTheDiskBeforeTheRenameAndTheirNameAfterwards) {
    calls = {};
    EXPECT_TRUE(save("new").ok());
    EXPECT_EQ(calls.log, "sync file, rename, sync folder, ");

    put(target(), "the old text");
    calls = {"", "sync file", EIO};
    EXPECT_EQ(save("newer").code(), EIO);
    EXPECT_EQ(calls.log, "sync file, ");
    EXPECT_EQ(text(), "the old text");
    EXPECT_EQ(fileCount(), 1U);

    calls = {"", "sync folder", EIO};
    EXPECT_EQ(save("newer").code(), EIO);
    EXPECT_EQ(text(), "newer");
    put(target(), "the old text");
    calls = {"", "sync folder", EINVAL};  // a file system that has nothing to flush there
    EXPECT_TRUE(save("newest").ok());
    calls = {};
}

TEST_F(AtomicFiles, OverwriteTheOldOneWhereItHasMoreThanItsContentToLose) {
    bool const isRoot = geteuid() == 0;
    struct Case {
        char const* what;
        void (*prepare)(std::string const& folder);
        char const* failing = "";
        bool isUnprivileged = false;
        bool needsRoot = false;
    };
    Case const cases[] = {
        {"hard link", [](auto const& folder) { fs::create_hard_link(folder + "/target", folder + "/again"); }},
        {"folder", [](auto const& folder) { EXPECT_EQ(chmod(folder.c_str(), 0555), 0); }, "", true},
        {"owner", [](auto const& folder) { EXPECT_EQ(chown((folder + "/target").c_str(), 1, 1), 0); }, "", true, true},
        {"attribute",
         [](auto const& folder) { EXPECT_EQ(setxattr((folder + "/target").c_str(), "user.note", "n", 1, 0), 0); },
         "attribute"},
        {"mount point", [](auto const&) {}, "rename"},
    };
    std::string const large(100000, 'x');
    for (Case const& c : cases) {
        if (c.needsRoot && !isRoot) continue;
        for (std::string const& content : {large, std::string()}) {
            SCOPED_TRACE(c.what);
            fs::permissions(path(), static_cast<fs::perms>(0777));
            fs::remove(target());
            put(target(), "the old text");
            fs::permissions(target(), static_cast<fs::perms>(0666));
            fs::remove(path("again"));
            c.prepare(path());
            Facts const before(target());
            std::size_t const files = fileCount();
            calls = {"", c.failing, EBUSY};
            {
                std::optional<Unprivileged> unprivileged;
                if (c.isUnprivileged) unprivileged.emplace();
                EXPECT_TRUE(save(content).ok());
            }
            Facts const after(target());
            EXPECT_EQ(text(), content);
            EXPECT_TRUE(after.sameFile(before));
            EXPECT_EQ(after.facts.st_uid, before.facts.st_uid);
            EXPECT_EQ(after.facts.st_mode, before.facts.st_mode);
            EXPECT_EQ(after.facts.st_nlink, before.facts.st_nlink);
            EXPECT_TRUE(calls.log.ends_with("sync file, "));
            EXPECT_EQ(fileCount(), files);
        }
    }
    calls = {};
    fs::permissions(path(), static_cast<fs::perms>(0777));
}

TEST_F(AtomicFiles, OverwriteTheOldOneOnlyWhenTheyFit) {
    ::test::TemporaryFolder const scratch;
    setenv("TMPDIR", scratch.path().c_str(), 1);
    fs::create_hard_link(target(), path("again"));
    calls = {"", "reserve", ENOSPC};
    EXPECT_EQ(save("new").code(), ENOSPC);
    EXPECT_EQ(text(), "the old text");
    calls = {"", "reserve", EOPNOTSUPP};
    EXPECT_TRUE(save("new").ok());
    EXPECT_EQ(textOf(path("again")), "new");
    put(target(), "the old text");
    calls = {"", "sync file", EIO};
    EXPECT_EQ(save("new").code(), EIO);
    calls = {};
    put(target(), "the old text");
    EXPECT_TRUE(fs::is_empty(scratch.path()));
    unsetenv("TMPDIR");
    EXPECT_EQ(text(), "the old text");
    EXPECT_EQ(fileCount(), 2U);
}

TEST_F(AtomicFiles, OverwriteTheFileThatWasThereWhenTheyWereOpened) {
    fs::create_hard_link(target(), path("again"));
    AtomicFile file;
    ASSERT_TRUE(file.open(wide(target())).ok());
    ASSERT_TRUE(file.write("new", 3).ok());
    fs::remove(target());
    ASSERT_EQ(mkfifo(target().c_str(), 0600), 0);  // opening it would wait for a reader
    EXPECT_TRUE(file.commit().ok());
    EXPECT_EQ(textOf(path("again")), "new");
    EXPECT_EQ(file.open(wide(target()), AtomicFile::Special::refused).code(), EINVAL);
}

TEST_F(AtomicFiles, KeepPermissionsAttributesAndTheLinkToThem) {
    fs::permissions(target(), static_cast<fs::perms>(0640));
    fs::create_symlink(target(), path("link"));
    bool const hasAttributes = setxattr(target().c_str(), "user.note", "kept", 4, 0) == 0;
    Facts const before(target());
    AtomicFile file;
    ASSERT_TRUE(file.open(wide(path("link"))).ok());
    ASSERT_TRUE(file.write("new", 3).ok());
    ASSERT_TRUE(file.commit().ok());
    EXPECT_EQ(text(), "new");
    EXPECT_FALSE(Facts(target()).sameFile(before));
    EXPECT_EQ(Facts(target()).facts.st_mode, before.facts.st_mode);
    EXPECT_TRUE(fs::is_symlink(path("link")));
    char note[4] = {};
    EXPECT_TRUE(!hasAttributes || getxattr(target().c_str(), "user.note", note, 4) == 4);
    EXPECT_EQ(std::string(note, 4), hasAttributes ? "kept" : std::string(4, '\0'));

    fs::permissions(target(), static_cast<fs::perms>(0444));
    Unprivileged const unprivileged;
    EXPECT_EQ(file.open(wide(target())).code(), EACCES);
}

TEST_F(AtomicFiles, AreMadeWhereALinkToNothingLeads) {
    fs::create_symlink("new", path("link"));
    fs::create_symlink("circle", path("circle"));
    AtomicFile file;
    ASSERT_TRUE(file.open(wide(path("link"))).ok());
    EXPECT_TRUE(file.write("new", 3).ok());
    EXPECT_EQ(fileCount(), 3U) << "a process that dies here leaves nothing";
    EXPECT_TRUE(file.commit().ok());
    EXPECT_EQ(textOf(path("new")), "new");
    EXPECT_TRUE(fs::is_symlink(path("link")));
    EXPECT_EQ(file.open(wide(path("circle"))).code(), ELOOP);
    EXPECT_EQ(file.open({}).code(), ENOENT);
    EXPECT_EQ(fileCount(), 4U);
}

TEST_F(AtomicFiles, WriteToADeviceDirectly) {
    AtomicFile file;
    ASSERT_TRUE(file.open(urString::IString("/dev/full")).ok());
    EXPECT_EQ(file.write("x", 1).code(), ENOSPC);
    EXPECT_EQ(file.commit().code(), ENOSPC);
    ASSERT_TRUE(file.open(urString::IString("/dev/null")).ok());
    EXPECT_TRUE(file.write("x", 1).ok());
    EXPECT_TRUE(file.commit().ok());
}

#endif

}  // namespace
}  // namespace urOS
