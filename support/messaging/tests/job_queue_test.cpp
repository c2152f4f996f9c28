// Tests jobs: their order, their limit, how they end.
#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "foundation/urOS/tests/CapturedOutput.h"
#include "support/messaging/JobQueue.h"
#include "support/messaging/tests/Host.h"

namespace {

using namespace nxSupport;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;

struct Jobs : testing::Test {
    Host host;
    std::optional<JobQueue> jobs{std::in_place, host};
    std::atomic<bool> mayEnd = false;
    std::vector<std::string> log;

    Job::Work waiting() {
        return [this](Job& job) {
            while (!mayEnd && !job.isCancelled()) std::this_thread::yield();
        };
    }
    Job::Done logging() {
        return [this](Job const& job) {
            log.push_back(std::string(job.name()) + (job.isCancelled() ? " cancelled" : "") +
                          (job.failed() ? " failed" : ""));
        };
    }
    void finish() {
        mayEnd = true;
        while (jobs && jobs->isBusy() && host.queue.wait(10s)) host.queue.service();
    }
};

TEST_F(Jobs, RunAFewAtATimeInTheirOrder) {
    std::atomic<int> running = 0, most = 0;
    auto const counting = [&](Job& job) {
        int const now = ++running;
        for (int before = most; before < now && !most.compare_exchange_weak(before, now);) {
        }
        waiting()(job);
        --running;
    };
    for (int i = 0; i < 6; ++i) jobs->add("job", counting);
    while (running < 2) std::this_thread::yield();
    finish();
    EXPECT_EQ(most, 2);
    jobs.emplace(host, 1);
    for (char const* name : {"a", "b", "c"}) jobs->add(name, counting, logging());
    finish();
    EXPECT_EQ(most, 2);
    EXPECT_THAT(log, ElementsAre("a", "b", "c"));
}

TEST_F(Jobs, ReportProgressAndFailure) {
    std::vector<std::pair<std::string, double>> progress;
    jobs->progressed.addCallback([&](Job const& job, double part, std::string_view text) {
        progress.emplace_back(std::string(job.name()) + ":" + std::string(text), part);
    });
    jobs->add(
        "read",
        [&](Job& job) {
            job.setProgress(0.5, "lines");
            throw std::runtime_error("line 7");
        },
        logging());
    urOS::CapturedOutput const output;
    finish();
    EXPECT_EQ(progress.back(), std::pair(std::string("read:lines"), 0.5));
    EXPECT_THAT(log, ElementsAre("read failed"));
    EXPECT_THAT(output.text(), HasSubstr("line 7")) << "nobody listens to the ends of jobs";
    jobs->ended.addCallback([&](Job const& job) { log.emplace_back(job.failureText()); });
    jobs->add("again", [](Job&) { throw std::runtime_error("line 8"); });
    finish();
    EXPECT_EQ(log.back(), "line 8");
    EXPECT_THAT(output.text(), testing::Not(HasSubstr("line 8")));
}

TEST_F(Jobs, AreCancelledBeforeAndWhileTheyRun) {
    for (char const* name : {"a", "b", "c"}) jobs->add(name, waiting(), logging());
    jobs->cancelAll();
    EXPECT_THAT(log, ElementsAre("c cancelled")) << "it has not begun";
    EXPECT_TRUE(jobs->isBusy());
    while (jobs->isBusy() && host.queue.wait(10s)) host.queue.service();
    EXPECT_THAT(log, testing::UnorderedElementsAre("c cancelled", "a cancelled", "b cancelled"));
}

TEST_F(Jobs, MayAddThrowAndDestroyTheQueue) {
    jobs->add("first", waiting(), [&](Job const&) {
        jobs->add("second", waiting(), logging());
        throw std::logic_error("from done");
    });
    mayEnd = true;
    EXPECT_TRUE(host.queue.wait(10s));
    EXPECT_THROW(while (host.queue.wait(10s)) host.queue.service(), std::logic_error);
    finish();
    EXPECT_THAT(log, ElementsAre("second"));
    mayEnd = false;
    jobs->ended.addCallback([&](Job const&) { jobs.reset(); });
    for (int i = 0; i < 4; ++i) jobs->add("last", waiting(), logging());
    jobs->cancelAll();
    EXPECT_FALSE(jobs.has_value());
    host.queue.service();
    EXPECT_THAT(log, ElementsAre("second", "last cancelled"));

    urOS::CapturedOutput const output;
    jobs.emplace(host);
    jobs->add(
        "fail", [&](Job& job) { waiting()(job), throw std::runtime_error("too late"); }, logging());
    jobs.reset();
    host.queue.service();
    EXPECT_THAT(output.text(), HasSubstr("too late"));
    EXPECT_EQ(log.back(), "last cancelled");

    jobs.emplace(host);
    jobs->ended.addCallback([&](Job const&) { log.emplace_back("not told any more"); });
    jobs->add("end", waiting(), [&](Job const& job) {
        jobs.reset();
        log.push_back(std::string(job.name()));
    });
    mayEnd = true;
    while (jobs && host.queue.wait(10s)) host.queue.service();
    EXPECT_EQ(log.back(), "end");
}

}  // namespace
