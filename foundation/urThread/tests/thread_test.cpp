// Threads, the counts and the bytes that they share.
#include <gtest/gtest.h>

#include <cerrno>
#include <future>
#include <memory>
#include <stdexcept>
#include <thread>

#include "foundation/urThread/Buffer.h"
#include "foundation/urThread/Thread.h"

namespace {

using urThread::Buffer;
using urThread::mergeBuffers;
using urThread::Thread;

TEST(Thread, EmitsItsSignalOnANewThreadOncePerRun) {
    int runs = 0;
    std::thread::id runner;
    {
        Thread thread;
        thread.getSignal().addCallback([&] { ++runs, runner = std::this_thread::get_id(); });
        EXPECT_TRUE(thread.wait().ok());
        EXPECT_TRUE(thread.start().ok());
        EXPECT_EQ(thread.start().code(), EALREADY);
        EXPECT_TRUE(thread.wait().ok());
        EXPECT_NE(runner, std::this_thread::get_id());
        EXPECT_TRUE(thread.start().ok());
    }
    EXPECT_EQ(runs, 2);  // the second run was waited for by the destructor
}

TEST(Thread, WaitTellsWhatACallbackThrew) {
    Thread thread;
    thread.getSignal().addCallback([] { throw std::runtime_error("no memory card"); });
    ASSERT_TRUE(thread.start().ok());
    for (int again = 0; again < 2; ++again) EXPECT_EQ(thread.wait().message(), "no memory card");
    thread.getSignal().disconnectAll();
    thread.getSignal().addCallback([] { throw 1; });
    ASSERT_TRUE(thread.start().ok());
    EXPECT_TRUE(thread.wait().isError());
}

TEST(Thread, ARunCannotWaitForItselfButMayDestroyIt) {
    std::promise<int> refusal;
    auto owner = std::make_unique<Thread>();
    Thread* const thread = owner.get();
    auto answer = refusal.get_future();
    thread->getSignal().addCallback([owner = std::move(owner), refusal = std::move(refusal)]() mutable {
        int const code = owner->wait().code();
        owner.reset();
        refusal.set_value(code);
    });
    ASSERT_TRUE(thread->start().ok());
    EXPECT_EQ(answer.get(), EDEADLK);
}

TEST(ReferenceCount, HoldersOnSeveralThreadsShareOneObject) {
    struct Shared : urThread::ReferenceCount {
        explicit Shared(std::shared_ptr<int> held) : token(std::move(held)) {}
        std::shared_ptr<int> token;
    };
    auto const token = std::make_shared<int>();
    auto shared = ur::make<Shared>(token);
    auto const copyOften = [own = shared] {
        for (int i = 0; i < 20'000; ++i) ur::Reference<Shared const> const passing = own;
    };
    std::thread first(copyOften);
    std::thread second(copyOften);
    first.join();
    second.join();
    EXPECT_EQ(shared->referenceCount(), 2);
    EXPECT_EQ(ur::make<Shared>(*shared)->referenceCount(), 1);
    EXPECT_EQ(token.use_count(), 2);
}

TEST(Buffer, HoldsAnyBytesAndJoins) {
    auto const text = [](ur::Reference<Buffer> const& buffer) { return std::string(buffer->data(), buffer->size()); };
    std::string const zero("a\0b", 3);
    auto const first = ur::make<Buffer>(std::string_view(zero));
    auto const second = ur::make<Buffer>(ur::vector<char>{'c', 'd'});
    EXPECT_EQ(text(mergeBuffers(first, second)), zero + "cd");
    EXPECT_EQ(text(mergeBuffers(nullptr, second)), "cd");
    EXPECT_EQ(text(mergeBuffers(first, nullptr)), zero);
    EXPECT_EQ(mergeBuffers(nullptr, ur::make<Buffer>(nullptr, 0U))->size(), 0U);
}

}  // namespace
