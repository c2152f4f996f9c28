// Modes, nesting, call information, post functions and release.
#include <gtest/gtest.h>

#include <list>

#include "support/messaging/tests/Host.h"

namespace {

using namespace nxSupport;

TEST(Modes, HaveNamesTransactionTypesAndFlags) {
    Host host;
    std::string all;
    for (unsigned value = 0; value < 12; ++value) {
        Context const context(&host, static_cast<Context::Mode>(value));
        auto mode = static_cast<Context::Mode>(99);
        EXPECT_TRUE(Context::modeFromString(mode, Context::modeToString(context.mode())) && mode == value);
        EXPECT_EQ(host.isConst(), context.constMode());
        all += Context::modeToString(mode).c_str() + std::to_string(context.transactionType());
        all += std::string(context.interactiveMode() ? "i" : "") + (context.constMode() ? "c" : "") + " ";
    }
    EXPECT_EQ(all,
              "InteractionStart0i InteractionPerform0i InteractionEnd0i Momentary0 Transient1 Const3c "
              "ConstWithRedraw3c NoTxn2 Undecided4 AppOnly2 Bootstrap2 Bare2 ");
    auto mode = static_cast<Context::Mode>(12);
    EXPECT_TRUE(mapTransactionType(mode) == TxnUndecided && Context::modeToString(mode).empty());
    EXPECT_FALSE(Context::modeFromString(mode, "const"));
}

TEST(Modes, AreCompatibleAsTheStackAllows) {
    using C = Context;
    struct {
        std::vector<C::Mode> stack;
        char const* compatible;  // one character for each mode
    } const rows[] = {
        {{}, "yyyyyyyyyyyy."},
        {{C::Undecided}, "yyyyyyy.y...."},
        {{C::InteractionStart}, ".y...yy......"},
        {{C::InteractionEnd}, "...y.yy......"},
        {{C::Momentary}, "...y.yy......"},
        {{C::Const}, ".....yy.y..y."},
        {{C::AppOnly}, ".....yy..y..."},
        {{C::NoTxn}, ".....yy..y..."},
        {{C::Undecided, C::InteractionEnd}, "...y.yy......"},
        {{C::Const, C::Momentary}, ".....yy......"},
        {{C::Momentary, C::Momentary}, ".....yy......"},
        {{C::Undecided, C::Undecided, C::Momentary}, ".....yy......"},
    };
    for (auto const& row : rows) {
        Host host;
        std::list<Context> contexts;
        for (C::Mode const mode : row.stack) contexts.emplace_back(&host, mode);
        std::string found;
        for (int mode = 0; mode <= 12; ++mode) found += DomainProbe::compatible(host, mode) ? 'y' : '.';
        EXPECT_EQ(found, row.compatible);
        while (!contexts.empty()) contexts.pop_back();
    }
}

TEST(Contexts, NestWithOneCallInformationAndRunTheirPostFunctionsAtTheEnd) {
    Host host;
    {
        Context const outer(&host, Context::Undecided);
        outer.addPostFunction([&](Domain* domain) {
            EXPECT_EQ(domain->getCurrentContext(), nullptr);
            host.tell("A");
            outer.addPostFunction([&](Domain*) { host.tell("C"); });
        });
        outer.addPostFunction([&](Domain*) { host.tell("B"); });
        Context const inner(&host, Context::Const);
        Context const innermost(&host, Context::Momentary);
    }
    EXPECT_EQ(host.takeLog(), "info +Undecided +Const +Momentary -Momentary -Const -Undecided ~info emptied A B C ");
    { Context const context(&host, Context::AppOnly); }
    EXPECT_EQ(host.takeLog(), "appInfo +AppOnly -AppOnly ~info emptied ");
    {
        Context const bare(&host, Context::Bare);
        Context const bootstrap(&host, Context::Bootstrap);
        Context const inner(&host, Context::Const);
    }
    EXPECT_EQ(host.takeLog(), "+Const -Const emptied ");
    EXPECT_TRUE(Host(&host).getPrimary() == &host && host.getPrimary() == &host);
}

TEST(CallInformation, IsMadeAnewWhileSuppressed) {
    Host host;
    int first = 1, hidden = 2;
    host.provide = [&](CallInfo& info) { info.add(&first), info.add(&hidden); };
    Context const outer(&host, Context::Undecided);
    CallInfo const* const own = &ci();
    EXPECT_TRUE(own->get<int>() == &first && !own->get<double>());
    host.takeLog();
    {
        CallInfoControl control(host);
        control.suppress();
        {
            CallInfoControl nested(host);
            CallInfoControl const idle(host);
            nested.suppress();
            { Context const inner(&host, Context::Const); }
            nested.release();
        }
        EXPECT_TRUE(control.isSuppressed());
    }
    EXPECT_EQ(host.takeLog(), "suppressed info +Const -Const ~info released ");
    EXPECT_EQ(&ci(), own);
}

TEST(CallInformation, MayBeSuppressedAndReleasedByTheHooksThatHearOfIt) {
    Host host;
    int service = 1;
    host.provide = [&](CallInfo& info) { info.add(&service); };
    CallInfoControl control(host);
    auto const at = [&](char const* place, auto action) {
        host.telling = [=](std::string const& what) {
            if (what == place) action();
        };
    };
    at("~info", [&] { control.suppress(); });
    { Context const context(&host, Context::Const); }
    at("~info", [&] { control.release(); });
    { Context const context(&host, Context::Const); }
    EXPECT_EQ(host.takeLog(), "info +Const -Const ~info suppressed emptied info +Const -Const ~info released emptied ");
    at("info", [&] {
        control.suppress();
        throw std::logic_error("no services");
    });
    EXPECT_THROW(Context(&host, Context::Const), std::logic_error);
    control.release();
    at("~info", [&] { control.release(); });
    Context const outer(&host, Context::Const);
    control.suppress();
    { Context const inner(&host, Context::Momentary); }
    EXPECT_EQ(ci().get<int>(), &service);
}

TEST(Domain, IsReleasedWhenItIsNotLocked) {
    auto* const host = new Host;
    bool gone = false;
    host->destroying.addCallback([&](Domain* domain) { gone = domain == host; });
    for (bool const released : {false, true}) {
        host->lock();
        if (released) host->release();
        EXPECT_FALSE(gone);
        host->unlock();
    }
    EXPECT_TRUE(gone);
}

TEST(Domain, TellsWhatIsAliveActiveAndUnderWay) {
    auto host = std::make_unique<Host>();
    Domain const* const address = host.get();
    host->destroying.addCallback([](Domain* domain) { EXPECT_FALSE(Domain::isAlive(domain)); });
    EXPECT_TRUE(Domain::isAlive(address));
    {
        Context const outer(host.get(), Context::Const);
        auto const inner = std::make_unique<Context const>(host.get(), Context::Bare);
        EXPECT_TRUE(Context::isActive(&outer) && Context::isActive(inner.get()) && !Context::isActive(nullptr));
    }
    EXPECT_FALSE(host->runningAsyncOperation());
    for (int i = 0; i < 2; ++i) Domain::declareAsyncOperationBegin();
    for (bool const running : {true, false}) {
        Domain::declareAsyncOperationEnd();
        EXPECT_EQ(host->runningAsyncOperation(), running);
    }
    host.reset();
    EXPECT_FALSE(Domain::isAlive(address));
}

TEST(ContextObserver, SeesWhatBeginsWhileItIsSet) {
    Host seen, observer;
    Context const before(&seen, Context::Const);
    seen.setContextObserver(&observer);
    {
        Context const during(&seen, Context::Momentary);
        { Context const inner(&seen, Context::Bare); }
    }
    seen.setContextObserver(nullptr);
    { Context const after(&seen, Context::NoTxn); }
    EXPECT_EQ(observer.takeLog(), "<Momentary <Bare >Bare >Momentary ");
}

}  // namespace
