// Tests which runnables run, when, and which are dropped.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <thread>

#include "foundation/urThread/RunQueue.h"

namespace {

using urThread::RunQueue;
using namespace std::chrono_literals;

class RunQueueTest : public testing::Test {
protected:
    void add(std::function<void()> body) { queue->add(std::move(body)); }
    void note(char const* text) {
        add([=, this] { log += text; });
    }

    std::string log;
    std::unique_ptr<RunQueue> queue = std::make_unique<RunQueue>();
};

TEST_F(RunQueueTest, RunsTheRunnablesQueuedWhenTheServiceBegan) {
    queue->add(nullptr);
    EXPECT_EQ(queue->service(), 0U);
    add([this] { note("3"), log += "1"; });
    note("2");
    EXPECT_EQ(queue->service(), 2U);
    EXPECT_EQ(queue->service(), 1U);
    add([this] { note("5"), queue->service(), note("next"); });
    note("4");
    queue->service();
    EXPECT_EQ(log, "12345");
    EXPECT_EQ(queue->size(), 1U);
}

TEST_F(RunQueueTest, AnExceptionKeepsTheRestQueuedInOrder) {
    add([] { throw 1; });
    note("a");
    EXPECT_THROW(queue->service(), int);
    note("b");
    queue->service();
    EXPECT_EQ(log, "ab");
}

TEST_F(RunQueueTest, RunnablesMayCloseOrDestroyTheQueueAndTheRestIsDropped) {
    add([this] { queue->close(); });
    add([this, dropped = std::shared_ptr<void>(nullptr, [this](void*) { note("late"), log += "dropped"; })] {
        log += "run";
    });
    EXPECT_EQ(queue->service(), 1U);
    EXPECT_EQ(queue->size(), 0U);
    queue = std::make_unique<RunQueue>();
    add([this] { queue.reset(); });
    note("run");
    EXPECT_EQ(queue->service(), 1U);
    EXPECT_EQ(log, "dropped");
}

TEST_F(RunQueueTest, QueuedRunnablesAreDroppedByTheServicingThread) {
    std::thread::id droppedBy;
    auto const addWatched = [&] {
        add([atEnd = std::shared_ptr<void>(nullptr, [&](void*) { droppedBy = std::this_thread::get_id(); })] {});
    };
    std::function<void()> const ends[] = {[&] { EXPECT_EQ(queue->service(), 0U); },
                                          [&] { EXPECT_FALSE(queue->wait(1h)); }, [&] { queue.reset(); }};
    for (auto const& end : ends) {
        queue = std::make_unique<RunQueue>();
        addWatched();
        std::thread([&] { queue->close(); }).join();
        EXPECT_EQ(droppedBy, std::thread::id());
        EXPECT_EQ(queue->size(), 0U);
        end();
        EXPECT_EQ(std::exchange(droppedBy, {}), std::this_thread::get_id());
    }
    queue = std::make_unique<RunQueue>();
    std::thread servicing([&] { queue->service(), addWatched(), queue->close(); });
    std::thread::id const expected = servicing.get_id();
    servicing.join();
    EXPECT_EQ(droppedBy, expected);
}

TEST_F(RunQueueTest, WaitingEndsWithTheLimitAnAdditionOrTheClose) {
    for (auto const limit : {-1000ms, 1ms}) EXPECT_FALSE(queue->wait(limit));
    std::thread adder([this] { note("work"); });
    EXPECT_TRUE(queue->wait(std::chrono::nanoseconds::max()));
    adder.join();
    EXPECT_TRUE(queue->wait(0s));
    queue->service();
    std::thread closer([this] { queue->close(); });
    EXPECT_FALSE(queue->wait(1h));
    closer.join();
    EXPECT_FALSE(queue->wait(1h));
}

TEST(RunQueue, NotifiesItsHostOfAdditionsAndLosesNone) {
    struct HostQueue : RunQueue {
        void onAdd() override { ++additions; }
        std::atomic<std::size_t> additions = 0;
    } queue;
    std::size_t ran = 0;  // only this thread changes it
    auto const addMany = [&] {
        for (int i = 0; i < 2000; ++i) queue.add([&ran] { ++ran; });
    };
    std::thread first(addMany), second(addMany);
    for (std::size_t serviced = 0; serviced < 4000 && queue.wait(10s);) serviced += queue.service();
    first.join();
    second.join();
    EXPECT_EQ(ran, 4000U);
    EXPECT_EQ(queue.additions, 4000U);
}

}  // namespace
