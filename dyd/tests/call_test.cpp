// Calls with hooks, deferred calls, and pointers as text.
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>

#include "dyd/Invocation.h"
#include "dyd/pointerText.h"
#include "foundation/urOS/tests/CapturedOutput.h"
#include "plst/Double.h"
#include "plst/String.h"
#include "plst/casts.h"

namespace {

using nxDYD::Arg;
using nxDYD::Function;
using nxDYD::Hooks;
using nxDYD::Invocation;
using ur::Reference;
using Args = ur::vector<Reference<Arg>>;

Reference<Arg> number(double value) { return ur::make<Arg>(ur::make<nxPLST::Double>(value)); }
double valueOf(Arg const& arg) { return asDouble(arg.item())->value(); }

// Adds its arguments and tells the log what happened.
class Sum : public Function {
public:
    explicit Sum(std::string& log) : Function("sum"), log_(log) {}

    bool fails = false;
    std::function<void()> duringCall = [] {};

private:
    Reference<Arg> onCall(Args& args) override {
        double sum = 0;
        for (auto const& arg : args) sum += valueOf(*arg);
        log_ += "call " + std::to_string(int(sum)) + ";";
        duringCall();
        if (fails) throw std::runtime_error("cannot add");
        return args.empty() ? nullptr : number(sum);
    }

    std::string& log_;
};

class Recorder : public Hooks {
public:
    explicit Recorder(std::string& log) : log_(log) {}
    ~Recorder() override { log_ += "gone;"; }

    void preInvoke(Function* function, Args& args) override {
        log_ += "pre " + std::string(function->name().view()) + ";";
        args.push_back(number(10));
    }
    void postInvoke(Function* function, Args const& args, Arg const* result) override {
        log_ += "post " + std::string(function->name().view()) + " " + std::to_string(args.size()) + " -> " +
                (result ? std::to_string(int(valueOf(*result))) : "nothing") + ";";
    }

private:
    std::string& log_;
};

class DynamicCall : public ::testing::Test {
protected:
    std::string log;
    Reference<Sum> sum = ur::make<Sum>(log);
    Args args{number(1), number(2)};
};

TEST_F(DynamicCall, RunsTheFunctionAloneWithoutHooks) {
    EXPECT_EQ(valueOf(*sum->call(args)), 3);
    Args none;
    EXPECT_EQ(sum->call(none), nullptr);
    EXPECT_EQ(log, "call 3;call 0;");
}

TEST_F(DynamicCall, ShowsHooksTheCallBeforeAndAfter) {
    sum->setHooks(ur::make<Recorder>(log));
    EXPECT_EQ(valueOf(*sum->call(args)), 13);
    EXPECT_EQ(log, "pre sum;call 13;post sum 3 -> 13;");
    log.clear();
    sum->setHooks(nullptr);
    EXPECT_EQ(log, "gone;");
    EXPECT_EQ(valueOf(*sum->call(args)), 13);
    EXPECT_EQ(log, "gone;call 13;");
}

TEST_F(DynamicCall, KeepsHooksAndFunctionAliveWhileItRuns) {
    sum->setHooks(ur::make<Recorder>(log));
    sum->duringCall = [&] {
        sum->clearHooks();
        sum.reset();
    };
    sum->call(args);
    EXPECT_EQ(log, "pre sum;call 13;post sum 3 -> 13;gone;");
}

TEST_F(DynamicCall, SkipsThePostHookOfACallThatThrows) {
    sum->setHooks(ur::make<Recorder>(log));
    sum->fails = true;
    EXPECT_THROW(sum->call(args), std::runtime_error);
    EXPECT_EQ(log, "pre sum;call 13;");
    sum->clearHooks();
    EXPECT_EQ(log, "pre sum;call 13;gone;");
}

TEST_F(DynamicCall, CopiesOfAFunctionShareItsHooksAndStartUnshared) {
    sum->setHooks(ur::make<Recorder>(log));
    auto const copy = ur::make<Sum>(*sum);
    EXPECT_EQ(copy->referenceCount(), 1);
    sum->clearHooks();
    copy->call(args);
    EXPECT_EQ(log, "pre sum;call 13;post sum 3 -> 13;");
}

TEST_F(DynamicCall, RunsADeferredCallOnceWhenItsLastTakerGoes) {
    {
        Invocation const first(sum.get(), args);
        EXPECT_TRUE(args.empty());
        Invocation const second(first);  // NOLINT(performance-unnecessary-copy-initialization)
        Invocation const third(first);   // NOLINT(performance-unnecessary-copy-initialization): takes nothing
        EXPECT_EQ(log, "");
    }
    EXPECT_EQ(log, "call 3;");
    static_cast<void>(sum->call());
    EXPECT_EQ(log, "call 3;call 0;");
    static_cast<void>(Invocation(nullptr, args));
}

TEST_F(DynamicCall, RunsBothSidesOfAnAssignment) {
    {
        Invocation left = ur::make<Sum>(log)->call();
        Invocation const right(sum.get(), args);
        left = right;
        EXPECT_EQ(log, "");
    }
    EXPECT_EQ(log, "call 3;call 3;");
}

TEST_F(DynamicCall, ReportsWhatADeferredCallThrows) {
    urOS::CapturedOutput const output;
    sum->fails = true;
    { Invocation const deferred(sum.get(), args); }
    EXPECT_EQ(output.text(), "sum: cannot add\n");
}

TEST(PointerText, ComesBackAsTheSamePointerOrNull) {
    int target = 0;
    EXPECT_EQ(nxDYD::stringToPointer(nxDYD::pointerToString(&target)), &target);
    EXPECT_EQ(nxDYD::stringToPointer(nxDYD::pointerToString(nullptr)), nullptr);
    EXPECT_EQ(nxDYD::stringToPointer(nullptr), nullptr);
    EXPECT_EQ(nxDYD::stringToPointer(ur::make<nxPLST::Double>(1)), nullptr);
    for (char const* text : {"", "ptr:", "ptr", "0x1234", "Ptr:0x1234", "ptr:zebra"})
        EXPECT_EQ(nxDYD::stringToPointer(ur::make<nxPLST::String>(text)), nullptr) << text;
}

}  // namespace
