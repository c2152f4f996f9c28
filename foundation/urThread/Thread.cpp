// Starting a thread, waiting for it and keeping what its callbacks throw.
#include "foundation/urThread/Thread.h"

#include <atomic>
#include <cerrno>
#include <exception>
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
    std::atomic<bool> mayBegin = false;  // set when `start` is done with the object, which a callback may destroy
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
    try {
        thread_ = std::thread([this, run] {
            run->mayBegin.wait(false);
            run->outcome = outcomeOf(signal_);
        });
    } catch (std::system_error const& error) {
        return urUtil::Error::fromSystem(error.code().value(), "cannot start a thread");
    }
    run_ = run;
    run->mayBegin = true;
    run->mayBegin.notify_one();
    return {};
}

urUtil::Error Thread::wait() {
    if (isCurrent()) return {EDEADLK, "a thread cannot wait for itself"};
    if (thread_.joinable()) thread_.join();
    return run_ ? run_->outcome : urUtil::Error();
}

}  // namespace urThread
