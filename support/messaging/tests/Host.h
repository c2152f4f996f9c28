// A minimal host that logs its hooks.
#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <utility>

#include "foundation/urThread/RunQueue.h"
#include "support/messaging/CallInfo.h"
#include "support/messaging/CallInfoControl.h"
#include "support/messaging/ContextObserver.h"
#include "support/messaging/Domain.h"

namespace nxSupport {

/// Gives tests access to private functions of `Domain`.
struct DomainProbe {
    static bool compatible(Domain const& domain, int mode) {
        return domain.isCompatibleMode(static_cast<Context::Mode>(mode));
    }
};

/// Can also observe its own contexts; a test has to set it as the observer.
class Host : public Domain, public ContextObserver {
public:
    struct Queue : urThread::RunQueue {
        void onAdd() override { added(); }
        std::function<void()> added = [] {};
    };

    explicit Host(Domain* parent = nullptr) : Domain(parent) {
        contextStackEmptied.addCallback([this] { tell("emptied"); });
        callInfoSuppressionChanged.addCallback([this](int on) { tell(on ? "suppressed" : "released"); });
    }
    urThread::RunQueue& runQueue() override { return queue; }

    /// Adds to the log; throws if the test wants this call to fail.
    void tell(std::string const& what) {
        log += what + " ";
        if (what == failing) throw std::runtime_error(what + " failed");
        auto const last = telling;  // a copy, because the call may destroy this host
        last(what);
    }
    std::string takeLog() { return std::exchange(log, {}); }

    std::string log;
    std::string failing;
    std::function<void(std::string const&)> telling = [](std::string const&) {};
    std::function<void(CallInfo&)> provide = [](CallInfo&) {};
    Queue queue;

protected:
    void onBeginContext(Context const& context) override { tell("+" + name(context)); }
    void onEndContext(Context const& context) override { tell("-" + name(context)); }
    void onCallInfoCreated(CallInfo* callInfo, bool appOnly) override {
        provide(*callInfo);
        tell(appOnly ? "appInfo" : "info");
    }
    void onCallInfoDestroyed(CallInfo*) override { tell("~info"); }
    void onBegin(Context const& context, Clock::time_point) override { tell("<" + name(context)); }
    void onEnd(Context const& context, Clock::time_point, Clock::duration) override { tell(">" + name(context)); }

private:
    static std::string name(Context const& context) {
        return std::string(Context::modeToString(context.mode()).view());
    }
};

}  // namespace nxSupport
