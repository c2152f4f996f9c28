// Tests threads, reference counts and shared buffers.
#include <gtest/gtest.h>

#include <cerrno>
#include <future>
#include <memory>
#include <stdexcept>
#include <thread>

#include "foundation/urThread/Buffer.h"
#include "foundation/urThread/Thread.h"

namespace {

using namespace urThread;

TEST(Thread, EmitsItsSignalOnANewThreadOncePerRun) {
    int runs = 0;
    {
        Thread thread;
        thread.getSignal().addCallback([&, here = std::this_thread::get_id()] {
            ++runs;
            EXPECT_NE(std::this_thread::get_id(), here);
        });
        EXPECT_TRUE(thread.wait().ok());
        EXPECT_TRUE(thread.start().ok());
        EXPECT_EQ(thread.start().code(), EALREADY);
        EXPECT_TRUE(thread.wait().ok());
        EXPECT_TRUE(thread.start().ok());
    }
    EXPECT_EQ(runs, 2);  // the destructor waited for the second run
}

TEST(Thread, WaitReturnsTheExceptionOfACallback) {
    Thread thread;
    auto connection = thread.getSignal().addCallback([] { throw std::runtime_error("no memory card"); });
    ASSERT_TRUE(thread.start().ok());
    for (int again = 0; again < 2; ++again) EXPECT_EQ(thread.wait().message(), "no memory card");
    connection.disconnect();
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
    struct Shared : urThread::ReferenceCount {};
    auto shared = ur::make<Shared>();
    auto const copyOften = [own = shared] {
        for (int i = 0; i < 20'000; ++i) ur::Reference<Shared const> const passing = own;
    };
    auto other = std::async(std::launch::async, std::cref(copyOften));
    copyOften();
    other.wait();
    EXPECT_EQ(shared->referenceCount(), 2);
    EXPECT_EQ(ur::make<Shared>(*shared)->referenceCount(), 1);
}

TEST(Buffer, HoldsAnyBytesAndJoins) {
    using namespace std::string_view_literals;
    auto const text = [](ur::Reference<Buffer> const& buffer) { return std::string(buffer->data(), buffer->size()); };
    auto const first = ur::make<Buffer>("a\0b"sv), second = ur::make<Buffer>(ur::vector<char>{'c', 'd'});
    EXPECT_EQ(text(mergeBuffers(first, second)), "a\0bcd"sv);
    EXPECT_EQ(text(mergeBuffers(nullptr, second)), "cd");
    EXPECT_EQ(text(mergeBuffers(first, ur::make<Buffer>(nullptr, 0U))), "a\0b"sv);
    EXPECT_EQ(mergeBuffers(nullptr, nullptr)->size(), 0U);
}

TEST(Buffer, MergesBlockAfterBlockAtTheCostOfTheBody) {
    auto const account = std::make_shared<ur::Account>();
    auto const block = ur::make<Buffer>(std::string(1000, 'x'));
    ur::Reference<Buffer> body, half;
    std::size_t most = 0;
    for (int i = 0; i < 10000; ++i) {
        body = mergeBuffers(body, block);
        if (i == 0) body->chargeTo(account);
        if (i == 4999) half = body;
        most = std::max(most, account->native());
    }
    EXPECT_EQ(body->size(), 10'000'000U);
    EXPECT_LE(most, 25'000'000U + 7'500'000U);  // the last two growing storages, and the half that is kept
    EXPECT_EQ(mergeBuffers(body, block)->data(), body->data()) << "in the room left";
    // A buffer does not see bytes that a merge appends to its storage, and neither do its other merges.
    auto const one = mergeBuffers(half, ur::make<Buffer>("y")), other = mergeBuffers(half, ur::make<Buffer>("z"));
    EXPECT_EQ(half->size(), 5'000'000U);
    EXPECT_EQ(one->data()[5'000'000], 'y');
    EXPECT_EQ(other->data()[5'000'000], 'z');
    account->setBounds({.allowed = account->used() + 1'000'000});
    EXPECT_THROW(static_cast<void>(mergeBuffers(block, other)), ur::BudgetSpent);
}

TEST(Buffer, ThreadsMayMergeIntoOneBuffer) {
    auto const begin = mergeBuffers(ur::make<Buffer>(std::string(1000, 'x')), ur::make<Buffer>("y"));
    auto const countWrongMerges = [&begin](char letter) {
        std::string const mine(100, letter);
        int wrong = 0;
        for (int i = 0; i < 300; ++i) {
            auto const merged = mergeBuffers(begin, ur::make<Buffer>(mine));
            wrong += std::string_view(merged->data() + 1001, 100) != mine;
        }
        return wrong;
    };
    auto other = std::async(std::launch::async, countWrongMerges, 'b');
    EXPECT_EQ(countWrongMerges('a'), 0);
    EXPECT_EQ(other.get(), 0);
}

}  // namespace
