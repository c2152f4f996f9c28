// Tasks between the main thread and their workers, and data sinks.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <optional>
#include <random>
#include <thread>

#include "support/messaging/AsyncTask.h"
#include "support/messaging/DataSink.h"
#include "support/messaging/tests/Host.h"

namespace {

using namespace nxSupport;
using namespace std::chrono_literals;

struct Counts {
    std::atomic<int> executed = 0;
    int completed = 0, waited = 0, failed = 0, destroyed = 0;
};

class Task : public AsyncTask {
public:
    Task(Host& host, Counts& counts) : AsyncTask(host), counts_(counts) {}
    ~Task() override { ++counts_.destroyed; }

    std::function<void()> work = [] {};
    std::function<void()> end = [] {};

private:
    void execute() override {
        ++counts_.executed;
        work();
    }
    void onComplete(bool waited) override {
        ++counts_.completed;
        counts_.waited += waited ? 1 : 0;
        counts_.failed += failed() ? 1 : 0;
        end();
    }

    Counts& counts_;
};

class AsyncTasks : public ::testing::Test {
protected:
    Counts counts;
    std::optional<Host> host{std::in_place};
    ur::Reference<Task> task = ur::make<Task>(*host, counts);
};

TEST_F(AsyncTasks, CompleteOnceAndOnlyWhenTheQueueIsServiced) {
    task->startThread();
    task->startThread();  // refused
    EXPECT_TRUE(host->queue.wait(10s));
    EXPECT_EQ(counts.completed, 0);
    task->end = [this] { EXPECT_FALSE(host->waitForAsyncTask()); };
    EXPECT_EQ(host->queue.service(), 1U);
    task->startThread();
    EXPECT_EQ(counts.executed, 1);
    EXPECT_EQ(counts.waited, 0);
    task.reset();
    EXPECT_EQ(counts.destroyed, 1);
}

TEST_F(AsyncTasks, TellThatTheyWereWaitedForEvenFromTheQueueItself) {
    struct Waiter : urThread::Runnable {
        explicit Waiter(Host& owner) : host(owner) {}
        void run() override { EXPECT_TRUE(host.waitForAsyncTask()); }
        Host& host;
    };
    host->queue.add(ur::make<Waiter>(*host));
    task->startThread();
    while (host->queue.size() < 2) std::this_thread::yield();
    EXPECT_EQ(host->queue.service(), 2U);  // waits with the completion behind it in the queue
    EXPECT_EQ(counts.waited, 1);
}

TEST_F(AsyncTasks, CompleteAsFailedWhenTheWorkThrows) {
    task->work = [] { throw std::runtime_error("no such file"); };
    task->end = [] { throw std::logic_error("from onComplete"); };
    task->startThread();
    EXPECT_TRUE(host->queue.wait(10s));
    EXPECT_THROW(host->queue.service(), std::logic_error);
    EXPECT_EQ(counts.failed, 1);
    EXPECT_EQ(task->failureText(), "no such file");
    EXPECT_FALSE(host->waitForAsyncTask());
    EXPECT_EQ(task->referenceCount(), 1);
}

TEST_F(AsyncTasks, AndTheirDomainsMayGoInAnyOrder) {
    task.reset();
    EXPECT_FALSE(host->waitForAsyncTask());
    task = ur::make<Task>(*host, counts);
    host.reset();
    task->startThread();  // there is nowhere to complete
    task->wait();
    EXPECT_EQ(counts.executed, 0);
}

TEST(AsyncTaskCompletion, FindsTheWorkerOutOfTheQueueWhichItMayDestroy) {
    struct SlowQueue : urThread::RunQueue {
        void onAdd() override {
            std::this_thread::sleep_for(20ms);
            left = true;
        }
        std::atomic<bool> left = false;
    };
    struct SlowHost : Host {
        urThread::RunQueue& runQueue() override { return slow; }
        SlowQueue slow;
    };
    Counts counts;
    std::optional<SlowHost> host(std::in_place);
    auto const task = ur::make<Task>(*host, counts);
    task->end = [&] {
        EXPECT_TRUE(host->slow.left);
        host.reset();
    };
    task->startThread();
    EXPECT_TRUE(host->slow.wait(10s));
    EXPECT_EQ(host->slow.service(), 1U);
    EXPECT_FALSE(host);
}

// Half of the hosts complete what they started, the others close their queue on it.
TEST(AThousandTasks, AreStartedWaitedForAbandonedAndThrownIn) {
    std::mt19937 random(20240);
    for (int round = 0; round < 10; ++round) {
        Host host;
        Counts counts;
        bool const closes = round % 2 != 0;
        int thrown = 0;
        std::vector<ur::Reference<Task>> kept;
        for (int i = 0; i < 100; ++i) {
            auto const task = ur::make<Task>(host, counts);
            if (random() % 4 == 0) {
                task->work = [] { throw std::runtime_error("thrown in"); };
                ++thrown;
            }
            task->startThread();
            if (closes || random() % 2 == 0) kept.push_back(task);
            if (random() % 3 == 0) task->wait();
            if (random() % 3 == 0) host.queue.service();
        }
        if (closes) {
            host.queue.close();
        } else {
            while (counts.completed < 100 && host.queue.wait(10s)) host.queue.service();
            EXPECT_EQ(counts.failed, thrown);
        }
        for (auto const& task : kept) task->wait();
        kept.clear();
        EXPECT_EQ(counts.executed, 100);
        EXPECT_EQ(counts.destroyed, 100);
    }
}

class Sink : public DataSink {
public:
    explicit Sink(std::string& log) : log_(log) {}
    ~Sink() override { log_ += closed() ? "gone" : ""; }

    ur::Reference<Sink> self;  // dropped when it closes

private:
    void onData(ur::Reference<urThread::Buffer> data) override { log_ += std::string(data->data(), data->size()); }
    void onClose() override {
        log_ += completed() ? " completed" : " aborted";
        log_ += closed() ? " again " : " ";
        if (!std::exchange(self, nullptr).null()) throw std::runtime_error("cannot close");
    }

    std::string& log_;
};

TEST(DataSinks, RememberHowTheyWereClosed) {
    std::string log;
    auto sink = ur::make<Sink>(log);
    EXPECT_FALSE(sink->closed() || sink->completed());
    sink->processData(ur::make<urThread::Buffer>("data"));
    sink->close(true);
    EXPECT_TRUE(sink->closed() && sink->completed());
    sink->processData(ur::make<urThread::Buffer>("more"));
    sink->close(false);
    EXPECT_FALSE(sink->completed());
    EXPECT_EQ(log, "data completed more aborted again ");
}

TEST(DataSinks, MayBeDroppedAndThrowWhileTheyClose) {
    std::string log;
    auto* const sink = new Sink(log);
    sink->self.reset(sink);
    EXPECT_THROW(sink->close(true), std::runtime_error);
    EXPECT_EQ(log, " completed gone");
}

}  // namespace
