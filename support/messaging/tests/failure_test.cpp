// User code that throws or destroys, and hosts that make mistakes: the stacks stay whole.
#include <gtest/gtest.h>

#include <optional>

#include "foundation/urOS/tests/CapturedOutput.h"
#include "support/messaging/CallInfoControl.h"
#include "support/messaging/ContextObserver.h"
#include "support/messaging/impl/misuse.h"
#include "support/messaging/tests/Host.h"

namespace {

using namespace nxSupport;

void expectSound(Host& host) {
    host.failing.clear();
    host.takeLog();
    EXPECT_EQ(host.getCurrentContext(), nullptr);
    { Context const next(&host, Context::Momentary); }
    EXPECT_EQ(host.takeLog(), "info +Momentary -Momentary ~info emptied ");
}

TEST(ThrowingHook, LeavesNoTraceOfTheContext) {
    struct {
        char const *failing, *log;
    } const rows[] = {
        {"info", "info "},  // nothing has begun: no hook is told of an end
        {"+Const", "info +Const ~info "},
        {"-Const", "info +Const -Const ~info emptied post after "},
        {"~info", "info +Const -Const ~info emptied post after "},
        {"emptied", "info +Const -Const ~info emptied post after "},
        {"post", "info +Const -Const ~info emptied post "},
    };
    for (auto const& row : rows) {
        Host host;
        host.failing = row.failing;
        std::string caught;
        try {
            Context const context(&host, Context::Const);
            context.addPostFunction([&](Domain*) { host.tell("post"); });
            context.addPostFunction([&](Domain*) { host.tell("after"); });
        } catch (std::runtime_error const& error) {
            caught = error.what();
        }
        EXPECT_EQ(caught, std::string(row.failing) + " failed");
        EXPECT_EQ(host.takeLog(), row.log);
        expectSound(host);
    }
    Host host;
    EXPECT_THROW(Context(&host, Context::Const).addPostFunction(nullptr), std::bad_function_call);
}

TEST(ThrowingHook, IsReportedBehindTheFirstAndWhileUnwinding) {
    Host host;
    urOS::CapturedOutput const output;
    try {
        Context const context(&host, Context::Const);
        context.addPostFunction([](Domain*) { throw 1; });
        host.failing = "-Const";
        throw std::logic_error("the work itself");
    } catch (std::logic_error const&) {
        EXPECT_EQ(output.text(),
                  "nxSupport::Context: while it ended: unknown exception\n"
                  "nxSupport::Context: while it ended: -Const failed\n");
    }
    expectSound(host);
}

TEST(ThrowingHandler, LeavesSuppressionBalancedAndTheDomainToItsEnd) {
    auto* const host = new Host;
    auto const suppressAndThrow = [&](bool alsoThrow) {
        CallInfoControl control(*host);
        control.suppress();
        if (alsoThrow) throw std::logic_error("the work itself");
    };
    urOS::CapturedOutput const output;
    for (char const* failing : {"suppressed", "released"}) {
        host->failing = failing;
        EXPECT_THROW(suppressAndThrow(false), std::runtime_error);
        EXPECT_FALSE(host->callInfoSuppressed());
    }
    EXPECT_THROW(suppressAndThrow(true), std::logic_error);
    host->destroying.addCallback([](Domain*) { throw std::runtime_error("too late"); });
    host->release();
    EXPECT_EQ(output.text(), "nxSupport::CallInfoControl: released failed\nnxSupport::Domain::destroying: too late\n");
}

// Each hook and handler in turn destroys the domain of the context that it is told of.
TEST(Domain, MayBeDestroyedByWhatItCalls) {
    urOS::CapturedOutput const output;
    for (char const* fatal : {"info", "+Const", "-Const", "~info", "emptied", "post"}) {
        std::string log;
        {
            auto* const host = new Host;
            host->telling = [&, host](std::string const& what) {
                log += what + " ";
                if (what == fatal) delete host;
            };
            Context const context(host, Context::Const);
            context.addPostFunction([host](Domain*) { host->tell("post"); });
            context.addPostFunction([host](Domain*) { host->tell("after"); });
        }
        EXPECT_TRUE(log.ends_with(std::string(fatal) + " ")) << log;
        EXPECT_TRUE(ci().interfaces().empty());
    }
}

TEST(Domain, MayBeDestroyedByItsObserver) {
    struct Fatal : ContextObserver {
        void onBegin(Context const& context, Clock::time_point) override {
            if (atBegin) delete context.domain();
        }
        void onEnd(Context const& context, Clock::time_point, Clock::duration) override { delete context.domain(); }
        bool atBegin = false;
    } observer;
    urOS::CapturedOutput const output;
    for (bool const atBegin : {true, false}) {
        observer.atBegin = atBegin;
        auto* const host = new Host;
        host->setContextObserver(&observer);
        Context const context(host, Context::Const);
        context.addPostFunction([](Domain*) { ADD_FAILURE() << "after its domain"; });
    }
    EXPECT_TRUE(ci().interfaces().empty());
}

TEST(Mistakes, AreNamedInADebugBuildAndDoNoHarm) {
    urOS::CapturedOutput const output;
    std::optional<Host> destroyed(std::in_place);
    {
        Context const context(&*destroyed, Context::Momentary);
        destroyed.reset();
        EXPECT_EQ(context.domain(), nullptr);
        EXPECT_TRUE(ci().interfaces().empty());
    }
    Host first, second;
    {
        std::optional<Context> outer(std::in_place, &first, Context::Momentary);
        Context const other(&second, Context::Const);
        Context const middle(&first, Context::Const);
        Context const bare(&first, Context::Bare);
        Context const inner(&first, Context::Momentary);
        outer.reset();
        EXPECT_EQ(first.getRootContext(), &middle);
        EXPECT_EQ(first.contextStack(), (ur::vector<Context::Mode>{Context::Const, Context::Momentary}));
    }
    expectSound(first);
    expectSound(second);
    if (!impl::debugBuild) return;
    EXPECT_EQ(output.text(),
              "nxSupport::Domain: destroyed with active contexts.\n"
              "nxSupport::Domain: a context has ended before one that began later.\n");
}

}  // namespace
