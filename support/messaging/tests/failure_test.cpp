// User code that throws or destroys, and mistakes of the host: the stacks stay intact.
#include <gmock/gmock.h>

#include <optional>

#include "foundation/urOS/tests/CapturedOutput.h"
#include "support/messaging/impl/misuse.h"
#include "support/messaging/tests/Host.h"

namespace {

using namespace nxSupport;

/// Runs a whole context. The log is then "<Const info +Const -Const ~info emptied >Const post after".
void runContext(Host* host) {
    host->setContextObserver(host);
    Context const context(host, Context::Const);
    for (char const* name : {"post", "after"}) context.addPostFunction([=](Domain*) { host->tell(name); });
}

void expectSound(Host& host) {
    host.failing.clear();
    host.takeLog();
    EXPECT_EQ(host.getCurrentContext(), nullptr);
    { Context const next(&host, Context::Momentary); }
    EXPECT_THAT(host.takeLog(), testing::HasSubstr("info +Momentary -Momentary ~info emptied"));
}

TEST(ThrowingHook, LeavesNoTraceOfTheContext) {
    std::string const begun = "<Const info +Const ", ended = begun + "-Const ~info emptied >Const post ";
    std::pair<std::string, std::string> const rows[] = {
        // The context has not begun, so onEndContext is not called.
        {"<Const", "<Const >Const "},
        {"info", "<Const info >Const "},
        {"+Const", begun + "~info >Const "},
        // The remaining hooks are still called.
        {"-Const", ended + "after "},
        {"~info", ended + "after "},
        {"emptied", ended + "after "},
        {">Const", ended + "after "},
        {"post", ended},
    };
    for (auto const& [failing, log] : rows) {
        Host host;
        host.failing = failing;
        EXPECT_THAT([&] { runContext(&host); }, testing::ThrowsMessage<std::runtime_error>(failing + " failed"));
        EXPECT_EQ(host.takeLog(), log);
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

TEST(Domain, MayBeDestroyedByWhatItCalls) {
    urOS::CapturedOutput const output;
    for (std::string const fatal : {"<Const", "info", "+Const", "-Const", "~info", "emptied", ">Const", "post"}) {
        std::string last;
        auto* const host = new Host;
        host->telling = [&](std::string const& what) {
            last = what;
            if (what == fatal) delete host;
        };
        runContext(host);
        EXPECT_EQ(last, fatal);
        EXPECT_TRUE(ci().interfaces().empty());
    }
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
