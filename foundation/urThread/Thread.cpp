// Starts threads, waits for them and keeps their exceptions.
#include "foundation/urThread/Thread.h"

#include <cerrno>
#include <exception>
#include <mutex>
#include <system_error>

namespace urThread {

namespace {

urUtil::Error outcomeOf(urRTB::Signal<>& signal) {
    try {
        signal.emit();
        return {};
    } catch (std::exception const& exception) {
        return {0, exception.what()};
    } catch (...) {
        return {0, "an exception without a text"};
    }
}

}  // namespace

struct Thread::Run {
    std::mutex beginning;  // held until `start` no longer needs the object, which a callback may destroy
    urUtil::Error outcome;
};

Thread::~Thread() {
    if (isCurrent()) {
        thread_.detach();
    } else if (thread_.joinable()) {
        thread_.join();
    }
}

urUtil::Error Thread::start() {
    if (thread_.joinable()) return {EALREADY, "the thread was started before and not waited for"};
    auto const run = std::make_shared<Run>();
    std::lock_guard const beginning(run->beginning);
    try {
        thread_ = std::thread([this, run] {
            { std::lock_guard const begun(run->beginning); }
            run->outcome = outcomeOf(signal_);
        });
    } catch (std::system_error const& error) {
        return urUtil::Error::fromSystem(error.code().value(), "cannot start a thread");
    }
    run_ = run;
    return {};
}

urUtil::Error Thread::wait() {
    if (isCurrent()) return {EDEADLK, "a thread cannot wait for itself"};
    if (thread_.joinable()) thread_.join();
    return run_ ? run_->outcome : urUtil::Error();
}

}  // namespace urThread
