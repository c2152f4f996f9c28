// Contexts, call information, broadcasts and dynamic calls.
#include <any>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <typeindex>
#include <vector>

#include "bench/rows.h"
#include "dyd/Function.h"
#include "foundation/urThread/RunQueue.h"
#include "plst/Double.h"
#include "plst/String.h"
#include "plst/casts.h"
#include "support/messaging/Broadcaster.h"
#include "support/messaging/CallInfo.h"
#include "support/messaging/ContextObserver.h"
#include "support/messaging/Domain.h"

namespace bench {
namespace {

using nxSupport::Broadcaster;
using nxSupport::Context;

constexpr int repetitions = 100000;

class Host final : public nxSupport::Domain {
public:
    Host() : Domain(nullptr) {}
    urThread::RunQueue& runQueue() override { return queue_; }

    Broadcaster broadcaster;
    int begun = 0;

protected:
    void onBeginContext(Context const&) override { ++begun; }
    void onEndContext(Context const&) override { --begun; }
    void onCallInfoCreated(nxSupport::CallInfo* callInfo, bool) override {
        callInfo->add(&queue_);
        callInfo->add(&broadcaster);
    }
    void onCallInfoDestroyed(nxSupport::CallInfo*) override {}

private:
    urThread::RunQueue queue_;
};

/// A program's own replacement for contexts, also in a library: a scope that pushes its mode, calls the program's
/// owner, and lets it list its services if the scope is the first.
class PlainScope {
public:
    struct Owner {
        virtual ~Owner() = default;
        virtual void onBegin(int mode) = 0;
        virtual void onEnd(int mode) = 0;
        virtual void onFirst() = 0;

        std::vector<int> modes;
        std::vector<std::pair<std::type_index, void*>> services;
    };

    [[gnu::noinline]] PlainScope(Owner& owner, int mode) : owner_(owner) {
        if (owner.modes.empty()) owner.onFirst();
        owner.modes.push_back(mode);
        owner.onBegin(mode);
    }
    PlainScope(PlainScope const&) = delete;
    PlainScope& operator=(PlainScope const&) = delete;
    [[gnu::noinline]] ~PlainScope() {
        owner_.onEnd(owner_.modes.back());
        owner_.modes.pop_back();
        if (owner_.modes.empty()) owner_.services.clear();
    }

private:
    Owner& owner_;
};

struct PlainOwner final : PlainScope::Owner {
    void onBegin(int) override { ++begun; }
    void onEnd(int) override { --begun; }
    void onFirst() override {
        services.emplace_back(typeid(urThread::RunQueue), &queue);
        services.emplace_back(typeid(Broadcaster), &broadcaster);
    }
    [[gnu::noinline]] void* service(std::type_index type) const {
        for (auto const& [identity, service] : services)
            if (identity == type) return service;
        return nullptr;
    }

    Broadcaster broadcaster;
    urThread::RunQueue queue;
    int begun = 0;
};

Side contexts(char const* name, std::shared_ptr<Host> const& host, Context::Mode mode) {
    return repeated(name, repetitions, [=](int) {
        Context const context(host.get(), mode);
        keep(&context);
    });
}

/// The only target of code that is kept plain on purpose.
Side hundredNanoseconds() {
    return {"100 ns each", [] { return repetitions * 100e-9; }};
}

Sides outermost() { return {contexts("Context", std::make_shared<Host>(), Context::Momentary), hundredNanoseconds()}; }

Sides nested() {
    auto const host = std::make_shared<Host>();
    Side const inner = contexts("Context", host, Context::Const);
    return {{inner.name,
             [=] {
                 Context const outer(host.get(), Context::Momentary);
                 return inner.measure();
             }},
            hundredNanoseconds()};
}

/// Compares no observer with an observer that does nothing: the checks without an observer must cost next to nothing.
Sides unobserved() {
    struct Idle : nxSupport::ContextObserver {
        void onBegin(Context const&, Clock::time_point) override {}
        void onEnd(Context const&, Clock::time_point, Clock::duration) override {}
    };
    auto const observer = std::make_shared<Idle>();
    std::shared_ptr<Host> const observed(new Host, [observer](Host* host) { delete host; });
    observed->setContextObserver(observer.get());
    return {contexts("unset", std::make_shared<Host>(), Context::Momentary),
            contexts("set", observed, Context::Momentary)};
}

template <class Find>
double timeToFind(Find find) {
    return seconds([=] {
        for (int i = 0; i < repetitions; ++i) keep(find());
    });
}

Sides lookUps() {
    auto const host = std::make_shared<Host>();
    auto const owner = std::make_shared<PlainOwner>();
    return {{"ci()",
             [=] {
                 Context const context(host.get(), Context::Momentary);
                 return timeToFind([] { return nxSupport::ci().get<Broadcaster>(); });
             }},
            {"vector of services", [=] {
                 PlainScope const scope(*owner, 3);
                 return timeToFind([=] { return owner->service(typeid(Broadcaster)); });
             }}};
}

struct Tick : Broadcaster::Message {
    int count = 0;
};
void count(Tick& tick) { ++tick.count; }

/// A program's own message bus. It works as long as no subscriber changes it.
class PlainBus {
public:
    void connect(int priority, std::function<void(Tick&)> function) {
        subscribers_[typeid(Tick)].emplace(priority, std::move(function));
    }
    void broadcast(Tick& tick) {
        for (auto const& [priority, function] : subscribers_[typeid(Tick)]) function(tick);
    }

private:
    std::map<std::type_index, std::multimap<int, std::function<void(Tick&)>>> subscribers_;
};

template <class Bus, class Connect>
Side broadcasting(char const* name, int subscribers, Connect connect) {
    auto const bus = std::make_shared<Bus>();
    for (int i = 0; i < subscribers; ++i) connect(*bus, i % 4);
    return repeated(name, repetitions / (subscribers + 3), [=](int) {
        Tick tick;
        bus->broadcast(tick);
        keep(tick.count);
    });
}

Sides buses(int subscribers) {
    return {broadcasting<Broadcaster>("Broadcaster", subscribers,
                                      [](Broadcaster& bus, int priority) {
                                          bus.connect({nxSupport::LibraryUnit, nxSupport::ModuleID(priority)}, count);
                                      }),
            broadcasting<PlainBus>("map of std::function", subscribers,
                                   [](PlainBus& bus, int priority) { bus.connect(priority, count); })};
}

/// Takes a text and a number, as named operations usually do.
class Scale final : public nxDYD::Function {
public:
    Scale() : Function("scale") {}

private:
    ur::Reference<nxDYD::Arg> onCall(ur::vector<ur::Reference<nxDYD::Arg>>& args) override {
        auto const& name = nxPLST::asString(args[0]->item())->value();
        double const factor = nxPLST::asDouble(args[1]->item())->value();
        return ur::make<nxDYD::Arg>(ur::make<nxPLST::Double>(static_cast<double>(name.size()) * factor));
    }
};

struct CountingHooks final : nxDYD::Hooks {
    void preInvoke(nxDYD::Function*, ur::vector<ur::Reference<nxDYD::Arg>>&) override { ++calls; }
    void postInvoke(nxDYD::Function*, ur::vector<ur::Reference<nxDYD::Arg>> const&, nxDYD::Arg const*) override {
        keep(calls);
    }
    int calls = 0;
};

/// The caller already holds the values, both as items and as plain ones.
Sides dynamicCalls() {
    auto const scale = ur::make<Scale>();
    scale->setHooks(ur::make<CountingHooks>());
    std::string const text = "strength";
    double const number = 0.5;
    auto const name = ur::make<nxPLST::String>(text.c_str());
    auto const factor = ur::make<nxPLST::Double>(number);
    std::function<std::any(std::vector<std::any>&)> const plain = [](std::vector<std::any>& args) {
        auto const& held = std::any_cast<std::string const&>(args[0]);
        return std::any(static_cast<double>(held.size()) * std::any_cast<double>(args[1]));
    };
    return {repeated("nxDYD", repetitions,
                     [=](int) {
                         ur::vector<ur::Reference<nxDYD::Arg>> args;
                         args.push_back(ur::make<nxDYD::Arg>(name));
                         args.push_back(ur::make<nxDYD::Arg>(factor));
                         keep(nxPLST::asDouble(scale->call(args)->item())->value());
                     }),
            repeated("std::function over std::any", repetitions, [=](int) {
                std::vector<std::any> args;
                args.emplace_back(text);
                args.emplace_back(number);
                keep(std::any_cast<double>(plain(args)));
            })};
}

}  // namespace

void addMessagingRows(Suite& suite) {
    suite.compare("context/outermost", 1.0, outermost);
    suite.compare("context/nested", 1.0, nested);
    suite.compare("context/observer-unset", 1.0, unobserved);
    suite.compare("call-information", 2.0, lookUps);
    for (int const subscribers : {1, 8, 100}) {
        double const target = subscribers == 1 ? 1.5 : 1.0;
        suite.compare("broadcast/" + std::to_string(subscribers), target, [=] { return buses(subscribers); });
    }
    suite.compare("dynamic-call", 1.5, dynamicCalls);
}

}  // namespace bench
