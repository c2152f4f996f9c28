// A host as small as can be, which keeps a log of what it is told.
#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <utility>

#include "foundation/urThread/RunQueue.h"
#include "support/messaging/CallInfo.h"
#include "support/messaging/Domain.h"

namespace nxSupport {

/// The door to what users do not see.
struct DomainProbe {
    static bool compatible(Domain const& domain, int mode) {
        return domain.isCompatibleMode(static_cast<Context::Mode>(mode));
    }
};

class Host : public Domain {
public:
    explicit Host(Domain* parent = nullptr) : Domain(parent) {
        contextStackEmptied.addCallback([this] { tell("emptied"); });
        callInfoSuppressionChanged.addCallback([this](int on) { tell(on ? "suppressed" : "released"); });
    }
    urThread::RunQueue& runQueue() override { return queue; }

    /// Adds to the log; throws when that is what the test wants to fail.
    void tell(std::string const& what) {
        log += what + " ";
        if (what == failing) throw std::runtime_error(what + " failed");
        auto const last = telling;  // may destroy this host
        last(what);
    }
    std::string takeLog() { return std::exchange(log, {}); }

    std::string log;
    std::string failing;
    std::function<void(std::string const&)> telling = [](std::string const&) {};
    std::function<void(CallInfo&)> provide = [](CallInfo&) {};
    urThread::RunQueue queue;

protected:
    void onBeginContext(Context const& context) override { tell("+" + name(context)); }
    void onEndContext(Context const& context) override { tell("-" + name(context)); }
    void onCallInfoCreated(CallInfo* callInfo, bool appOnly) override {
        provide(*callInfo);
        tell(appOnly ? "appInfo" : "info");
    }
    void onCallInfoDestroyed(CallInfo*) override { tell("~info"); }

private:
    static std::string name(Context const& context) {
        return std::string(Context::modeToString(context.mode()).view());
    }
};

}  // namespace nxSupport
