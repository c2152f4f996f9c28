// Tests scripts that do not end or take too much, and the sandbox.
#include <csignal>
#include <thread>

#include "foundation/nxLC/tests/Farm.h"
#include "foundation/nxRFL/ExposeFunction.h"

namespace {

using farm::Farm;

using Limits = Farm;

TEST_F(Limits, EndScriptsThatLoop) {
    state->setLimits({.instructions = 200000});
    std::string const spent = "instruction budget spent";
    for (char const* const endless : {
             "while true do end",
             "local function f() return f() end f()",
             "while true do pcall(function() while true do end end) end",
             "while true do xpcall(function() while true do end end, function() while true do end end) end",
             "while true do load(function() while true do end end) end",
             "local function f() while true do coroutine.resume(coroutine.create(f)) end end f()",
             "local function f() while true do pcall(coroutine.wrap(f)) end end f()",
             "farm.tools.apply(function() while true do end end, {})",
             "while true do pcall(farm.tools.apply, function() while true do end end, {}) end",
             "table.sort({3, 1, 2}, function() while true do end end)",
             "string.gsub('aaa', 'a', function() while true do end end)",
             "setmetatable(_G, {__index = function() while true do end end}) local x = y",
             "while true do coroutine.resume(coroutine.create(function() end)) end",
             "while true do coroutine.wrap(function() for i = 1, 20 do end end)() end",
             // A tree: each thread ends long before its own hook fires.
             "local function grow(n) if n == 0 then return end for i = 1, 30 do "
             "coroutine.resume(coroutine.create(grow), n - 1) end end grow(20)",
             "local function grow(n) if n == 0 then return end for i = 1, 30 do "
             "coroutine.wrap(grow)(n - 1) end end pcall(grow, 20)",
             "local t = {} for i = 1, 100000 do t[i] = i end while true do pcall(farm.tools.echo, t) end",
         }) {
        std::string const message = run(endless);
        EXPECT_TRUE(message.ends_with(spent)) << endless << ": " << message;
        // The state still works.
        EXPECT_EQ(run("setmetatable(_G, nil) for i = 1, 1000 do pcall(tostring, i) end"), "ok") << endless;
    }
    auto const error = state->run("while true do end", "=test");
    EXPECT_EQ(error->message(), "test:1: instruction budget spent");
    EXPECT_EQ(error->trace(), "stack traceback:\n\ttest:1: in main chunk");
}

TEST_F(Limits, CountEachCallAnew) {
    state->setLimits({.instructions = 100000});
    for (int i = 0; i < 5; ++i) succeed("for i = 1, 60000 do end");
    EXPECT_NE(run("for i = 1, 200000 do end"), "ok");
    // A coroutine costs little more than what it runs.
    succeed("for i = 1, 1000 do coroutine.wrap(function() for j = 1, 20 do end end)() end");
    succeed("coroutine.wrap(function() for j = 1, 80000 do end end)()");
    EXPECT_NE(run("for i = 1, 10 do coroutine.wrap(function() for j = 1, 12000 do end end)() end"), "ok");
    state->setLimits({});
    succeed("for i = 1, 1000000 do end");
}

TEST_F(Limits, EndScriptsThatRecurse) {
    for (char const* const deep : {"local function f() return 1 + f() end f()",
                                   "local m = {} function m.__index(t, k) return t[k] end return setmetatable(m, m).x"})
        EXPECT_NE(run(deep).find("stack overflow"), std::string::npos) << deep;
    EXPECT_NE(run("error(setmetatable({}, {__tostring = function(e) error(e) end}))"), "ok");
}

TEST_F(Limits, EndScriptsThatAllocate) {
    state->setLimits({.memory = 4U << 20U});
    for (char const* const greedy :
         {"local t = {} for i = 1, 1e9 do t[i] = {i} end", "local s = 'x' while true do s = s .. s end",
          "string.rep('x', 1e8)", "local t = {} for i = 1, 1e9 do t[i] = coroutine.create(function() end) end"}) {
        EXPECT_NE(run("error('traced')"), "ok");
        auto const error = state->run(greedy, "=test");
        ASSERT_TRUE(error) << greedy;
        EXPECT_EQ(error->message(), "memory budget spent") << greedy;
        EXPECT_TRUE(error->trace().view().find("error") == std::string_view::npos) << "that of another error";
        EXPECT_EQ(run("error('not enough memory', 0)"), "not enough memory") << greedy;
        EXPECT_EQ(run("collectgarbage() for i = 1, 100 do local s = string.rep('x', i) end"), "ok") << greedy;
    }
    // Garbage does not count, however much there is.
    succeed("for i = 1, 300000 do local t = {i, i, i} end");
    succeed("local s for i = 1, 300 do s = string.rep('x', 400000 + i) end");
}

TEST_F(Limits, InterruptsFromOtherThreadsEndTheScript) {
    std::thread interrupter([this] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        state->interrupt();
    });
    EXPECT_EQ(run("while true do pcall(function() while true do end end) end"), "test:1: interrupted");
    interrupter.join();
    state->interrupt();  // nothing runs
    std::thread later([this] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        state->interrupt();
    });
    EXPECT_TRUE(
        run("local function tree() coroutine.wrap(tree)() end while true do pcall(tree) end").ends_with("interrupted"));
    later.join();
    succeed("for i = 1, 100000 do end");
}

TEST_F(Limits, EndForGoodWhenNativeCodeSaysSo) {
    nxRFL::ExposeFunction(database, "farm::tools").add("leave", [this] {
        state->end();
        throw nxRFL::Exception("the script leaves");
    });
    int finalized = 0;
    nxRFL::ExposeFunction(database, "farm::tools").add("count", [&finalized] { ++finalized; });
    for (char const* const stubborn : {
             "leave()",
             "pcall(leave)",
             "xpcall(leave, function() after = 1 end)",
             "coroutine.resume(coroutine.create(function() leave() end))",
             "pcall(coroutine.wrap(function() leave() end))",
             "load(function() leave() end)",
             "load(coroutine.wrap(function() leave() end))",
             "pcall(farm.tools.apply, leave, {})",
             "pcall(table.sort, {3, 1, 2}, function() leave() end)",
             "pcall(string.gsub, 'a', 'a', function() leave() end)",
             "getmetatable('').__index = function() leave() end pcall(function() return ('').x end)",
         }) {
        state = std::make_unique<nxLC::State>(database);
        succeed(R"(leave = farm.tools.leave
            local count = farm.tools.count
            kept = newproxy(true)
            getmetatable(kept).__gc = function() count() end
            newproxy(kept) collectgarbage())");
        EXPECT_EQ(std::exchange(finalized, 0), 1);
        EXPECT_NE(run(std::string(stubborn) + " after = 1"), "ok") << stubborn;
        EXPECT_EQ(run("after = 1"), "the script has ended") << stubborn;
        lua_getglobal(state->get(), "after");
        EXPECT_TRUE(lua_isnil(state->get(), -1)) << stubborn;
        lua_pop(state->get(), 1);
        state.reset();
        EXPECT_EQ(finalized, 0) << stubborn;
    }
}

TEST_F(Limits, WorkInStatesOfTheHost) {
    lua_State* const L = luaL_newstate();
    luaL_openlibs(L);
    auto& data = nxLC::ReflectionData::bind(L, database);
    EXPECT_EQ(&nxLC::ReflectionData::bind(L, database), &data);
    data.setLimits({.instructions = 10000});
    // Calls that the host makes directly are not limited; calls through native code are.
    EXPECT_EQ(luaL_dostring(L, "for i = 1, 100000 do end return farm.Animal.make('Rex').name"), 0);
    EXPECT_STREQ(lua_tostring(L, -1), "Rex");
    EXPECT_NE(luaL_dostring(L, "farm.tools.apply(function() while true do end end, {})"), 0);
    EXPECT_TRUE(std::string(lua_tostring(L, -1)).ends_with(":1: instruction budget spent")) << lua_tostring(L, -1);
    lua_close(L);
}

/// Owns a given number of bytes.
class Sack : public ur::ReferenceCount {
public:
    void chargeTo(std::shared_ptr<ur::Account> const& account) {
        if (!charge_) charge_ = ur::Charge(account, 0);
    }
    void fill(double bytes) { charge_.add(static_cast<std::size_t>(bytes)); }
    ur::Reference<Sack> held;

private:
    ur::Charge charge_;
    farm::Token token_;
};

struct NativeMemory : Farm {
    NativeMemory() {
        nxRFL::ExposeClass<Sack>(database, "farm::Sack")
            .addMethod("fill", &Sack::fill)
            .addMethod("hold", [](Sack& self, ur::Reference<Sack> const& other) { self.held = other; })
            .addStaticMethod("make", [] { return ur::make<Sack>(); });
        state->reflection().publish();
    }
    std::size_t native() const { return database.account()->native(); }
};

TEST_F(NativeMemory, CountsWithTheScriptsOwn) {
    state->setLimits({.memory = 4'000'000});
    EXPECT_EQ(run("s = farm.Sack.make() s:fill(5000000)"), "test:1: memory budget spent");
    EXPECT_EQ(run("s:fill(3000000) string.rep('x', 2000000)"), "memory budget spent");
    succeed("local caught = select(2, pcall(s.fill, s, 9000000)) assert(caught:find('budget spent'), caught)");
    succeed("s:fill(3900000)");  // each call may add that much
    state->setLimits({.memory = 4'000'000, .totalMemory = 8'000'000});
    EXPECT_EQ(run("s:fill(2000000)"), "test:1: memory budget spent");
    EXPECT_EQ(run("string.rep('x', 1000000)"), "memory budget spent");
    succeed("s:hold(farm.Sack.make()) s:hold(nil) s = nil collectgarbage()");
    succeed("s = farm.Sack.make() s:fill(3900000)");
    state.reset();
    EXPECT_EQ(native(), 0U);
    EXPECT_EQ(database.account()->used(), 0U);
}

TEST_F(NativeMemory, GarbageGoesBeforeAnythingIsRefused) {
    for (nxLC::Limits const limits : {nxLC::Limits{.memory = 5'000'000}, nxLC::Limits{.totalMemory = 6'000'000}}) {
        state->setLimits(limits);
        succeed("for i = 1, 2000 do farm.Sack.make():fill(2000000) end");
        succeed("for i = 1, 20000 do local s = farm.Sack.make() s:fill(100000) end");
        // Held only through other garbage, while most of the memory is in use all the time.
        succeed(
            "kept = farm.Sack.make() kept:fill(4000000) "
            "for i = 1, 2000 do local s, t = farm.Sack.make(), farm.Sack.make() s:fill(100000) s:hold(t) end");
        succeed("for i = 1, 100 do coroutine.wrap(function() farm.Sack.make():fill(900000) end)() end kept = nil");
    }
}

TEST_F(NativeMemory, PacesTheCollectorWithoutAnyLimit) {
    succeed("for i = 1, 3000 do farm.Sack.make():fill(1000000) end");
    EXPECT_LT(native(), 4'000'000U);
    succeed(
        "local kept = {} for i = 1, 300 do kept[i] = farm.Sack.make() kept[i]:fill(1000000) end "
        "for i = 1, 3000 do farm.Sack.make():fill(1000000) end");
    EXPECT_LT(native(), 700'000'000U);
}

TEST_F(NativeMemory, IsChargedForTablesAndFunctionsThatNativeCodeKeeps) {
    state->setLimits({.totalMemory = 3'000'000});
    auto const animal = giveAnimal("rex");
    EXPECT_EQ(run("local t, s = {}, ('x'):rep(100000) for i = 1, 1000 do t[i] = s end farm.tools.echo(t)"),
              "test:1: memory budget spent");
    nxRFL::Stack results;
    auto const error =
        state->run("local t, s = {}, ('x'):rep(100000) for i = 1, 1000 do t[i] = s end return t", "=test", {}, results);
    EXPECT_EQ(error ? error->message() : "ok", "memory budget spent");
    results.clear();
    ur::vector<ur::Reference<nxRFL::Function>> kept;
    nxRFL::ExposeFunction(database, "farm::tools").add("keep", [&](ur::Reference<nxRFL::Function> const& function) {
        kept.push_back(function);
    });
    state->reflection().publish();
    EXPECT_TRUE(run("local f = function() end while true do farm.tools.keep(f) end").ends_with("memory budget spent"));
    EXPECT_GT(kept.size(), 3000U);
    kept.clear();
    succeed("for i = 1, 1000 do farm.tools.keep(print) end");
    kept.clear();
}

struct Sandbox : Farm {
    Sandbox() : Farm(nxLC::Library::sandboxed) {}
};

TEST_F(Sandbox, HasNoFilesProcessesAndLoading) {
    succeed(R"(
        for _, name in ipairs{"io", "package", "debug", "require", "module", "dofile", "loadfile", "load", "loadstring",
                              "newproxy"} do
            assert(_G[name] == nil, name)
        end
        local left = {}
        for name in pairs(os) do left[#left + 1] = name end
        table.sort(left)
        assert(table.concat(left, " ") == "clock date difftime time")
        assert(not string.dump and not string.gfind)
        assert(("abc"):find("b") == 2 and ("abc"):gsub("%w", "x") == "xxx" and farm.Animal.make("Rex").name == "Rex"))");
    EXPECT_EQ(run("farm.Animal.make('Rex'):fail('exception')"), "test:1: Rex is tired");
    EXPECT_NE(state->run("farm.Animal.make('Rex'):fail('exception')", "=test")->trace(), "");
    EXPECT_EQ(run("\033Lua"), "a sandbox takes no compiled script");
}

TEST_F(Sandbox, BoundsPatterns) {
    EXPECT_EQ(run("string.find(string.rep('a', 400000), string.rep('a?', 200000))"), "test:1: the pattern is too long");
    EXPECT_EQ(run("string.gsub('a', string.rep('a?', 200000), 'b', 1)"), "test:1: the pattern is too long");
    succeed("assert(string.find(string.rep('a', 40000), string.rep('a', 20000), 1, true) == 1)");
    succeed("assert(string.find(string.rep('a', 5000), string.rep('a?', 4999)))");
}

TEST_F(Sandbox, RefusesAtOnceWhatLibrariesWouldTakeForEver) {
    // Lua finds the length by doubling: it returns the largest.
    succeed("vast = {} for k = 28, 0, -1 do vast[2 ^ k] = 1 end assert(#vast == 2 ^ 28)");
    for (std::string const refused :
         {"unpack({}, 0, 2^31 - 1)", "unpack({}, -2^31, 2^31 - 1)", "unpack({}, -2^31 + 1)", "unpack({}, 1, 1e300)",
          "unpack({}, 1, 0/0)", "unpack({}, -2147483647, 4e9)", "unpack({}, 2^32 + 1, 2^32 + 2)",
          "unpack({}, 1, 100000)", "string.rep('', 2^31 - 1)", "string.rep('xy', 2^30)", "string.rep('x', 1/0)",
          "table.insert(vast, 1, 1)", "table.remove(vast, 1)", "table.remove(vast, 2^32 + 1)",
          "table.insert({}, 2^31, 1)", "table.insert({}, -2^31, 1)", "table.insert({}, -1, 1)"}) {
        auto const begun = std::chrono::steady_clock::now();
        EXPECT_NE(run(refused), "ok") << refused;
        EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::seconds(1)) << refused;
        succeed("assert(not pcall(function() " + refused + " end))");
    }
    succeed(R"(
        assert(select("#", unpack({}, 1, 5000)) == 5000 and select("#", unpack({1, 2, 3})) == 3 and unpack({1, 2}, 2) == 2)
        assert(select("#", unpack({}, 2)) == 0 and select("#", unpack({}, 5, -2^31)) == 0)
        assert(select("#", unpack({}, -2147483647, -4e9)) == 0)
        assert(string.rep("ab", 3) == "ababab" and string.rep("ab", -1) == "" and ("x"):rep("2") == "xx")
        local t = {1, 2}
        table.insert(t, 3) table.insert(t, 1, 0) table.insert(t, 7, 7)
        assert(table.concat(t, ",", 1, 4) == "0,1,2,3" and t[7] == 7)
        assert(table.remove(t, 1) == 0 and table.remove({1, 2}) == 2 and table.remove({1}, 9) == nil and table.remove({1}, -1) == nil))");
    EXPECT_EQ(run("table.insert(1, 2)"), "test:1: bad argument #1 to 'insert' (table expected, got number)");
    nxLC::State everything(database);
    EXPECT_TRUE(everything.run("unpack({}, 0, 2^31 - 1)", "=test"));
}

TEST_F(Sandbox, CountsTheElementsThatLibrariesMove) {
    state->setLimits({.instructions = 2'000'000});
    succeed("long = {} for i = 1, 100000 do long[i] = i end table.remove(long, 1)");
    succeed("for i = 1, 10 do table.insert(long, 1, i) end");
    EXPECT_EQ(run("for i = 1, 100 do table.insert(long, 1, i) end"), "test:1: instruction budget spent");
}

TEST_F(Sandbox, CountsTheBytesThatLibrariesHandle) {
    std::string const data =
        "local text, list, objects = ('x'):rep(2^17), {}, {} "
        "for i = 1, 2^12 do list[i] = i * 7919 % 1000 objects[i] = {} end ";
    for (char const* const work :
         {"string.rep('x', 2^20)", "text:find('y')", "table.concat(list)", "unpack(list, 1, 4000)",
          "table.foreachi(list, math.randomseed)", "table.foreach(list, rawequal)", "table.maxn(list)",
          "tonumber(text)", "text:gmatch('y')", "text:gsub('y', 'z')", "table.sort(list)", "collectgarbage()",
          "collectgarbage('step', 10000)", "farm.tools.echo(text)", "farm.tools.echo({text})"}) {
        state->setLimits({.instructions = 2'000'000});
        succeed(data + "for i = 1, 5 do " + work + " end");
        EXPECT_TRUE(run(data + "while true do pcall(function() " + work + " end) end").ends_with("budget spent"))
            << work;
        EXPECT_EQ(run("local t = {} for i = 1, 100000 do t[i] = i end"), "ok") << "the state still works";
    }
    state->setLimits({.instructions = 1'000'000});
    EXPECT_EQ(run("string.rep('x', 2^25)"), "instruction budget spent") << "refused as memory, with the true reason";
    succeed("collectgarbage('count') collectgarbage('stop') collectgarbage('restart')");
    EXPECT_EQ(run("collectgarbage('setpause', 0)"), "test:1: a sandbox does not set the collector's pace");
    EXPECT_NE(run("collectgarbage('setstepmul', 1e9)"), "ok");
    succeed("for i = 1, 5000 do assert(('x'):rep(1000):find('x')) end");
}

TEST_F(Sandbox, CountsTheProcessorsTimeOfNativeFunctions) {
    nxRFL::ExposeFunction(database, "farm::tools").add("work", [] {
        auto const end = std::chrono::steady_clock::now() + std::chrono::milliseconds(1);
        while (std::chrono::steady_clock::now() < end) continue;
    });
    nxRFL::ExposeFunction(database, "farm::tools").add("sleep", [] {
        std::this_thread::sleep_for(std::chrono::milliseconds(3));
    });
    state->reflection().publish();
    state->setLimits({.instructions = 200'000});
    EXPECT_TRUE(run("while true do pcall(farm.tools.work) end").ends_with("budget spent"));
    EXPECT_TRUE(run("local n = 0 while n < 10000 do n = n + 1 farm.tools.work() end").ends_with("budget spent"));
    succeed("for i = 1, 100 do farm.tools.sleep() end");
}

/// An order of numbers for which Lua's sorting compares each with all others.
char const* const slowest = R"(
    local function slowest(count)
        local place, list, low, value = {}, {}, 1, 1
        for i = 1, count do place[i] = i end
        while low + 3 < count do
            local middle = math.floor((low + count) / 2)
            list[place[low]], list[place[middle]], value = value, value + 1, value + 2
            place[middle], place[count - 1] = place[count - 1], place[middle]
            place[count - 1], place[low + 1] = place[low + 1], place[count - 1]
            low = low + 2
        end
        for i = low, count do list[place[i]] = value end
        return list
    end )";

TEST_F(Sandbox, BoundsCompiling) {
    EXPECT_EQ(run(std::string(600000, ' ')), "a sandbox takes no script of more than 512 KiB");
    succeed("local x = '" + std::string(500000, 'x') + "'");
    state->setLimits({.memory = 1'000'000});
    std::string nested;
    for (int i = 0; i < 20000; ++i) nested += "local f = function() end ";
    EXPECT_EQ(run("do " + nested.substr(0, 190 * 25) + " end"), "ok");
    std::string blocks;
    for (int i = 0; i < 100; ++i) blocks += "do " + nested.substr(0, 190 * 25) + " end ";
    EXPECT_EQ(run(blocks), "memory budget spent");
}

TEST_F(Sandbox, SortsWithinItsBudgetAndStopsInBetween) {
    succeed("local t = {3, 1, 2} table.sort(t) assert(table.concat(t, ',') == '1,2,3')");
    EXPECT_NE(run("table.sort({1, 'x', 2})").find("attempt to compare"), std::string::npos);
    EXPECT_EQ(run("table.sort(1)"), "test:1: bad argument #1 to 'sort' (table expected, got number)");
    state->setLimits({.instructions = 20'000'000});
    EXPECT_TRUE(run(std::string(slowest) + "table.sort(slowest(200000))").ends_with("instruction budget spent"));
    state->setLimits({});
    std::thread interrupter([this] {
        std::this_thread::sleep_for(std::chrono::milliseconds(500));
        state->interrupt();
    });
    EXPECT_TRUE(run(std::string(slowest) + "table.sort(slowest(100000))").ends_with("interrupted"));
    interrupter.join();
}

}  // namespace
