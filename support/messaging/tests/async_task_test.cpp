// Tasks, their workers, and data sinks.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "foundation/urOS/tests/CapturedOutput.h"
#include "support/messaging/AsyncTask.h"
#include "support/messaging/DataSink.h"
#include "support/messaging/tests/Host.h"

namespace {

using namespace nxSupport;
using namespace std::chrono_literals;

struct Counts {
    std::atomic<int> executed = 0;
    int completed = 0, waited = 0, destroyed = 0;
};

class Task : public AsyncTask {
public:
    Task(Host& host, Counts& counts) : AsyncTask(host), counts_(counts) {}
    ~Task() override { ++counts_.destroyed; }

    std::function<void()> work = [] {}, end = [] {};
    std::string failure;
    using AsyncTask::setProgress;

private:
    void execute() override { ++counts_.executed, work(); }
    void onComplete(bool waited) override {
        ++counts_.completed;
        counts_.waited += waited ? 1 : 0;
        end();
    }
    void onFailed(std::string_view text) override { failure += text; }

    Counts& counts_;
};

struct AsyncTasks : testing::Test {
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
    EXPECT_TRUE(counts.executed == 1 && counts.waited == 0);
    task.reset();
    EXPECT_EQ(counts.destroyed, 1);
}

TEST_F(AsyncTasks, TellThatTheyWereWaitedForEvenFromTheQueueItself) {
    host->queue.add([this] { EXPECT_TRUE(host->waitForAsyncTask()); });
    task->startThread();
    while (host->queue.size() < 2) std::this_thread::yield();
    EXPECT_EQ(host->queue.service(), 2U);  // waits with the completion after it in the queue
    EXPECT_EQ(counts.waited, 1);
}

TEST_F(AsyncTasks, NeverCompleteWhenTheWorkThrows) {
    task->work = [] { throw std::runtime_error("no such file"); };
    task->startThread();
    EXPECT_TRUE(host->waitForAsyncTask());
    EXPECT_TRUE(task->failed() && task->failureText() == "no such file");
    EXPECT_FALSE(host->waitForAsyncTask());
    EXPECT_EQ(task->failure, "no such file");
    EXPECT_EQ(task->referenceCount(), 1);
    EXPECT_EQ(host->queue.service(), 1U);
    EXPECT_EQ(task->failure, "no such file") << "told once";
    EXPECT_EQ(counts.completed, 0);
}

TEST_F(AsyncTasks, FailUnwaited) {
    task->work = [] { throw std::runtime_error("broken"); };
    task->startThread();
    EXPECT_TRUE(host->queue.wait(10s));
    host->queue.service();
    EXPECT_EQ(task->failure, "broken");
    EXPECT_FALSE(host->waitForAsyncTask());
}

/// A thread-local whose destructor reports that the thread runs no more of its own code.
struct AtThreadExit {
    ~AtThreadExit() { ended = true; }
    std::atomic<bool>& ended;
};

TEST_F(AsyncTasks, PrintAFailureThatTheQueueDrops) {
    urOS::CapturedOutput const output;
    task->work = [] { throw std::runtime_error("broken"); };
    task->startThread();
    EXPECT_TRUE(host->queue.wait(10s));
    host->queue.close();
    EXPECT_EQ(task->failure, "");
    EXPECT_EQ(task->failureText(), "broken");
    EXPECT_NE(output.text().find("Task has failed: broken\n"), std::string::npos);
    EXPECT_EQ(task->referenceCount(), 1);

    auto const waited = ur::make<Task>(*host, counts);  // the queue is already closed
    waited->work = task->work;
    waited->startThread();
    waited->wait();
    EXPECT_EQ(waited->failure, "broken");
    EXPECT_EQ(waited->referenceCount(), 1);

    auto const left = ur::make<Task>(*host, counts);
    std::atomic<bool> ended = false;
    left->work = [&] {
        static thread_local AtThreadExit const last{ended};
        throw std::runtime_error("left");
    };
    left->startThread();
    while (!ended) std::this_thread::yield();
    host.reset();
    EXPECT_NE(output.text().find("Task has failed: left\n"), std::string::npos);
}

TEST_F(AsyncTasks, PrintTheirFailureUnlessTheyHandleIt) {
    struct Plain : AsyncTask {
        using AsyncTask::AsyncTask;
        void execute() override { throw std::runtime_error("disk full"); }
        void onComplete(bool) override {}
    };
    urOS::CapturedOutput const output;
    auto const plain = ur::make<Plain>(*host);
    plain->startThread();
    plain->wait();
    EXPECT_NE(output.text().find("Plain has failed: disk full\n"), std::string::npos) << output.text();
}

TEST_F(AsyncTasks, AreCancelledAndTellTheirLastProgress) {
    std::vector<std::pair<double, std::string>> calls;
    auto const connection = task->progressSignal().addCallback(
        [&](double fraction, std::string_view text) { calls.emplace_back(fraction, text); });
    std::atomic<bool> read = false;
    task->work = [&] {
        for (double const fraction : {0.1, 0.2, 0.3}) task->setProgress(fraction, "reading");
        read = true;
        while (!task->isCancelled()) std::this_thread::yield();
        task->setProgress(1, "cancelled");
    };
    task->startThread();
    while (!read) std::this_thread::yield();
    EXPECT_EQ(host->queue.service(), 1U) << "at most one is under way";
    EXPECT_FALSE(task->isCancelled());
    task->cancel();
    task->wait();
    EXPECT_EQ(host->queue.service(), 2U);
    EXPECT_EQ(calls, (std::vector<std::pair<double, std::string>>{{0.3, "reading"}, {1, "cancelled"}}));
    EXPECT_EQ(counts.completed, 1);

    auto dropped = ur::make<Task>(*host, counts);  // destroyed with its progress still in the queue
    Task* const working = dropped.get();
    dropped->work = [working] { working->setProgress(0.5); };
    dropped->startThread();
    dropped->wait();
    dropped.reset();
    EXPECT_EQ(host->queue.service(), 2U);
}

TEST_F(AsyncTasks, HaveCompletedWhenOnCompleteThrows) {
    task->end = [] { throw std::logic_error("from onComplete"); };
    task->startThread();
    EXPECT_TRUE(host->queue.wait(10s));
    EXPECT_THROW(host->queue.service(), std::logic_error);
    EXPECT_FALSE(host->waitForAsyncTask());
    EXPECT_EQ(task->referenceCount(), 1);
}

TEST_F(AsyncTasks, AndTheirDomainsMayGoInAnyOrder) {
    auto latest = ur::make<Task>(*host, counts);
    task.reset();
    EXPECT_TRUE(host->waitForAsyncTask());
    latest.reset();
    EXPECT_FALSE(host->waitForAsyncTask());
    task = ur::make<Task>(*host, counts);
    host.reset();
    task->startThread();  // without a domain it does nothing
    task->wait();
    EXPECT_EQ(counts.executed, 0);
}

TEST_F(AsyncTasks, AreFreedWhenAnotherThreadClosesTheQueue) {
    enum End { serviced, waited, domainGone, closedBefore };
    for (End const end : {serviced, waited, domainGone, closedBefore}) {
        SCOPED_TRACE(end);
        host.emplace();
        task = ur::make<Task>(*host, counts);
        counts.destroyed = 0;
        auto const close = [&] { std::thread([&] { host->queue.close(); }).join(); };
        if (end == closedBefore) close();
        std::atomic<bool> ended = false;
        task->work = [&] { static thread_local AtThreadExit const last{ended}; };
        task->startThread();
        while (!ended) std::this_thread::yield();
        if (end != closedBefore) close();
        task.reset();
        if (end == serviced) {
            host->queue.service();
        } else if (end == waited) {
            EXPECT_FALSE(host->queue.wait(10s));
        } else {
            host.reset();
        }
        EXPECT_EQ(counts.destroyed, 1);
        EXPECT_EQ(counts.completed, 0);
    }
}

TEST_F(AsyncTasks, FindTheirWorkersOutOfTheQueueWhichTheyMayDestroy) {
    std::atomic<bool> left = false;
    host->queue.added = [&] {
        std::this_thread::sleep_for(20ms);
        left = true;
    };
    task->end = [&] {
        EXPECT_TRUE(left);
        host.reset();
    };
    task->startThread();
    EXPECT_TRUE(host->queue.wait(10s));
    EXPECT_EQ(host->queue.service(), 1U);
    EXPECT_FALSE(host);
}

// Half of the hosts complete their tasks, the others close the queue before that.
TEST(AThousandTasks, AreStartedWaitedForAbandonedAndThrownIn) {
    std::mt19937 random(20240);
    for (int round = 0; round < 10; ++round) {
        Host host;
        Counts counts;
        bool const closes = round % 2 != 0;
        int due = 0;
        std::vector<ur::Reference<Task>> kept;
        for (int i = 0; i < 100; ++i) {
            auto const task = ur::make<Task>(host, counts);
            bool const throws = random() % 4 == 0;
            if (throws) task->work = [] { throw std::runtime_error("thrown in"); };
            if (!throws) task->work = [worker = task.get()] { worker->setProgress(0.5, "half"); };
            due += throws ? 0 : 1;
            task->startThread();
            if (closes || throws || random() % 2 == 0) kept.push_back(task);
            if (random() % 3 == 0) task->wait();
            if (random() % 3 == 0) host.queue.service();
        }
        if (closes) host.queue.close();
        while (!closes && counts.completed < due && host.queue.wait(10s)) host.queue.service();
        for (auto const& task : kept) task->wait();
        host.queue.service();  // reports those that threw
        kept.clear();
        EXPECT_TRUE(counts.executed == 100 && counts.destroyed == 100);
    }
}

/// Releases its last reference and throws in `onClose`.
struct Sink : DataSink {
    explicit Sink(std::string& text) : log(text) { self.reset(this); }
    ~Sink() override { log += closed() && completed() ? "gone" : "open"; }
    void onData(ur::Reference<urThread::Buffer> data) override {
        urThread::Buffer const& bytes = *data;
        data.reset();
        log.append(bytes.data(), bytes.size());
    }
    void onClose() override {
        log += completed() && !closed() ? " closing " : " ? ";
        self.reset();
        throw std::runtime_error("cannot close");
    }

    std::string& log;
    ur::Reference<Sink> self;
};

TEST(DataSink, MayBeDroppedAndThrowWhileItCloses) {
    std::string log;
    auto* const sink = new Sink(log);
    sink->processData(ur::make<urThread::Buffer>("data"));
    EXPECT_THROW(sink->close(true), std::runtime_error);
    EXPECT_EQ(log, "data closing gone");
}

}  // namespace
