// Modes, nesting, call information, post functions and release.
#include <gtest/gtest.h>

#include <memory>

#include "support/messaging/CallInfoControl.h"
#include "support/messaging/ContextObserver.h"
#include "support/messaging/tests/Host.h"

namespace {

using namespace nxSupport;

TEST(Modes, HaveNamesTransactionTypesAndFlags) {
    char const* const names[] = {"InteractionStart", "InteractionPerform",
                                 "InteractionEnd",   "Momentary",
                                 "Transient",        "Const",
                                 "ConstWithRedraw",  "NoTxn",
                                 "Undecided",        "AppOnly",
                                 "Bootstrap",        "Bare"};
    int const transactions[] = {0, 0, 0, 0, 1, 3, 3, 2, 4, 2, 2, 2};
    Host host;
    for (unsigned value = 0; value < 12; ++value) {
        auto mode = static_cast<Context::Mode>(99);
        EXPECT_TRUE(Context::modeFromString(mode, names[value]));
        EXPECT_EQ(mode, value);
        EXPECT_EQ(Context::modeToString(mode), names[value]);
        Context const context(&host, mode);
        EXPECT_EQ(context.transactionType(), transactions[value]);
        EXPECT_EQ(context.interactiveMode(), value <= 2);
        EXPECT_EQ(context.constMode(), value == 5 || value == 6);
    }
    auto mode = static_cast<Context::Mode>(12);
    EXPECT_EQ(mapTransactionType(mode), TxnUndecided);
    EXPECT_EQ(Context::modeToString(mode), "");
    EXPECT_FALSE(Context::modeFromString(mode, "const"));
    EXPECT_EQ(mode, 12);
}

TEST(Modes, AreCompatibleAsTheStackAllows) {
    using C = Context;
    struct {
        std::vector<C::Mode> stack;
        char const* compatible;  // one mark for each mode
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
        std::vector<std::unique_ptr<Context>> contexts;
        for (C::Mode mode : row.stack) contexts.push_back(std::make_unique<Context>(&host, mode));
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
        EXPECT_TRUE(host.isConst());
        { Context const innermost(&host, Context::Momentary); }
    }
    EXPECT_EQ(host.takeLog(), "info +Undecided +Const +Momentary -Momentary -Const -Undecided ~info emptied A B C ");
    { Context const context(&host, Context::AppOnly); }
    EXPECT_EQ(host.takeLog(), "appInfo +AppOnly -AppOnly ~info emptied ");
    EXPECT_EQ(Host(&host).getPrimary(), &host);
    EXPECT_EQ(host.getPrimary(), &host);
}

TEST(Contexts, TellNothingWhenBareAndLittleWhenBootstrap) {
    Host host;
    {
        Context const bare(&host, Context::Bare);
        EXPECT_FALSE(host.isConst());
        Context const bootstrap(&host, Context::Bootstrap);
        Context const inner(&host, Context::Const);
    }
    EXPECT_EQ(host.takeLog(), "+Const -Const emptied ");
}

TEST(CallInformation, IsThatOfTheContextBegunLast) {
    Host first, second;
    int a = 1, hidden = 2, b = 3;
    first.provide = [&](CallInfo& info) {
        info.add(&a);
        info.add(&hidden);  // behind the first of its class
    };
    second.provide = [&](CallInfo& info) { info.add(&b); };
    EXPECT_EQ(ci().get<int>(), nullptr);
    Context const outer(&first, Context::Momentary);
    EXPECT_EQ(ci().get<int>(), &a);
    EXPECT_EQ(ci().get<double>(), nullptr);
    {
        Context const bare(&second, Context::Bare);
        EXPECT_EQ(ci().get<int>(), nullptr);
        Context const inner(&second, Context::Momentary);
        EXPECT_EQ(ci().get<int>(), &b);
    }
    EXPECT_EQ(&CallInfo::currentCallInfo(), &ci());
    EXPECT_EQ(ci().get<int>(), &a);
}

TEST(CallInformation, IsMadeAnewWhileSuppressed) {
    Host host;
    Context const outer(&host, Context::Undecided);
    CallInfo const* const own = &ci();
    host.takeLog();
    {
        CallInfoControl control(host), nested(host);
        control.suppress();
        nested.suppress();
        { Context const inner(&host, Context::Const); }
        nested.release();
        EXPECT_TRUE(nested.isSuppressed());
    }
    EXPECT_EQ(host.takeLog(), "suppressed info +Const -Const ~info released ");
    EXPECT_EQ(&ci(), own);
}

TEST(Domain, IsReleasedWhenItIsNotLocked) {
    auto* const host = new Host;
    bool gone = false;
    host->destroying.addCallback([&](Domain* domain) { gone = domain == host; });
    host->lock();
    host->release();
    EXPECT_FALSE(gone);
    host->unlock();
    EXPECT_TRUE(gone);
}

TEST(Domain, CountsAsynchronousOperationsOfTheProcess) {
    Host const host;
    Domain::declareAsyncOperationBegin();
    Domain::declareAsyncOperationBegin();
    Domain::declareAsyncOperationEnd();
    EXPECT_TRUE(host.runningAsyncOperation());
    Domain::declareAsyncOperationEnd();
    EXPECT_FALSE(host.runningAsyncOperation());
}

TEST(ContextObserver, SeesWhatBeginsWhileItIsSet) {
    struct Recorder : ContextObserver {
        void onBegin(Context const& context, Clock::time_point when) override {
            log += "<" + std::to_string(context.mode());
            last = when;
        }
        void onEnd(Context const& context, Clock::time_point when, Clock::duration lasted) override {
            log += std::to_string(context.mode()) + ">";
            EXPECT_LE(when - lasted, last);
        }
        std::string log;
        Clock::time_point last;
    } recorder;
    Host host;
    Context const before(&host, Context::Const);
    host.setContextObserver(&recorder);
    {
        Context const during(&host, Context::Momentary);
        { Context const inner(&host, Context::Bare); }
        host.failing = "+Const";
        EXPECT_THROW(Context(&host, Context::Const), std::runtime_error);
    }
    host.setContextObserver(nullptr);
    { Context const after(&host, Context::NoTxn); }
    EXPECT_EQ(recorder.log, "<3<1111><55>3>");
}

}  // namespace
