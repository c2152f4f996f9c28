// The page file: its chunks, its streams, and its failures.
#include <gmock/gmock.h>

#if defined(__linux__)
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <fstream>
#include <random>
#include <stdexcept>

#include "krcache/impl/FileStream.h"
#include "krcache/tests/TestKeys.h"

namespace urKRCache::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using ur::make;
using ur::Reference;

struct PageFileTest : testing::Test {
    /// The sizes of the chunks from the start of the file; negative for free ones.
    std::vector<std::int64_t> chunks(std::size_t inUse) {
        EXPECT_EQ(file.fault(inUse), nullptr);
        std::vector<std::int64_t> sizes;
        for (PageFileEntry const* entry = file.first(); entry; entry = file.after(*entry)) {
            sizes.insert(sizes.begin(), static_cast<std::int64_t>(entry->size()) * (entry->inUse() ? 1 : -1));
        }
        return sizes;
    }

    ::test::TemporaryFolder const folder;
    PageFile file{nameOf(folder / "page"), megabyte, 65536};
};

TEST_F(PageFileTest, CutsTheSmallestChunkThatFitsAndJoinsWhatIsFree) {
    PageFileEntry* const small = file.allocate(300);
    EXPECT_THAT(chunks(1), ElementsAre(300, -1048276));
    PageFileEntry* const large = file.allocate(2 * megabyte);
    EXPECT_THAT(chunks(2), ElementsAre(300, 2097152, -1048276));
    file.release(large), file.release(small);
    EXPECT_THAT(chunks(0), ElementsAre(-3145728));

    std::vector<PageFileEntry*> holes;
    for (std::uint64_t const bytes : {100, 500, 1000}) holes.push_back(file.allocate(bytes)), file.allocate(1);
    for (PageFileEntry* const hole : holes) file.release(hole);
    PageFileEntry* const middle = file.allocate(400);
    EXPECT_THAT(chunks(4), ElementsAre(-100, 1, 400, -100, 1, -1000, 1, -3144125));
    file.release(middle);
    EXPECT_THAT(chunks(3), ElementsAre(-100, 1, -500, 1, -1000, 1, -3144125));
    PageFileEntry* const exact = file.allocate(500);
    EXPECT_THAT(chunks(4), ElementsAre(-100, 1, 500, 1, -1000, 1, -3144125));
    file.release(file.allocate(0)), file.release(exact);
}

TEST(PageFileStreams, KeepToTheirChunksInPiecesOfAnySizeAndAtAnyOffset) {
    ::test::TemporaryFolder const folder;
    std::mt19937 random(3);
    std::string content(300'001, '\0'), back(300'100, '\0');
    for (char& byte : content) byte = static_cast<char>(random());
    for (auto const& [blockSize, most] : {std::pair(65536UL, 7UL), {65536, 70'000}, {65536, 400'000}, {5, 12}}) {
        PageFile file(nameOf(folder / "page"), megabyte, blockSize);
        file.allocate(5'000'000'000);
        PageFileEntry* const chunk = file.allocate(content.size());
        FileStream out(file, *chunk, FileStream::Direction::write), in(file, *chunk, FileStream::Direction::read);
        for (std::size_t done = 0, part = 0; done < content.size(); done += part) {
            ASSERT_TRUE(out.write(&content[done], std::min(random() % most + 1, content.size() - done), &part).ok());
        }
        out.finish();
        ASSERT_FALSE(out.failed());
        std::size_t total = 0;
        for (std::size_t part = 1; part > 0; total += part) {
            ASSERT_TRUE(in.read(&back[total], std::min(random() % most + 1, back.size() - total), &part).ok());
        }
        EXPECT_TRUE(std::string_view(back).substr(0, total) == content);
        for (FileStream* const stream : {&out, &in}) {
            std::size_t done = 9;
            EXPECT_TRUE(stream->write("x", 1, &done).ok());
            EXPECT_EQ(done, 0);
            EXPECT_TRUE(stream->error().isError());
        }
    }
}

struct PagingTest : testing::Test, Cache {
    void TearDown() override { EXPECT_EQ(manager.audit(), ""); }

    Reference<Shim> serializable(int number, std::string const& payload, unsigned size = 100'000) {
        auto const key = make<Key>(number);
        key->make = [=] { return Reference<Resource>(new Blob(size, payload)); };
        auto const shim = Cache::shim(key);
        manager.setSerializable(shim), access(shim);
        return shim;
    }
    std::string payload(Reference<Shim> const& shim) { return static_cast<Blob&>(*access(shim)).payload; }

    Messages messages;
};

TEST_F(PagingTest, PayloadsComeBackAndAreInitialisedAgain) {
    auto const a = serializable(1, "first"), greedy = serializable(2, "12345", 5);
    static_cast<Blob&>(*access(greedy)).payload = "123456";
    int initialised = 0, cleared = 0;
    keyOf(a).onInitialize = [&] { ++initialised; };
    urRTB::ScopedConnection const connection = keyOf(a).resourceClearedSignal.addCallback([&] { ++cleared; });
    manager.clear(), manager.clear();
    EXPECT_EQ(states({a, greedy}), "p-");
    EXPECT_EQ(messages.take(),
              "Dropped a 0.00MB resource instead of paging it: the resource writes more than its size\n"
              "Resources cleared.\nResources cleared.\n");
    EXPECT_EQ(payload(a) + payload(greedy), "first12345");
    EXPECT_EQ(keyOf(a).builds, 1);
    EXPECT_EQ(initialised, 1);
    EXPECT_EQ(cleared, 0);
    manager.clearResource(a), manager.lockResource(a), manager.removeResource(a);
    EXPECT_EQ(cleared, 1);
}

TEST_F(PagingTest, WhatAResourceThrowsReachesTheCallerAndLosesThePayload) {
    auto const a = serializable(1, "first");
    auto const setHook = [&](Hook hook) { static_cast<Blob&>(*access(a)).onPage = std::move(hook); };
    setHook([] { throw std::runtime_error("no"); });
    EXPECT_THROW(manager.clearResource(a), std::runtime_error);
    EXPECT_EQ(states({a}), "-");
    setHook([isFirst = true]() mutable { isFirst ? void(isFirst = false) : throw std::runtime_error("no"); });
    manager.clearResource(a);
    EXPECT_EQ(states({a}), "p");
    EXPECT_THROW(access(a), std::runtime_error);
    EXPECT_EQ(manager.audit(), "");
    EXPECT_EQ(payload(a), "first");
    EXPECT_EQ(keyOf(a).builds, 3);
    EXPECT_EQ(messages.take(), "");
}

// Needs systems on which other programs can change an open file, and files have size limits.
#if defined(__linux__)

TEST_F(PagingTest, WhatTheFileLosesIsBuiltAgain) {
    for (Hook const& harm :
         std::vector<Hook>{[&] { fs::resize_file(pageFile, 10); },
                           [&] { std::fstream(pageFile, std::ios::in | std::ios::out).seekp(70'000).put('!'); }}) {
        auto const shim = serializable(1, std::string(80'000, 'x'));
        manager.clear(), messages.take();
        harm();
        EXPECT_EQ(payload(shim), std::string(80'000, 'x'));
        EXPECT_EQ(keyOf(shim).builds, 2);
        EXPECT_THAT(messages.take(), HasSubstr("Dropped a 0.10MB resource instead of paging it: the file "));
        manager.removeResource(shim);
    }
}

TEST_F(PagingTest, AFullDiskDropsUntilThereIsRoom) {
    auto const a = serializable(1, std::string(80'000, 'a')), b = serializable(2, std::string(80'000, 'b'));
    auto const c = serializable(3, "c", 3 * megabyte);
    manager.clearResource(a), messages.take();
    rlimit former{};
    ::getrlimit(RLIMIT_FSIZE, &former);
    rlimit const limit{120'000, former.rlim_max};  // less than the file's chunks: writing fails half-way
    sighandler_t const handler = ::signal(SIGXFSZ, SIG_IGN);
    ::setrlimit(RLIMIT_FSIZE, &limit);
    manager.clearResource(b);
    EXPECT_THAT(messages.take(), HasSubstr("instead of paging it: write: "));
    manager.clearResource(c);
    EXPECT_EQ(messages.take(), "Dropped a 3.00MB resource instead of paging it: the file is full\n");
    ::setrlimit(RLIMIT_FSIZE, &former);
    ::signal(SIGXFSZ, handler);
    EXPECT_EQ(states({a, b, c}), "p--");
    EXPECT_EQ(payload(a) + payload(b), std::string(80'000, 'a') + std::string(80'000, 'b'));
    manager.clearResource(b);
    EXPECT_EQ(states({b}), "p");
}

/// Whether a manager in that folder can page. If not, it drops resources and reports that once.
bool canPage(fs::path const& folder) {
    Messages messages;
    Manager manager(nameOf(folder));
    for (int const number : {1, 2}) {
        auto const shim = manager.getShim(make<Key>(number), Shim::Retained);
        manager.setSerializable(shim), manager.accessResource(shim);
    }
    manager.clear();
    std::string const text = messages.take(), once = "Dropped a 0.00MB resource instead of paging it: ";
    EXPECT_EQ(text.find("Bad file descriptor"), std::string::npos) << "the reason is that of opening the file";
    bool const isTold = text.rfind(once) == 0 && text.find(once, 1) == std::string::npos;
    EXPECT_EQ(manager.statistics().pagesOut, isTold ? 0U : 2U) << text;
    EXPECT_EQ(text.find("write: "), std::string::npos) << "the open error is the reason";
    EXPECT_NE(manager.accessResource(manager.findShim(make<Key>(1))), nullptr);
    EXPECT_EQ(manager.audit(), "");
    return !isTold;
}

struct ScratchFileTest : testing::Test {
    ::test::TemporaryFolder const folder;
    fs::path const file = folder / "urKRCachePageFile.dat", other = folder / "other";
};

TEST_F(ScratchFileTest, IsNeverOpenedOrDeletedWhereItWouldNotBeOurs) {
    EXPECT_FALSE(canPage("/proc"));  // no user, not even root, can create files there
    EXPECT_FALSE(canPage("/no/such/folder"));
    std::ofstream(other) << "precious";
    std::vector<Hook> const traps = {[&] { fs::create_symlink(other, file); },
                                     [&] { fs::create_hard_link(other, file); }, [&] { fs::create_directory(file); },
                                     [&] { ::mkfifo(file.c_str(), 0600); }};
    for (Hook const& lay : traps) {
        lay();
        EXPECT_FALSE(canPage(folder.path()));
        fs::remove(file);
    }
    EXPECT_EQ(fs::file_size(other), 8);
    EXPECT_TRUE(canPage(folder.path()));
    EXPECT_FALSE(fs::exists(file));
    {
        Manager const manager(nameOf(folder.path()));
        fs::rename(other, file);
    }
    EXPECT_EQ(fs::file_size(file), 8);  // another program's file of that name stays
}

TEST_F(ScratchFileTest, OfALivingManagerIsLeftAloneAndOfAKilledOneTakenOver) {
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    pid_t const child = ::fork();
    if (child == 0) {
        Manager const manager(nameOf(folder.path()));
        std::ofstream(file) << "left behind";
        static_cast<void>(!::write(ready[1], "x", 1));
        for (;;) ::pause();
    }
    char byte = 0;
    ASSERT_EQ(::read(ready[0], &byte, 1), 1);
    EXPECT_FALSE(canPage(folder.path()));
    EXPECT_EQ(fs::file_size(file), 11);
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    fs::permissions(file, fs::perms::all);
    Manager const heir(nameOf(folder.path()));
    EXPECT_EQ(fs::file_size(file), 0);
    EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_FALSE(canPage(folder.path()));  // also within one process
}

#endif

}  // namespace
}  // namespace urKRCache::test
