// Tests calls with hooks, deferred calls, and pointers as text.
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

using namespace nxDYD;
using ur::Reference;
using Args = ur::vector<Reference<Arg>>;

std::string log;

Reference<Arg> number(int value) { return ur::make<Arg>(ur::make<nxPLST::Double>(value)); }
int valueOf(Arg const& arg) { return int(asDouble(arg.item())->value()); }

struct Sum : Function {
    Sum() : Function("sum") {}
    Reference<Arg> onCall(Args& args) override {
        int sum = 0;
        for (auto const& arg : args) sum += valueOf(*arg);
        log += "call " + std::to_string(sum) + ";";
        duringCall();
        return args.empty() ? nullptr : number(sum);
    }
    std::function<void()> duringCall = [] {};
};

struct Recorder : Hooks {
    ~Recorder() override { log += "gone;"; }
    void preInvoke(Function* function, Args& args) override {
        log += "pre " + std::string(function->name().view()) + ";";
        args.push_back(number(10));
    }
    void postInvoke(Function* function, Args const& args, Arg const* result) override {
        log += "post " + std::string(function->name().view()) + " " + std::to_string(args.size()) + " -> " +
               std::to_string(valueOf(*result)) + ";";
    }
};

struct DynamicCall : testing::Test {
    DynamicCall() { log.clear(); }

    Reference<Sum> sum = ur::make<Sum>();
    Args args{number(1), number(2)};
};

TEST_F(DynamicCall, ShowsHooksTheCallBeforeAndAfter) {
    sum->setHooks(ur::make<Recorder>());
    auto const copy = ur::make<Sum>(*sum);  // shares the hooks
    EXPECT_EQ(valueOf(*copy->call(args)), 13);
    sum->setHooks(nullptr);
    copy->clearHooks();
    EXPECT_EQ(valueOf(*sum->call(args)), 13);
    args.clear();
    EXPECT_EQ(sum->call(args), nullptr);
    EXPECT_EQ(log, "pre sum;call 13;post sum 3 -> 13;gone;call 13;call 0;");
}

TEST_F(DynamicCall, KeepsHooksAndFunctionAliveWhileItRunsAndWhenItThrows) {
    sum->setHooks(ur::make<Recorder>());
    sum->duringCall = [this] {
        sum->clearHooks();
        sum.reset();
    };
    sum->call(args);
    EXPECT_EQ(log, "pre sum;call 13;post sum 3 -> 13;gone;");
    sum = ur::make<Sum>();
    sum->setHooks(ur::make<Recorder>());
    sum->duringCall = [] { throw std::runtime_error("no"); };
    log.clear();
    EXPECT_THROW(sum->call(args), std::runtime_error);
    sum->clearHooks();
    EXPECT_EQ(log, "pre sum;call 23;gone;");
}

TEST_F(DynamicCall, RunsADeferredCallWhenItsLastOwnerIsDestroyed) {
    {
        Invocation const first(sum.get(), args);
        EXPECT_TRUE(args.empty());
        Invocation const second(first);  // NOLINT(performance-unnecessary-copy-initialization)
        Invocation const third(first);   // NOLINT(performance-unnecessary-copy-initialization): the source is empty
        EXPECT_EQ(log, "");
    }
    EXPECT_EQ(log, "call 3;");
    args = {number(4)};
    {
        Invocation left = sum->call();
        Invocation const right(sum.get(), args);
        left = right;  // both run
    }
    sum->call();
    static_cast<void>(Invocation(nullptr, args));
    EXPECT_EQ(log, "call 3;call 4;call 4;call 0;");
}

TEST_F(DynamicCall, ReportsWhatADeferredCallThrows) {
    urOS::CapturedOutput const output;
    sum->duringCall = [] { throw std::runtime_error("cannot add"); };
    { Invocation const deferred(sum.get(), args); }
    EXPECT_EQ(output.text(), "sum: cannot add\n");
}

TEST(PointerText, ComesBackAsTheSamePointerOrNull) {
    int target = 0;
    EXPECT_EQ(stringToPointer(pointerToString(&target)), &target);
    EXPECT_EQ(stringToPointer(pointerToString(nullptr)), nullptr);
    EXPECT_EQ(stringToPointer(nullptr), nullptr);
    EXPECT_EQ(stringToPointer(number(1)->item()), nullptr);
    for (char const* text : {"", "ptr:", "0x1234", "Ptr:0x1234", "ptr:zebra"})
        EXPECT_EQ(stringToPointer(ur::make<nxPLST::String>(text)), nullptr) << text;
}

}  // namespace
