// Tests the conversion of values between Lua and native code.
#include <cmath>

#include "foundation/nxLC/StackChecker.h"
#include "foundation/nxLC/stackValues.h"
#include "foundation/nxLC/tests/Farm.h"
#include "foundation/nxLC/walkValue.h"

namespace {

using namespace nxRFL;

using Values = farm::Farm;

TEST_F(Values, ComeBackAsTheyWere) {
    succeed(R"(
        local echo = farm.tools.echo
        assert(select("#", echo()) == 0)
        local a, b, c, d = echo(nil, true, -1.5, "x\0y")
        assert(a == nil and b == true and c == -1.5 and d == "x\0y")
        for _, size in ipairs{0, 15, 16, 255, 256, 257, 100000} do
            local text = string.rep("ab", size / 2) .. (size % 2 == 1 and "c" or "")
            assert(echo(text) == text)
        end
        local f = function() return 7 end
        assert(echo(f) == f and echo(print) == print)
        assert(echo(farm.tools.echo) == farm.tools.echo)
        local animal = farm.Animal.make("Rex")
        assert(echo(animal) == animal and rawequal(echo(animal), animal))
        assert(echo(farm.Animal) == farm.Animal)
        assert(echo(1/0) == 1/0 and echo(0/0) ~= echo(0/0)))");
}

TEST_F(Values, TablesAreArraysOrDictionaries) {
    succeed(R"(
        local function same(a, b)
            if type(a) ~= "table" or type(b) ~= "table" then return a == b end
            for k, v in pairs(a) do if not same(v, b[k]) then return false end end
            for k in pairs(b) do if a[k] == nil then return false end end
            return true
        end
        local outOfOrder = {}
        for i = 20, 1, -1 do outOfOrder[i] = i end
        local animal = farm.Animal.make("Rex")
        local shared = {1, 2}
        for _, t in ipairs{{}, {1}, {1, 2, {3, {4}}}, {x = 1}, {x = {y = {z = "deep"}}, [""] = {false}},
                           outOfOrder, {animal, {a = animal}}, {print}, {shared, shared}, {farm.Animal}} do
            assert(same(farm.tools.echo(t), t))
        end)");
}

TEST_F(Values, OddTablesAreRefused) {
    std::string const prefix = "test:1: farm::tools.echo: argument 2 ";
    std::string const keys = prefix + "is a table whose keys are neither 1 to n nor all strings";
    for (char const* const odd : {"{1, x = 2}", "{x = 2, [1] = 1, y = 3}", "{[2] = 1}", "{[1.5] = 1}", "{[0] = 1, 1}",
                                  "{1, nil, 3}", "{[true] = 1}", "{[1] = 1, [2^53] = 2}", "{{{[-1] = 1}}}"}) {
        EXPECT_EQ(run(std::string("farm.tools.echo(1, ") + odd + ")"), keys) << odd;
    }
    EXPECT_EQ(run("farm.tools.echo(1, coroutine.create(function() end))"), prefix + "must not be a thread");
    EXPECT_EQ(run("farm.tools.echo(1, {io.stdout})"), prefix + "must not be a userdata");
}

TEST_F(Values, TablesWithoutEndCostLittle) {
    std::string const inItself = "is a table with itself in it";
    state->setLimits({.repeatedValues = 10000});
    for (char const* const build :
         {"t[1] = t", "t.x = {t}", "for i = 1, 1000 do t[i] = i end t[1001] = t", "for i = 1, 60 do t = {t, t} end",
          "for i = 1, 100000 do t = {t} end", "for i = 1, 60 do t = {a = t, b = t} end"}) {
        std::string const message = run(std::string("local t = {} ") + build + " farm.tools.echo(t)");
        EXPECT_NE(message.find(inItself), std::string::npos) << build << ": " << message;
    }
    succeed("local t = {} for i = 1, 1000 do t = {t} end farm.tools.echo(t)");
    succeed("local t = {} for i = 1, 300000 do t[i] = {i} end farm.tools.echo(t)");
    state->setLimits({});
    succeed(
        "local t, part = {}, {} for i = 1, 1000 do part[i] = i end for i = 1, 1000 do t[i] = part end "
        "farm.tools.echo(t)");
}

TEST_F(Values, NativeItemsOfAnyDepthReachLuaOrFail) {
    Stack deep;
    {
        Writer writer(deep);
        for (int i = 0; i < 100000; ++i) writer.startArray(1);
    }
    Stack results;
    auto const error = state->run("return ...", "=test", deep, results);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->message(), "the result is nested too deeply");
    EXPECT_TRUE(results.empty());
}

TEST_F(Values, HostsReadAndWriteStacks) {
    lua_State* const L = state->get();
    lua_pushnumber(L, 1);
    lua_pushliteral(L, "two");
    lua_newtable(L);
    Stack stack;
    nxLC::readFromLua(L, stack, 2);
    EXPECT_EQ(stack.size(), 2U);
    Reader reader(stack);
    EXPECT_EQ(reader.readText(), "two");
    EXPECT_EQ(reader.kind(), Kind::array);

    nxLC::StackChecker const checker(L, 2);
    EXPECT_EQ(nxLC::writeToLua(L, stack), 2);
    EXPECT_STREQ(lua_tostring(L, -2), "two");
    EXPECT_TRUE(lua_istable(L, -1));
    lua_State* const other = luaL_newstate();
    EXPECT_THROW(nxLC::readFromLua(other, stack, 1), Exception);
    lua_close(other);
}

TEST_F(Values, WalksVisitTablesInOrderAndLeaveTheStackAsItWas) {
    struct Sink final : nxLC::ValueSink {
        void onNil() override { seen += "nil "; }
        void onBoolean(bool value) override { seen += value ? "true " : "false "; }
        void onNumber(double value) override { seen += std::to_string(static_cast<int>(value)) + " "; }
        void onText(char const* bytes, std::size_t size) override { seen.append(bytes, size) += ' '; }
        void startArray() override { seen += "[ "; }
        void endArray() override { seen += "] "; }
        void startDictionary() override { seen += "{ "; }
        void endDictionary() override { seen += "} "; }
        bool onOther(lua_State* /*state*/, int /*index*/) override { return false; }
        std::string seen;
    };
    lua_State* const L = state->get();
    nxLC::StackChecker const checker(L, 0);
    Sink sink;
    for (char const* const value : {"return {1, {true, false}, {}}", "return {key = {b = 'text'}}", "return nil"}) {
        ASSERT_EQ(luaL_dostring(L, value), 0);
        nxLC::walkValue(L, lua_gettop(L), sink);
        lua_pop(L, 1);
    }
    EXPECT_EQ(sink.seen, "[ 1 [ true false ] [ ] ] { key { b text } } nil ");
}

TEST_F(Values, NativeFunctionsGoWithTheLastScriptValue) {
    struct Counted : Function, farm::Counted<Counted> {
        using Function::Function;
        void onCall(Stack const& /*arguments*/, Stack& results) const override { Writer(results).writeInt(5); }
    };
    ExposeFunction(database, "farm::tools")
        .add("five", [this] { return ur::Reference<Function>(ur::make<Counted>(&database, false)); })
        .add("none", [] { return ur::Reference<Function>(); });
    state->reflection().publish();
    succeed("local five = farm.tools.five() assert(five() == 5 and five() == 5 and farm.tools.none() == nil)");
    EXPECT_EQ(Counted::alive, 1);
    succeed("collectgarbage()");
    EXPECT_EQ(Counted::alive, 0);
}

TEST_F(Values, FunctionsWorkInOtherStates) {
    nxLC::State second(database);
    Stack function;
    ASSERT_FALSE(state->run("local n = 0 return function(x) n = n + x return n end", "=first", {}, function));
    Stack results;
    ASSERT_FALSE(second.run("f = ... f(1) return f(2)", "=second", function, results));
    EXPECT_EQ(Reader(results).readDouble(), 3);
    function.clear();
    EXPECT_EQ(second.run("collectgarbage() return f(3)", "=second", {}, results), std::nullopt);
    state.reset();
    results.clear();
    EXPECT_EQ(second.run("return select('#', f(3))", "=second", {}, results), std::nullopt);
    EXPECT_EQ(Reader(results).readDouble(), 0);
}

TEST(StackCheckerDeathTest, EndsProgramsThatMiscount) {
    lua_State* const L = luaL_newstate();
    { nxLC::StackChecker const none(L, 0); }
#if !defined(NDEBUG)
    EXPECT_DEATH(nxLC::StackChecker(L, 1), "the Lua stack holds 0 values where 1 are expected");
#endif
    auto const leave = [L] {
        nxLC::StackChecker const left(L, 1);
        throw Exception("in the middle");
    };
    EXPECT_THROW(leave(), Exception);
    lua_close(L);
}

}  // namespace
