// The page file: its chunks, what goes through it, and what can go wrong with it.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <random>

#include "krcache/impl/FileStream.h"
#include "krcache/tests/TestKeys.h"

namespace urKRCache::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using ur::make;
using ur::Reference;

constexpr std::uint64_t megabyte = 1048576;

struct PageFileTest : testing::Test, Folder {
    /// The chunks from the start of the file: sizes, negative for free ones.
    std::vector<std::int64_t> chunks() {
        EXPECT_EQ(file.fault(inUse), nullptr);
        std::vector<std::int64_t> sizes;
        for (PageFileEntry const* entry = file.first(); entry; entry = file.after(*entry)) {
            sizes.insert(sizes.begin(), static_cast<std::int64_t>(entry->size()) * (entry->inUse() ? 1 : -1));
        }
        return sizes;
    }
    PageFileEntry* allocate(std::uint64_t bytes) {
        ++inUse;
        return file.allocate(bytes);
    }
    void release(PageFileEntry* entry) {
        --inUse;
        file.release(entry);
    }

    PageFile file{urString::IString(pageFile().c_str())};
    std::size_t inUse = 0;
};

TEST_F(PageFileTest, GrowsByAMegabyteOrMoreAndJoinsWhatIsFree) {
    PageFileEntry* const small = allocate(300);
    EXPECT_THAT(chunks(), ElementsAre(300, -1048276));
    PageFileEntry* const large = allocate(2 * megabyte);
    EXPECT_THAT(chunks(), ElementsAre(300, 2097152, -1048276));
    EXPECT_EQ(large->offset(), 300);
    release(large);
    release(small);
    EXPECT_THAT(chunks(), ElementsAre(-3145728));
}

TEST_F(PageFileTest, TakesTheSmallestChunkThatFits) {
    std::vector<PageFileEntry*> holes;
    for (std::uint64_t const bytes : {100, 500, 1000}) holes.push_back(allocate(bytes)), allocate(1);
    for (PageFileEntry* const hole : holes) release(hole);
    PageFileEntry* const middle = allocate(400);
    EXPECT_THAT(chunks(), ElementsAre(-100, 1, 400, -100, 1, -1000, 1, -1046973));
    release(middle);
    EXPECT_THAT(chunks(), ElementsAre(-100, 1, -500, 1, -1000, 1, -1046973));
}

TEST_F(PageFileTest, EmptyChunksKeepApart) {
    PageFileEntry *const first = allocate(0), *const second = allocate(0), *const third = allocate(megabyte);
    release(first);
    release(second);
    EXPECT_THAT(chunks(), ElementsAre(0, 1048576));
    release(third);
    EXPECT_THAT(chunks(), ElementsAre(-1048576));
}

TEST_F(PageFileTest, OffsetsGoBeyondFourGigabytes) {
    std::uint64_t const large = 4'000'000'000;
    allocate(large);
    PageFileEntry* const last = allocate(large);
    FileStream out(file, *last, FileStream::Direction::write);
    EXPECT_TRUE(out.write("far", 3).ok() && out.finish().ok());
    char text[4] = {};
    FileStream in(file, *last, FileStream::Direction::read);
    EXPECT_TRUE(in.read(text, 3).ok());
    EXPECT_STREQ(text, "far");
}

TEST_F(PageFileTest, StreamsKeepToTheirChunksInPiecesOfAnySize) {
    std::mt19937 random(3);
    std::string content(300'001, '\0');
    for (char& byte : content) byte = static_cast<char>(random());
    allocate(77);
    for (std::size_t const most : {7UL, 70'000UL, 400'000UL}) {
        PageFileEntry* const chunk = allocate(content.size());
        FileStream out(file, *chunk, FileStream::Direction::write);
        for (std::size_t done = 0, part = 0; done < content.size(); done += part) {
            part = std::min<std::size_t>(random() % most + 1, content.size() - done);
            ASSERT_TRUE(out.write(content.data() + done, part).ok());
        }
        ASSERT_TRUE(out.finish().ok());
        std::string back(content.size() + 100, '\0');
        std::size_t total = 0;
        FileStream in(file, *chunk, FileStream::Direction::read);
        for (std::size_t part = 1; part > 0; total += part) {
            ASSERT_TRUE(in.read(back.data() + total, std::min(random() % most + 1, back.size() - total), &part).ok());
        }
        EXPECT_TRUE(std::string_view(back).substr(0, total) == content);
        std::size_t done = 9;
        EXPECT_TRUE(out.write("x", 1, &done).ok() && done == 0 && out.error().isError());
        EXPECT_TRUE(in.write("x", 1, &done).ok() && done == 0 && in.error().isError());
    }
}

struct PagingTest : testing::Test, Cache {
    void TearDown() override { EXPECT_EQ(manager.audit(), ""); }

    Reference<Shim> serializable(int number, std::string const& payload, unsigned size = 100'000) {
        auto const key = make<Key>(number);
        key->make = [=] { return Reference<Resource>(new Blob(size, payload)); };
        auto const shim = Cache::shim(key);
        manager.setSerializable(shim);
        access(shim);
        return shim;
    }
    std::string payload(Reference<Shim> const& shim) { return static_cast<Blob&>(*access(shim)).payload; }

    Messages messages;
};

TEST_F(PagingTest, PayloadsComeBackAndAreInitialisedAgain) {
    auto const a = serializable(1, "first"), b = serializable(2, std::string(90'000, 'x'));
    int initialised = 0, cleared = 0;
    keyOf(a).onInitialize = [&] { ++initialised; };
    keyOf(a).onCleared = [&] { ++cleared; };
    manager.clear();
    EXPECT_TRUE(a->isResourceSerialized() && !a->isResourceAllocated());
    EXPECT_EQ(manager.getMemoryUsed(), 0);
    manager.clear();  // already out
    EXPECT_EQ(messages.take(), "Resources cleared.\nResources cleared.\n");
    EXPECT_EQ(payload(a), "first");
    EXPECT_EQ(payload(b), std::string(90'000, 'x'));
    EXPECT_EQ(initialised, 1);
    EXPECT_EQ(cleared, 0);
    Statistics const counts = manager.statistics();
    EXPECT_EQ(counts.pagesOut, 2);
    EXPECT_EQ(counts.pagesInBytes, 90'005);

    manager.clearResource(a);
    manager.lockResource(a);
    manager.removeResource(a);
    EXPECT_EQ(cleared, 1);
    EXPECT_EQ(keyOf(b).builds, 1);
}

TEST_F(PagingTest, WhatTheFileLosesIsBuiltAgain) {
    auto const truncate = [&] { fs::resize_file(pageFile(), 10); };
    auto const overwrite = [&] { std::fstream(pageFile(), std::ios::in | std::ios::out).seekp(70'000).put('!'); };
    for (std::function<void()> const& harm : {std::function<void()>(truncate), std::function<void()>(overwrite)}) {
        auto const shim = serializable(1, std::string(80'000, 'x'));
        manager.clear();
        messages.take();
        harm();
        EXPECT_EQ(payload(shim), std::string(80'000, 'x'));
        EXPECT_EQ(keyOf(shim).builds, 2);
        EXPECT_THAT(messages.take(), HasSubstr("Dropped a 0.10MB resource instead of paging it: the file "));
        manager.removeResource(shim);
    }
}

TEST_F(PagingTest, AResourceThatWritesMoreThanItsSizeIsDropped) {
    auto const neighbour = serializable(1, "neighbour", 9), greedy = serializable(2, "much more", 3);
    manager.clear();
    EXPECT_TRUE(!greedy->isResourceSerialized() && !greedy->isResourceAllocated());
    EXPECT_EQ(payload(neighbour), "neighbour");
    EXPECT_EQ(payload(greedy), "much more");
    EXPECT_EQ(messages.take(),
              "Dropped a 0.00MB resource instead of paging it: the resource writes more than its size\n"
              "Resources cleared.\n");
}

TEST_F(PagingTest, WhatAResourceThrowsWhilePagingDropsIt) {
    auto const shim = serializable(1, "text");
    static_cast<Blob&>(*access(shim)).onPage = [] { throw std::runtime_error("no"); };
    EXPECT_THROW(manager.clearResource(shim), std::runtime_error);
    EXPECT_FALSE(shim->isResourceSerialized());
    EXPECT_EQ(payload(shim), "text");
}

/// Lets files of this process become `bytes` long and no longer.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : handler_(::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &former_);
        rlimit const limit{bytes, former_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    FileSizeLimit(FileSizeLimit const&) = delete;
    FileSizeLimit& operator=(FileSizeLimit const&) = delete;
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &former_);
        ::signal(SIGXFSZ, handler_);
    }

private:
    rlimit former_{};
    sighandler_t handler_;
};

TEST_F(PagingTest, AFullDiskDropsUntilThereIsRoom) {
    auto const a = serializable(1, std::string(80'000, 'a')), b = serializable(2, std::string(80'000, 'b'));
    auto const c = serializable(3, "c", 3 * megabyte);
    manager.clearResource(a);
    messages.take();
    {
        FileSizeLimit const limit(120'000);  // the file has promised more: writing fails half-way
        manager.clearResource(b);
        EXPECT_THAT(messages.take(), HasSubstr("instead of paging it: write: "));
        manager.clearResource(c);
        EXPECT_EQ(messages.take(), "Dropped a 3.00MB resource instead of paging it: the file is full\n");
        EXPECT_TRUE(!b->isResourceSerialized() && !c->isResourceSerialized());
        EXPECT_EQ(payload(a), std::string(80'000, 'a'));
        EXPECT_EQ(payload(b), std::string(80'000, 'b'));
    }
    manager.clearResource(b);
    EXPECT_TRUE(b->isResourceSerialized());
}

TEST(ScratchFile, IsPrivateAndGoesWithItsManager) {
    Folder folder;
    {
        Manager const manager(folder.text());
        struct stat status = {};
        ASSERT_EQ(::stat(folder.pageFile().c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777, 0600U);
        fs::rename(folder.pageFile(), folder.path() / "moved");
        std::ofstream(folder.pageFile()) << "not ours";
    }
    EXPECT_TRUE(fs::exists(folder.pageFile()));  // someone else's file of that name stays
}

/// Whether a manager on that folder can page; if not it drops, once with a message.
bool canPage(urString::IString const& folder) {
    Messages messages;
    Manager manager(folder);
    for (int number : {1, 2}) {
        auto const shim = manager.getShim(make<Key>(number), Shim::Retained);
        manager.setSerializable(shim);
        manager.accessResource(shim);
    }
    manager.clear();
    std::string const text = messages.take();
    std::string const once = "Dropped a 0.00MB resource instead of paging it: ";
    bool const isTold = text.rfind(once) == 0 && text.find(once, 1) == std::string::npos;
    EXPECT_EQ(manager.statistics().pagesOut, isTold ? 0U : 2U) << text;
    EXPECT_NE(manager.accessResource(manager.findShim(make<Key>(1))), nullptr);
    EXPECT_EQ(manager.audit(), "");
    return !isTold;
}

TEST(ScratchFile, IsNeverOpenedWhereItWouldNotBeOurs) {
    EXPECT_FALSE(canPage("/proc"));  // nobody can create files there, not even root
    EXPECT_FALSE(canPage("/no/such/folder"));
    Folder folder;
    fs::path const file = folder.pageFile(), victim = folder.path() / "victim";
    std::ofstream(victim) << "precious";
    std::vector<std::function<void()>> const traps = {
        [&] { fs::create_symlink(victim, file); },
        [&] { fs::create_hard_link(victim, file); },
        [&] { fs::create_directory(file); },
        [&] { ::mkfifo(file.c_str(), 0600); },
    };
    for (auto const& lay : traps) {
        lay();
        EXPECT_FALSE(canPage(folder.text()));
        fs::remove(file);
    }
    EXPECT_EQ(fs::file_size(victim), 8);
    EXPECT_TRUE(canPage(folder.text()));
}

TEST(ScratchFile, OfALivingManagerIsLeftAloneAndOfAKilledOneTakenOver) {
    Folder folder;
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    pid_t const child = ::fork();
    if (child == 0) {
        Manager const manager(folder.text());
        std::ofstream(folder.pageFile()) << "left behind";
        static_cast<void>(!::write(ready[1], "x", 1));
        for (;;) ::pause();
    }
    char byte = 0;
    ASSERT_EQ(::read(ready[0], &byte, 1), 1);
    EXPECT_FALSE(canPage(folder.text()));
    EXPECT_EQ(fs::file_size(folder.pageFile()), 11);
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    fs::permissions(folder.pageFile(), fs::perms::all);
    {
        Manager const heir(folder.text());
        EXPECT_EQ(fs::file_size(folder.pageFile()), 0);
        EXPECT_EQ(fs::status(folder.pageFile()).permissions(), fs::perms::owner_read | fs::perms::owner_write);
        EXPECT_FALSE(canPage(folder.text()));  // also within one process
    }
    EXPECT_FALSE(fs::exists(folder.pageFile()));
}

}  // namespace
}  // namespace urKRCache::test
