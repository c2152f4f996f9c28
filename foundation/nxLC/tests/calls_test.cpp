// Tests errors between scripts and native code, callbacks, and the end of a state.
#include <gmock/gmock.h>

#include <cstring>

#include "foundation/nxLC/protect.h"
#include "foundation/nxLC/tests/Farm.h"

#if defined(__linux__)
#include <dlfcn.h>
#endif

namespace {

using namespace nxRFL;
using farm::Animal;
using urString::CString;

using Calls = farm::Farm;

#if defined(__linux__)
TEST(Lua, IsTheBuildUnderTest) {
    Dl_info where;
    ASSERT_NE(dladdr(reinterpret_cast<void*>(&lua_newstate), &where), 0);
#if defined(NX_LUA_CXX)
    EXPECT_NE(std::strstr(where.dli_fname, "c++"), nullptr) << where.dli_fname;
#else
    EXPECT_EQ(std::strstr(where.dli_fname, "c++"), nullptr) << where.dli_fname;
#endif
}
#endif

TEST_F(Calls, NativeErrorsNameThePlaceOfTheCall) {
    EXPECT_EQ(run("\n\nfarm.Animal.make('Rex'):fail('exception')"), "test:3: Rex is tired");
    EXPECT_EQ(run("farm.Animal.make('Rex'):fail('standard')"), "test:1: out of order");
    EXPECT_EQ(run("farm.Animal.make('Rex'):fail('other')"), "test:1: unknown exception");
    EXPECT_EQ(run("farm.Animal.make('Rex'):fail('long')"), "test:1: " + std::string(2000, 'x'));
    EXPECT_EQ(run("farm.tools.apply(function(x) error('no ' .. x) end, {5})"), "test:1: no 5");
    EXPECT_EQ(run("error({})"), "(error object is a table value)");
    EXPECT_EQ(run("error(setmetatable({}, {__tostring = function() return 'told' end}))"), "told");
    EXPECT_EQ(run("error(12, 0)"), "12");
    EXPECT_EQ(run("error(nil)"), "(error object is a nil value)");
    EXPECT_EQ(run("return return"), "test:1: unexpected symbol near 'return'");
}

TEST_F(Calls, ErrorsCarryTheScriptsStack) {
    auto const error = state->run(
        "local function inner() farm.Animal.make('Rex'):fail('exception') end\n"
        "function outer() inner() end\n"
        "outer()",
        "=test");
    ASSERT_TRUE(error);
    EXPECT_EQ(error->trace().view(),
              "stack traceback:\n"
              "\t[C]: in function 'fail'\n"
              "\ttest:1: in function 'inner'\n"
              "\ttest:2: in function 'outer'\n"
              "\ttest:3: in main chunk");
    EXPECT_EQ(state->run("(", "=test")->trace(), "");
}

TEST_F(Calls, NestedErrorsKeepTheirPlaceAndTheirStack) {
    std::string const nested =
        "local apply = farm.tools.apply\n"
        "local function inner() local x x = x.field end\n"
        "local function middle() apply(inner, {}) end\n";
    std::string const calls =
        "stack traceback:\n"
        "\ttest:2: in function <test:2>\n"
        "\t[C]: ?\n"
        "\t[C]: in function 'apply'\n";
    auto const error = [&](char const* script) { return *state->run(nested + script, "=test"); };
    for (auto const& [script, rest] : std::initializer_list<std::pair<char const*, char const*>>{
             {"apply(middle, {})",
              "\ttest:3: in function <test:3>\n\t[C]: ?\n\t[C]: in function 'apply'\n\ttest:4: in main chunk"},
             // Lua's own trace ends with the coroutine.
             {"local _, e = coroutine.resume(coroutine.create(middle)) error(e, 0)",
              "\ttest:3: in function <test:3>\n\t[C]: in function 'error'\n\ttest:4: in main chunk"},
             {"local _, e = pcall(middle) error(e, 0)",
              "\ttest:3: in function <test:3>\n\t[C]: in function 'pcall'\n\t[C]: in function 'error'\n"
              "\ttest:4: in main chunk"},
         }) {
        EXPECT_EQ(error(script).message(), "test:2: attempt to index local 'x' (a nil value)") << script;
        EXPECT_EQ(error(script).trace(), CString((calls + rest).c_str())) << script;
    }
    EXPECT_EQ(error("pcall(middle) error('another')").trace(),
              "stack traceback:\n\t[C]: in function 'error'\n\ttest:4: in main chunk");
}

/// Equal messages do not make two errors one, and no round makes a trace longer than the previous one.
TEST_F(Calls, ATraceBelongsToOneErrorAndIsBounded) {
    std::string const functions =
        "local apply = farm.tools.apply\n"
        "local function fail() error('same', 0) end\n"
        "local function once() apply(fail, {}) end\n"
        "local function twice() apply(once, {}) end\n"
        "local function anew() local _, e = pcall(twice) error(e, 0) end\n"
        "local function index() local x x = x.field end\n";
    for (auto const& [round, last] : std::initializer_list<std::pair<char const*, char const*>>{
             {"pcall(once) pcall(twice)", "twice()"},
             {"pcall(twice) xpcall(once, type) coroutine.resume(coroutine.create(twice))", "once()"},
             {"pcall(anew) pcall(apply, anew, {}) pcall(error, 'same', 0)", "apply(anew, {})"},
             {"pcall(apply, function() pcall(anew) error('same', 0) end, {})", "anew()"},
             {"pcall(apply, index, {})", "index()"},
             {"apply(function() pcall(twice) end, {})", "error('same', 0)"},
         }) {
        auto const traceAfter = [&, round = round, last = last](int rounds) {
            std::string const loop = "for i = 1, " + std::to_string(rounds) + " do " + round + " end\n";
            return state->run(functions + loop + last, "=test")->trace();
        };
        CString const expected = traceAfter(0);
        EXPECT_FALSE(expected.empty());
        for (int const rounds : {1, 2, 100}) EXPECT_EQ(traceAfter(rounds), expected) << round;
    }
    auto const error = *state->run(
        "local function deep(n) if n == 0 then error('same', 0) end farm.tools.apply(deep, {n - 1}) end\n"
        "local name = ('n'):rep(20000)\n"
        "_G[name] = function() deep(100) end\n"
        "assert(loadstring(name .. '()'))()",
        "=test");
    std::string_view const trace = error.trace().view();
    EXPECT_LT(trace.size(), 17'000);
    EXPECT_THAT(trace, testing::HasSubstr("\n\t(the trace is too long, lines are left out here)\n\t"));
    EXPECT_TRUE(trace.ends_with("in main chunk")) << trace;
}

TEST_F(Calls, ErrorsAreTracedWhateverTheHostLeftOfTheLibraries) {
    CString notified;
    ExposeFunction(database, "farm::tools").add("later", [](std::function<void()> const& call) { call(); });
    database.setErrorHandler([&](Exception const& error) { notified = error.message() + error.trace(); });
    for (char const* const left :
         {"debug = nil", "debug = {}", "debug = 5", "coroutine, debug, pcall = nil", "debug.traceback = error",
          "package.loaded.debug = nil", "debug = nil setmetatable(_G, {__index = error, __newindex = error})"}) {
        lua_State* const L = luaL_newstate();
        luaL_openlibs(L);
        EXPECT_EQ(luaL_dostring(L, left), 0);
        nxLC::ReflectionData::bind(L, database);
        EXPECT_EQ(luaL_dostring(L, "farm.tools.later(function() error('no', 0) end)"), 0) << lua_tostring(L, -1);
        EXPECT_TRUE(notified.startsWith("nostack traceback:\n\t[C]: in function 'error'")) << left << ": " << notified;
        lua_close(L);
    }
}

TEST_F(Calls, ErrorsEverywhereLeaveNothingBehind) {
    succeed(R"(
        local rex = farm.Animal.make("Rex")
        local function fails(f, ...) assert(not pcall(f, ...)) end assert(select(2, pcall(pcall)):find("value expected"))
        for i = 1, 200 do
            fails(rex.fail, rex, "exception") fails(rex.fail, rex, "standard") fails(rex.fail, rex, "long")
            fails(rex.feed, rex, string.rep("long text ", 50), "no number")
            fails(farm.tools.echo, {string.rep("text", 100), {1, x = 2}}, rex)
            fails(farm.tools.apply, function() error("in the callback") end, {1, 2, 3})
            fails(farm.tools.apply, function() farm.tools.apply(error, {1}) end, {})
            fails(function() rex.weight = {} end)
            rex:setOnCall(function(self, text) self:fail(text) return text end)
            assert(rex:call("exception") == "")
            rex:setOnCall(function(self, text) return {} end)
            assert(rex:call("wrong type") == "")
            rex:setOnCall(farm.tools.echo)
            assert(rex:call("echo") == "")
            local co = coroutine.wrap(function() rex:feed("meat", 1) coroutine.yield() rex:fail("exception") end)
            co() fails(co)
            fails(coroutine.wrap(function() farm.tools.apply(coroutine.yield, {}) end))
        end
        rex:setOnCall(nil))");
    std::string_view const expected =
        "test:11: Rex is tired;the function at test:13: the result must be string, but is array;"
        "farm::tools.echo: the result must be string, but is farm::Animal;";
    EXPECT_EQ(reported.substr(0, expected.size()).view(), expected);
    EXPECT_EQ(farm::Token::alive, 0);
}

TEST_F(Calls, FailAtAnyAllocationWithoutHarm) {
    // A few bytes more each time, so that memory runs out at another place.
    std::string const script = R"(
        local rex = farm.Animal.make("Rex")
        rex.name = string.rep("x", 300)
        rex:feed("meat", 1)
        for food, amount in rex:meals() do assert(food == "meat") end
        rex:setOnCall(function(self, text) return text .. self.name end)
        assert(#rex:call("yes") == 303)
        local t = farm.tools.echo({1, {x = {rex}}, print, "text"})
        assert(rawequal(t[2].x[1], rex))
        assert(#farm.tools.echo(rex.name) == 300)
        assert(not pcall(rex.fail, rex, "long"))
        assert(tostring(farm.Duck.make(true)))
        rex:setOnCall(nil))";
    int failures = 0;
    bool succeeded = false;
    for (std::size_t memory = 16; memory < 60000 && !succeeded; memory += memory < 4000 ? 24 : 240) {
        state = std::make_unique<nxLC::State>(database);
        succeed("collectgarbage()");
        state->setLimits({.memory = memory});
        std::string const message = run(script);
        succeeded = message == "ok";
        failures += message.ends_with("memory budget spent") ? 1 : 0;
        state.reset();
        ASSERT_EQ(Animal::alive, 0) << memory;
        ASSERT_EQ(farm::Token::alive, 0) << memory;
    }
    EXPECT_TRUE(succeeded);
    EXPECT_GT(failures, 20);
}

TEST_F(Calls, CallbacksKeepTheirFunctionsUntilTheyAreDropped) {
    auto const rex = giveAnimal("rex");
    succeed(R"(
        local kept = farm.Animal.make("kept")
        rex:setOnCall(function(self, text) count = (count or 0) + 1 return text .. " " .. kept.name end)
        collectgarbage())");
    EXPECT_EQ(rex->onCall(*rex, "hello"), "hello kept");
    EXPECT_EQ(number("return count"), 1);
    EXPECT_EQ(Animal::alive, 2);
    rex->onCall = nullptr;
    succeed("collectgarbage() collectgarbage()");
    EXPECT_EQ(Animal::alive, 1);

    // Places of dropped functions are reused.
    succeed("for i = 1, 1000 do rex:setOnCall(function() return tostring(i) end) end");
    EXPECT_EQ(rex->onCall(*rex, ""), "1000");
}

TEST_F(Calls, CallbacksDropThemselvesAndFail) {
    auto const rex = giveAnimal("rex");
    succeed("rex:setOnCall(function(self) self:setOnCall(nil) collectgarbage() error('dropped') end)");
    EXPECT_EQ(rex->onCall(*rex, ""), "");
    EXPECT_EQ(reported, "test:1: dropped;");
    EXPECT_FALSE(rex->onCall);
}

TEST_F(Calls, CallbacksAreInertOnceTheirStateHasClosed) {
    auto const rex = giveAnimal("rex");
    succeed("rex:setOnCall(function() error('alive') end)");
    auto const function = state->load("error('alive')", "=later");
    state.reset();
    EXPECT_EQ(rex->onCall(*rex, ""), "");
    EXPECT_EQ(rex->referenceCount(), 1);
    Stack results;
    function->call({}, results);
    EXPECT_TRUE(results.empty());
    EXPECT_EQ(reported, "");
}

TEST_F(Calls, ScriptsMayDestroyTheirState) {
    ExposeFunction(database, "farm::tools").add("close", [this] { state.reset(); });
    state->reflection().publish();
    nxLC::State& closing = *state;
    Stack results;
    auto const error = closing.run("farm.tools.close() return farm.Animal.make('late').name", "=test", {}, results);
    EXPECT_FALSE(error);
    EXPECT_EQ(Reader(results).readText(), "late");
    EXPECT_EQ(Animal::alive, 0);
}

TEST_F(Calls, NestOnTheThreadThatRuns) {
    succeed(R"(
        local depth = 0
        local function nest() depth = depth + 1 farm.tools.apply(nest, {}) end
        local ok, message = pcall(nest)
        assert(not ok and message:match("C stack overflow"), message)
        assert(depth > 20 and depth < 300, depth)
        depth = 0
        assert(not pcall(coroutine.wrap(nest)) and depth > 20)
        local rex = farm.Animal.make("Rex")
        rex:setOnCall(function() return coroutine.running() and "inside" or "outside" end)
        assert(rex:call("") == "outside")
        assert(coroutine.wrap(function() return rex:call("") end)() == "inside"))");
}

TEST_F(Calls, GuardTurnsExceptionsIntoErrors) {
    lua_State* const L = state->get();
    lua_CFunction const body = [](lua_State* inner) {
        return nxLC::guard(inner, [inner] {
            farm::Token const token;
            std::string const text(lua_objlen(inner, 1), '!');
            if (text.empty()) throw Exception("nothing to shout");
            nxLC::protect(inner, 0, 1, [&text](lua_State* raising) {
                lua_pushlstring(raising, text.data(), text.size());
                return 1;
            });
            return 1;
        });
    };
    lua_pushcfunction(L, body);
    lua_setglobal(L, "shout");
    succeed("assert(shout('abc') == '!!!')");
    EXPECT_EQ(run("shout('')"), "test:1: nothing to shout");
    lua_pushnumber(L, 1);
    EXPECT_THAT([L] { nxLC::protect(L, 1, 0, [](lua_State* raising) { return luaL_error(raising, "raised"); }); },
                testing::ThrowsMessage<Exception>("raised"));
    EXPECT_EQ(lua_gettop(L), 0);
}

}  // namespace
