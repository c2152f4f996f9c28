// Converting items to Lua values and back, and the start-up.
#include "foundation/nxLC/StackChecker.h"
#include "foundation/urOS/tests/CapturedOutput.h"
#include "plst/json.h"
#include "plst/tests/trees.h"
#include "script/impl/lua.h"
#include "script/luaItems.h"
#include "script/tests/Host.h"

namespace {

using nxPLST::Item;
using nxPLST::test::arrayOf;
using namespace nxSupport;
using ur::Reference;
using urString::CString;

/// The item as JSON on one line; "none" for null.
std::string textOf(Reference<Item const> const& item) {
    if (!item) return "none";
    CString text;
    EXPECT_TRUE(nxPLST::convertToJSON(text, item));
    std::string line(text.view());
    std::erase_if(line, [](char c) { return c == '\n' || c == ' '; });
    return line;
}

struct LuaItems : testing::Test {
    LuaItems() { luaL_openlibs(L); }
    ~LuaItems() override { lua_close(L); }

    /// The item that popPListItem returns for a Lua expression, as text.
    std::string pop(std::string const& expression) {
        nxLC::StackChecker const checker(L, 0);
        EXPECT_EQ(luaL_dostring(L, ("return " + expression).c_str()), 0) << lua_tostring(L, -1);
        std::string text = textOf(popPListItem(L, lua_gettop(L)));
        lua_pop(L, 1);
        return text;
    }

    lua_State* L = luaL_newstate();
};

TEST_F(LuaItems, AreMadeOfPlainValuesAndTables) {
    for (auto const& [expression, item] : std::initializer_list<std::pair<char const*, char const*>>{
             {"-1.5", "-1.5"},
             {"'a\\0b'", "\"a\""},
             {"{a = {1, {b = false}}, c = {}}", "{\"a\":[1,{\"b\":false}],\"c\":[]}"},
             {"{[3] = 3, [2] = 2, [1] = 1}", "[1,2,3]"},
             {"{['k\\0x'] = 1}", "{\"k\":1}"},
             {"setmetatable({}, {__index = {1}})", "[]"},
         }) {
        EXPECT_EQ(pop(expression), item) << expression;
    }
    for (char const* const formless :
         {"nil", "print", "io.stdout", "coroutine.create(function() end)", "{1, x = 2}", "{1, 2, nil, 4}", "{1, print}",
          "{a = {b = {print}}}", "(function() local t = {} t.t = t return t end)()",
          "(function() local t = {} for i = 1, 60 do t = {t, t} end return t end)()",
          "(function() local t = {} for i = 1, 100000 do t = {t} end return t end)()"}) {
        EXPECT_EQ(pop(formless), "none") << formless;
    }
}

TEST_F(LuaItems, MayBeSharedButNotBeyondMeasure) {
    ASSERT_EQ(luaL_dostring(L,
                            "local part = {} for i = 1, 1000 do part[i] = i end "
                            "t = {} for i = 1, 300 do t[i] = part end u = {} for i = 1, 40 do u = {u, u} end"),
              0);
    lua_getglobal(L, "t");
    auto const item = nxPLST::asArray(popPListItem(L, lua_gettop(L)));
    ASSERT_TRUE(item);
    EXPECT_EQ(item->size(), 300);
    EXPECT_EQ(nxPLST::asArray(item->array().back())->size(), 1000);
    EXPECT_EQ(pop("u"), "none");
    lua_pop(L, 1);
}

TEST_F(LuaItems, BecomeValuesAndTables) {
    Reference<Item> item;
    std::string const text = R"({"a":[1,true,"x",[],[]],"b":{"c":-2.5}})";
    ASSERT_TRUE(nxPLST::convertFromJSON(item, CString(text)));
    pushPListItem(L, item);
    lua_setglobal(L, "t");
    EXPECT_EQ(pop("t"), text);
    pushPListItem(L, ur::make<nxPLST::String>(CString("a\0b", 3)));
    EXPECT_EQ(lua_objlen(L, -1), 1U);
    lua_pop(L, 1);

    // An item without a Lua form: nothing on its own, nil inside a table.
    struct Odd : Item {
        Odd() : Item(nxPLST::DoubleType) {}
        [[nodiscard]] Reference<Item> onClone() const override { return nullptr; }
    };
    nxLC::StackChecker const checker(L, 0);
    pushPListItem(L, nullptr);
    pushPListItem(L, ur::make<Odd>());
    pushPListItem(L, arrayOf({ur::make<nxPLST::Double>(1), ur::make<Odd>(), nullptr, item}));
    lua_setglobal(L, "t");
    EXPECT_EQ(luaL_dostring(L, "assert(t[1] == 1 and t[2] == nil and t[3] == nil and t[4].b.c == -2.5)"), 0);

    Reference<Item> deep;
    for (int i = 0; i < 200000; ++i) deep = arrayOf({deep});
    pushPListItem(L, deep);
}

TEST(LuaItemsWithoutMemory, FailWithoutHarm) {
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
    ASSERT_TRUE(nxPLST::convertFromJSON(item, R"([{"some key":["a text of some length",1,[4,[5,{"b":6}]]]},7])"));
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

TEST(StartUp, HappensOncePerBroadcasterAndNeedsTheTable) {
    ScriptHost host;
    {
        Context const context(&host.domain, Context::AppOnly);
        initialize();
    }
    urOS::CapturedOutput const output;
    lua_State* const L = luaL_newstate();
    luaL_openlibs(L);
    InitializeLuaMsg message(InitializeLuaMsg::Application, L);
    host.broadcaster->broadcast(message);
    EXPECT_EQ(output.text(), "nxSupport::registerLuaFunctions: there is no table nx\n");
    EXPECT_EQ(luaL_dostring(L, "assert(nx == nil and debug.getinfo(print).what == 'C') nx = {}"), 0);

    // Without a binding, functions that need one return a default or fail.
    host.broadcaster->broadcast(message);
    EXPECT_EQ(luaL_dostring(L,
                            "assert(nx.getObjectTableSize() == 0 and nx.decodeJSON2('[7]')[1] == 7) "
                            "nx.setLCPropertyAssignmentHook(print) assert(not pcall(nx.createLCStack, 1))"),
              0);
    lua_close(L);
}

}  // namespace
