// Debug codes: tables, switches, and printing.
#include "foundation/nxTXN/debugChannel.h"
#include "krcache/debugChannel.h"
#include "support/services/DebugPrint.h"
#include "support/services/tests/Output.h"

namespace nxSupport {
namespace {

constexpr DebugCode debugCode(int value) { return static_cast<DebugCode>(value); }

using DebugTest = OutputTest;

TEST_F(DebugTest, CodesHaveNamesAndDescriptions) {
    std::tuple<DebugCode, char const*, char const*> const rows[] = {
        {Debug_Fab, "Debug_Fab", "Fabrication"},
        {Debug_HSTUpdate, "Debug_HSTUpdate", "HistoryUpdate"},
        {Debug_QTouch, "Debug_QTouch", "QTouch"},
        {NUM_CODES, "NUM_CODES", ""},
    };
    for (auto const& [code, name, description] : rows) {
        EXPECT_EQ(Debug::getCodeName(code), name);
        EXPECT_EQ(Debug::describe(code), description);
        EXPECT_EQ(debug.findCodeByName(name), code);
    }
    EXPECT_EQ(debug.findCodeByName("debug_fab"), NUM_CODES);
    EXPECT_EQ(Debug::getActionDescription(DebugAction_CopyToITunes), "Copy To iTunes");
    EXPECT_EQ(Debug::getActionDescription(static_cast<DebugAction>(1)), "Copy From iTunes");
    EXPECT_EQ(Debug::getActionDescription(static_cast<DebugAction>(2)), "~ unknown ~");
}

TEST_F(DebugTest, ValuesThatAreNoCodeAreOffAndStaySo) {
    int changes = 0;
    urRTB::ScopedConnection const counting = debug.codeChanged.addCallback([&](DebugCode) { ++changes; });
    urOS::DebugChannel on;
    on.enable();
    for (DebugCode const none : {debugCode(-1), NUM_CODES, debugCode(50), debugCode(1 << 30)}) {
        debug.toggle(none);
        debug.provideChannel(none, on);
        EXPECT_FALSE(debug.isEnabled(none));
        debug.print_(none, "%s", "nothing");
        EXPECT_TRUE(none == NUM_CODES || (Debug::getCodeName(none).empty() && Debug::describe(none) == "~ unknown ~"));
    }
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(printed(), "");
}

TEST_F(DebugTest, SwitchingTellsAndTheResourcesCodeSwitchesTheCacheToo) {
    std::string calls;
    urRTB::ScopedConnection const telling = debug.codeChanged.addCallback([&](DebugCode changed) {
        calls += std::to_string(changed) + (debug.isEnabled(changed) ? "+ " : "- ");
        // Handlers may switch codes, and are then called again.
        if (changed == Debug_Undo && debug.isEnabled(Debug_Undo)) debug.toggle(Debug_Undo);
    });
    debug.toggle(Debug_Resources);
    EXPECT_TRUE(debug.isEnabled(Debug_Resources) && urKRCache::debugChannel().isEnabled());
    debug.toggle(Debug_Resources);
    EXPECT_FALSE(debug.isEnabled(Debug_Resources) || urKRCache::debugChannel().isEnabled());
    debug.enable(Debug_Undo);
    debug.disable(Debug_Undo);
    EXPECT_EQ(calls, "17+ 17- 16+ 16- 16- ");

    static urOS::DebugChannel provided;  // static, because the code continues to use it
    provided.enable();
    debug.provideChannel(debugCode(5), provided);
    EXPECT_TRUE(debug.isEnabled(debugCode(5)));
    debug.disable(debugCode(5));
    EXPECT_FALSE(provided.isEnabled());

    static urOS::DebugChannel ofHistories;
    debug.provideChannel(Debug_Undo, ofHistories);
    EXPECT_EQ(&nxTXN::debugChannel(), &ofHistories);
    nxTXN::setDebugChannel(nullptr);
    EXPECT_NE(&nxTXN::debugChannel(), &ofHistories);
}

TEST_F(DebugTest, LinesAreIndentedAndEndOnlyWhenAsked) {
    debug.enable(Debug_Tools);
    for (int i = 0; i < 2; ++i) debug.incrementIndent();
    debug.print_(Debug_Tools, "%d%%", 1234);
    DebugPrint("f", Debug_Tools)("%05d", 7);
    for (int i = 0; i < 3; ++i) debug.decrementIndent();  // one call too many has no effect
    debug.print_(Debug_Tools, "left");
    EXPECT_EQ(printed(), "    1234%    00007\nleft");
    debug.incrementIndent();
}

void inner() {
    DebugPrint print("ns::inner", Debug_Tools);
    print("inner");
}

void middle() {
    DebugPrint print("ns::middle", Debug_Tools);
    print("middle");
    inner();
    std::string const sameName = "ns::middle";  // at another address
    DebugPrint again(sameName.c_str(), Debug_Tools);
    again("middle again");
    inner();
}

TEST_F(DebugTest, PrintersOfNestedFunctionsIndentAndThoseOfOneFunctionDoNot) {
    debug.enable(Debug_Tools);
    DebugPrint early("early", Debug_Undo);  // off at construction
    debug.enable(Debug_Undo);
    for (int round = 0; round < 2; ++round) {
        DebugPrint print("ns::outer", Debug_Tools);
        DebugPrint const silent("ns::silent", Debug_Tools);
        print("outer");
        early("never");
        middle();
        print("outer %s", "ends");
        EXPECT_EQ(printed(), "outer\n  middle\n    inner\n    middle again\n    inner\n  outer ends\n");
    }
    EXPECT_EQ(debug.indent(), 0);
}

TEST_F(DebugTest, ListsSwitchCodesFromLeftToRight) {
    struct Case {
        std::string_view list;
        std::vector<int> on;
        std::string unknown;
    };
    Case const cases[] = {
        {"Debug_Undo,17", {16, 17}, ""},
        {" Debug_GL ,, 0 ,\t", {0, 47}, ""},
        {"Debug_Undo,3,-Debug_Undo, - 3,48", {48}, ""},
        {"*,-*,5", {5}, ""},
        {"Debug_Undoo,Undo", {}, "Debug_Undoo:Debug_Undo Undo:Debug_Undo "},
        {"resource,-hitest,49", {}, "resource:Debug_Resources hitest:Debug_HitTest 49:NUM_CODES "},
        {"99999999999999999999,7", {7}, "99999999999999999999:NUM_CODES "},
        {"draw,callstack", {}, "draw:NUM_CODES callstack:Debug_CallStack1 "},
        {"debug_fab,--1,-,rubbish", {}, "debug_fab:Debug_Fab -1:NUM_CODES rubbish:NUM_CODES "},
    };
    for (auto const& [list, on, expected] : cases) {
        switchDebugCodes("-*");
        std::string unknown;
        for (auto const& [entry, nearest] : switchDebugCodes(list))
            unknown += std::string(entry.view()) + ':' + Debug::getCodeName(nearest).c_str() + ' ';
        std::vector<int> enabled;
        for (int i = 0; i < NUM_CODES; ++i)
            if (debug.isEnabled(debugCode(i))) enabled.push_back(i);
        EXPECT_EQ(enabled, on) << list;
        EXPECT_EQ(unknown, expected) << list;
    }
    switchDebugCodes("*,-1");
    EXPECT_TRUE(debug.isEnabled(debugCode(0)) && !debug.isEnabled(debugCode(1)) && debug.isEnabled(debugCode(48)));
    EXPECT_EQ(switchDebugCodes("undoo").front().message(), "there is no undoo; do you mean Debug_Undo?");
    EXPECT_EQ(switchDebugCodes("49").front().message(), "there is no 49");
    EXPECT_EQ(switchDebugCodes(std::string(1000000, 'x')).size(), 1);
}

}  // namespace
}  // namespace nxSupport
