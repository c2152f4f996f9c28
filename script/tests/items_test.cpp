// Items to Lua values and back, and the start-up.
#include <functional>

#include "foundation/nxLC/StackChecker.h"
#include "foundation/urOS/tests/CapturedOutput.h"
#include "plst/Array.h"
#include "plst/Dictionary.h"
#include "plst/Double.h"
#include "plst/String.h"
#include "plst/casts.h"
#include "plst/json.h"
#include "script/impl/lua.h"
#include "script/luaItems.h"
#include "script/tests/Host.h"

namespace {

using nxPLST::Item;
using nxSupport::popPListItem;
using nxSupport::pushPListItem;
using ur::Reference;
using urString::CString;

/// The item as JSON on one line; "none" for null.
std::string textOf(Reference<Item const> const& item) {
    if (!item) return "none";
    CString text;
    EXPECT_TRUE(nxPLST::convertToJSON(text, item));
    std::string line;
    for (char const c : text.view()) {
        if (c != '\n' && c != ' ') line += c;
    }
    return line;
}

class LuaItems : public ::testing::Test {
protected:
    LuaItems() { luaL_openlibs(L); }
    ~LuaItems() override { lua_close(L); }

    /// What popPListItem makes of a Lua expression.
    Reference<Item const> pop(std::string const& expression) {
        EXPECT_EQ(luaL_dostring(L, ("return " + expression).c_str()), 0) << lua_tostring(L, -1);
        Reference<Item const> item;
        {
            nxLC::StackChecker const checker(L, 0);
            item = popPListItem(L, lua_gettop(L));
        }
        lua_pop(L, 1);
        return item;
    }

    lua_State* L = luaL_newstate();
};

TEST_F(LuaItems, AreMadeOfPlainValuesAndTables) {
    struct Row {
        char const* expression;
        char const* item;
    };
    for (Row const& row : {
             Row{"true", "true"},
             Row{"-1.5", "-1.5"},
             Row{"'text'", "\"text\""},
             Row{"'a\\0b'", "\"a\""},
             Row{"{}", "[]"},
             Row{"{10, 20}", "[10,20]"},
             Row{"{x = 1}", "{\"x\":1}"},
             Row{"{a = {1, {b = false}}, c = {}}", "{\"a\":[1,{\"b\":false}],\"c\":[]}"},
             Row{"{[3] = 3, [2] = 2, [1] = 1}", "[1,2,3]"},
             Row{"{['k\\0x'] = 1}", "{\"k\":1}"},
             Row{"nil", "none"},
             Row{"print", "none"},
             Row{"io.stdout", "none"},
             Row{"coroutine.create(function() end)", "none"},
             Row{"{1, x = 2}", "none"},
             Row{"{[2] = 1}", "none"},
             Row{"{[1.5] = 1}", "none"},
             Row{"{[0] = 1}", "none"},
             Row{"{1, 2, nil, 4}", "none"},
             Row{"{[true] = 1}", "none"},
             Row{"{1, print}", "none"},
             Row{"{a = {b = {print}}}", "none"},
             Row{"(function() local t = {} t.t = t return t end)()", "none"},
             Row{"(function() local t = {} for i = 1, 60 do t = {t, t} end return t end)()", "none"},
             Row{"(function() local t = {} for i = 1, 100000 do t = {t} end return t end)()", "none"},
             Row{"setmetatable({}, {__index = {1}})", "[]"},
         }) {
        EXPECT_EQ(textOf(pop(row.expression)), row.item) << row.expression;
    }
}

TEST_F(LuaItems, BecomeValuesAndTables) {
    CString const text = R"({"a":[1,true,"x",[],{}],"b":{"c":-2.5}})";
    Reference<Item> item;
    ASSERT_TRUE(nxPLST::convertFromJSON(item, text));
    {
        nxLC::StackChecker const checker(L, 1);
        pushPListItem(L, item);
    }
    lua_setglobal(L, "t");
    EXPECT_EQ(textOf(pop("t")), R"({"a":[1,true,"x",[],[]],"b":{"c":-2.5}})");

    pushPListItem(L, ur::make<nxPLST::String>(CString("a\0b", 3)));
    EXPECT_STREQ(lua_tostring(L, -1), "a");
    EXPECT_EQ(lua_objlen(L, -1), 1U);
    lua_pop(L, 1);
}

TEST_F(LuaItems, WithoutAFormPushNothingAloneAndNilInside) {
    struct Odd : Item {
        Odd() : Item(nxPLST::DoubleType) {}
        [[nodiscard]] Reference<Item> onClone() const override { return nullptr; }
    };
    nxLC::StackChecker const checker(L, 0);
    pushPListItem(L, nullptr);
    pushPListItem(L, ur::make<Odd>());
    auto const array = ur::make<nxPLST::Array>();
    array->insert(ur::make<nxPLST::Double>(1));
    array->insert(ur::make<Odd>());
    array->insert(nullptr);
    array->insert(ur::make<nxPLST::Double>(4));
    auto const dictionary = ur::make<nxPLST::Dictionary>();
    dictionary->insert("array", array);
    dictionary->insert("odd", ur::make<Odd>());
    pushPListItem(L, dictionary);
    lua_setglobal(L, "t");
    EXPECT_EQ(luaL_dostring(L, "assert(t.odd == nil and t.array[1] == 1 and not t.array[2] and t.array[4] == 4)"), 0);
}

TEST_F(LuaItems, OfAnyDepthAreRefusedWithoutHarm) {
    auto deep = ur::make<nxPLST::Array>();
    for (int i = 0; i < 200000; ++i) {
        auto outer = ur::make<nxPLST::Array>();
        outer->insert(deep);
        deep = outer;
    }
    nxLC::StackChecker const checker(L, 0);
    pushPListItem(L, deep);
}

TEST_F(LuaItems, FailWithoutHarmWhenMemoryRunsOut) {
    struct Quota {
        std::size_t left;
        static void* allocate(void* quota, void* block, std::size_t oldSize, std::size_t newSize) {
            std::size_t& left = static_cast<Quota*>(quota)->left;
            if (newSize > oldSize && newSize - oldSize > left) return nullptr;
            left -= newSize - oldSize;
            if (newSize > 0) return std::realloc(block, newSize);
            std::free(block);
            return nullptr;
        }
    };
    Reference<Item> item;
    ASSERT_TRUE(nxPLST::convertFromJSON(item, R"([{"some key":["a text of some length",1,2,3,[4,[5,{"b":6}]]]},7])"));
    bool pushed = false;
    for (std::size_t bytes = 0; !pushed && bytes < 100000; bytes += 40) {
        Quota quota{100000};
        lua_State* const state = lua_newstate(&Quota::allocate, &quota);
        quota.left = bytes;
        pushPListItem(state, item);
        pushed = lua_gettop(state) == 1;
        EXPECT_EQ(textOf(popPListItem(state, 1)), pushed ? textOf(item) : "none");
        lua_close(state);
    }
    EXPECT_TRUE(pushed);
}

TEST(StartUp, SubscribesOncePerBroadcaster) {
    nxSupport::Host host;
    nxRFL::Database database;
    auto const classes = [&] {
        nxSupport::InitializeReflectionMsg message(&database);
        host.broadcaster->broadcast(message);
        return database.getClass("nxSupport::Domain") != nullptr;
    };
    {
        nxSupport::Context const context(&host.domain, nxSupport::Context::AppOnly);
        nxSupport::initialize();
    }
    EXPECT_TRUE(classes());
    std::size_t const count = database.classes().size();
    EXPECT_TRUE(classes());
    EXPECT_EQ(database.classes().size(), count);
}

TEST(StartUp, LeavesAStateWithoutTheTableAsItWas) {
    nxSupport::Host host;
    urOS::CapturedOutput const output;
    lua_State* const L = luaL_newstate();
    luaL_openlibs(L);
    nxSupport::InitializeLuaMsg message(nxSupport::InitializeLuaMsg::Application, L);
    host.broadcaster->broadcast(message);
    EXPECT_EQ(output.text(), "nxSupport::registerLuaFunctions: there is no table nx\n");
    EXPECT_EQ(luaL_dostring(L, "assert(nx == nil and string.dump(function() end)) print = nil"), 0);

    // Without a binding the functions that need one do what they can.
    EXPECT_EQ(luaL_dostring(L, "nx = {}"), 0);
    host.broadcaster->broadcast(message);
    EXPECT_EQ(luaL_dostring(L,
                            "assert(nx.getObjectTableSize() == 0 and nx.decodeJSON2('[7]')[1] == 7) "
                            "nx.setLCPropertyAssignmentHook(print) assert(not pcall(nx.createLCStack, 1))"),
              0);
    lua_close(L);
}

}  // namespace
