// A host on one page: a domain, a broadcaster, a module that subscribes, contexts, and a background task.
#include <chrono>
#include <cstdio>

#include "plst/make.h"
#include "support/messaging/AppInitMsg.h"
#include "support/messaging/JobQueue.h"
#include "support/messaging/ServiceDomain.h"
#include "support/messaging/subscribeFirstTime.h"

using nxSupport::ci;
using nxSupport::Context;

// [host]
class Application : public nxSupport::ServiceDomain {
public:
    explicit Application(urThread::RunQueue& queue) : ServiceDomain(queue) {}

protected:
    void onBeginContext(Context const& context) override { print("begin", context); }
    void onEndContext(Context const& context) override { print("end", context); }

private:
    static void print(char const* what, Context const& context) {
        std::printf("%s %s\n", what, Context::modeToString(context.mode()).c_str());
    }
};
// [host]

// [module]
void onAppInit(nxSupport::AppInitMsg& message) {
    std::printf("the module opens %d windows\n", nxPLST::get<int>(message.parameters(), "windows", 1));
}

void initializeModule() {
    static bool firstTime = true;
    nxSupport::subscribeFirstTime(firstTime, onAppInit);
}
// [module]

// [task]
class Sum : public nxSupport::AsyncTask {
public:
    using AsyncTask::AsyncTask;

private:
    void execute() override {
        for (int i = 1; i <= 1000; ++i) sum_ += i;
    }
    void onComplete(bool) override { std::printf("the sum is %d\n", sum_); }

    int sum_ = 0;  // used by the worker until the completion, then by the main thread
};
// [task]

void addByJob(nxSupport::JobQueue& jobs) {
    // [jobs]
    auto const sum = std::make_shared<int>(0);  // used by the worker, then by the main thread
    jobs.add(
        "Adding", [sum](nxSupport::Job&) { *sum = 2 + 3; },
        [sum](nxSupport::Job const& job) {
            if (!job.failed()) std::printf("the job made %d\n", *sum);
        });
    // [jobs]
}

int main() {
    // [run]
    urThread::RunQueue queue;
    nxSupport::Broadcaster broadcaster;
    Application application(queue);
    application.offer(&broadcaster);
    {
        Context const start(&application, Context::NoTxn);
        initializeModule();
        nxSupport::AppInitMsg message(nxPLST::dictionary({{"windows", 2}}));
        ci().get<nxSupport::Broadcaster>()->broadcast(message);
    }
    {
        Context const edit(&application, Context::Momentary);
        edit.addPostFunction([](nxSupport::Domain*) { std::printf("redraw\n"); });
        Context const look(&application, Context::Const);
        std::printf("the document is %s\n", application.isConst() ? "locked" : "open");
    }
    ur::make<Sum>(application)->startThread();
    queue.wait(std::chrono::seconds(10));  // a host with a main loop services the queue there
    queue.service();
    // [run]
    nxSupport::JobQueue jobs(application);
    addByJob(jobs);
    while (jobs.isBusy() && queue.wait(std::chrono::seconds(10))) queue.service();
    return 0;
}
