// Tests native classes and objects as scripts see them.
#include <cstring>
#include <map>
#include <optional>

#include "foundation/nxLC/tests/Farm.h"

namespace {

using namespace nxRFL;
using farm::Animal;
using farm::Barn;
using farm::CString;

using Objects = farm::Farm;

TEST_F(Objects, ClassesAndFunctionsAreGlobalTables) {
    succeed(R"(
        assert(_G["farm::Animal"] == farm.Animal and _G["farm::tools"] == farm.tools)
        assert(tostring(farm.Animal) == "class farm::Animal")
        assert(getmetatable(farm.Animal) == "nxRFL::Class")
        assert(farm.tools.nameOf(farm.Duck) == "farm::Duck" and farm.tools.nameOf(nil) == "none")
        assert(nxRFL.Stack and nxRFL.Class))");
    EXPECT_EQ(run("farm.tools.nameOf({})"),
              "test:1: farm::tools.nameOf: argument 1 must be nxRFL::Class, but is array");
}

TEST_F(Objects, HaveMethodsPropertiesAndIterators) {
    succeed(R"(
        local rex = farm.Animal.make("Rex")
        assert(rex.name == "Rex" and rex.weight == 1 and rex.legs == 4 and rex.friend == nil)
        rex.name, rex.weight = "Max", 7.5
        assert(rex.name == "Max" and rex.weight == 7.5 and not pcall(function() return rex.nothing end) and rex[1] == nil)
        rex:feed("meat", 2) rex:feed("bone", 1) rex:feed("meat", 1)
        local seen = ""
        for food, amount in rex:meals() do seen = seen .. food .. amount .. " " end
        assert(seen == "bone1 meat3 ", seen)
        for _ in farm.Animal.make("Hungry"):meals() do error("nothing is there") end
        local walk
        local _, wrong = pcall(rex.meals, 5)
        assert(wrong:find("farm::Animal"), wrong)
        do walk = farm.Duck.make(false):meals() end
        collectgarbage()
        assert(walk() == nil and walk() == nil))");
}

/// Has an entry under any name.
struct Shelf : ur::ReferenceCount {
    std::map<CString, double> entries;
};
struct BigShelf : Shelf {};

TEST(OtherNames, BelongToObjectsWhereTheClassAndItsBasesHaveNoMember) {
    Database database;
    ExposeClass<Shelf>(database, "Shelf")
        .addMethod("count", [](Shelf& self) { return self.entries.size(); })
        .addOtherNames(
            [](Shelf& self, CString const& name) {
                auto const found = self.entries.find(name);
                return found == self.entries.end() ? std::nullopt : std::optional(found->second);
            },
            [](Shelf& self, CString const& name, double value) { self.entries[name] = value; });
    ExposeClass<BigShelf>(database, "BigShelf")
        .addBase<Shelf>()
        .addStaticMethod("make", [] { return ur::make<BigShelf>(); })
        .addProperty("size", [](BigShelf&) { return 2; });
    nxLC::State state(database, nxLC::Library::everything);
    std::pair<std::string, std::string> const rows[] = {
        {"assert(shelf.corn == nil and shelf[1] == nil and shelf.size == 2) shelf.corn, shelf.rye = 3, 5", ""},
        {"shelf.corn = 7 assert(shelf.corn == 7 and shelf.rye == nil and shelf:count() == 1)", ""},
        {"shelf.corn = 'much'", "test:1: Shelf.NAME: argument 2 (value) must be number, but is string"},
        {"shelf.size = 1", "test:1: BigShelf.size is read-only"},
        {"shelf.count = 1", "test:1: BigShelf has no property count"},
        {"shelf[1] = 1", "test:1: BigShelf has no property number"},
    };
    for (auto const& [script, message] : rows) {
        auto const error = state.run("local shelf = BigShelf.make() " + script, "=test");
        EXPECT_EQ(error ? std::string(error->message().view()) : "", message) << script;
    }
}

TEST_F(Objects, RefuseWhatTheyDoNotHave) {
    std::pair<std::string, std::string> const rows[] = {
        {"rex.legs = 5", "farm::Animal.legs is read-only"},
        {"rex.feed = 5", "farm::Animal has no property feed"},
        {"rex.wieght = 5", "farm::Animal has no property wieght; do you mean weight?"},
        {"print(rex.wieght)", "farm::Animal has no member wieght; do you mean weight?"},
        {"rex:fed('meat', 1)", "farm::Animal has no member fed; do you mean feed?"},
        {"farm.Duck.mkae()", "farm::Duck has no member mkae; do you mean make?"},
        {"rex:colour()", "farm::Animal has no member colour"},
        {"rex[1] = 2", "farm::Animal has no property number"},
        {"rex.weight = 'heavy'", "farm::Animal.weight: argument 1 must be number, but is string"},
        {"rex.feed('meat', 1)", "farm::Animal.feed must be called on an object: object:name(...)"},
        {"rex.friend = farm.Barn", "farm::Animal.friend: argument 1 must be farm::Animal, but is nxRFL::Class"},
        {"rex.feed(io.stdout, 'meat', 1)", "farm::Animal.feed: the object must not be a userdata"},
    };
    for (auto const& [script, message] : rows) {
        EXPECT_EQ(run("local rex = farm.Animal.make('Rex') " + script), "test:1: " + message);
    }
    Barn barn;
    give("barn", &barn);  // its class has no properties
    EXPECT_EQ(run("barn:coumt()"), "test:1: farm::Barn has no member coumt; do you mean count?");
    succeed("assert(barn[1] == nil)");
}

TEST_F(Objects, AreOneUserdataEach) {
    auto const rex = ur::make<Animal>("Rex");
    give("a", rex);
    give("b", rex);
    give("c", ur::make<Animal>("Rex"));
    succeed(R"(
        assert(rawequal(a, b) and a ~= c and a ~= 5)
        a.friend = c
        assert(rawequal(a.friend, c))
        local text = tostring(a)
        assert(text:match("^farm::Animal: %w+$") and text == tostring(b) and text ~= tostring(c))
        assert(getmetatable(a) == "farm::Animal"))");
    EXPECT_EQ(state->reflection().getObjectTableSize(state->get()), 2);
    EXPECT_EQ(rex->referenceCount(), 2);
    rex->friendly = nullptr;
    succeed("a, b, c = nil collectgarbage()");
    EXPECT_EQ(rex->referenceCount(), 1);
    EXPECT_EQ(Animal::alive, 1);
    EXPECT_EQ(state->reflection().getObjectTableSize(state->get()), 0);
}

TEST_F(Objects, AreOfTheNearestKnownClassAndConvertToTheirBases) {
    succeed(R"(
        for _, secret in ipairs{false, true} do
            local duck = farm.Duck.make(secret)
            assert(tostring(duck):match("^farm::Duck"))
            assert(duck.depth == 3 and duck.legs == 4 and farm.tools.depthOf(duck) == 3)
            assert(rawequal(duck:asSwimmer(), duck))
            duck.friend = duck
            assert(rawequal(duck.friend, duck))
            duck.friend = nil
        end)");
    EXPECT_EQ(run("farm.tools.depthOf(farm.Animal.make('Rex'))"),
              "test:1: farm::tools.depthOf: argument 1 must be farm::Swimmer, but is farm::Animal");
}

TEST_F(Objects, BelongToScriptsOnlyWhenGiven) {
    lua_State* const L = state->get();
    Class const& barns = *database.getClass("farm::Barn");
    Barn own;
    give("mine", Object(&own, barns));
    state->reflection().pushObject(L, Object(new Barn, barns));
    lua_setglobal(L, "given");
    state->reflection().pushObject(L, Object());
    EXPECT_TRUE(lua_isnil(L, -1));
    lua_pop(L, 1);
    succeed("mine:add(farm.Animal.make('Rex')) given:add(farm.Animal.make('Max'))");
    EXPECT_EQ(number("return given:count()"), 1);
    succeed("mine, given = nil collectgarbage()");
    EXPECT_EQ(Barn::alive, 1);
    EXPECT_EQ(own.animals.size(), 1U);
    own.animals.clear();

    // First shared, then given: one userdata, which owns from then on. The counts balance either way.
    auto* const later = new Barn;
    give("later", Object(later, barns));
    state->reflection().pushObject(L, Object(later, barns));
    lua_setglobal(L, "again");
    state->reflection().pushObject(L, Object::give(later, barns));  // it owns the object already
    lua_pop(L, 1);
    succeed("assert(rawequal(later, again))");
    EXPECT_EQ(Barn::alive, 2);
    auto const rex = giveAnimal("rex");
    for (int i = 0; i < 2; ++i) {
        state->reflection().pushObject(L, Object(rex.get(), *database.getClass("farm::Animal")));
        lua_pop(L, 1);
    }
    EXPECT_EQ(rex->referenceCount(), 2);
    succeed("later, again, rex = nil collectgarbage()");
    EXPECT_EQ(Barn::alive, 1);
    EXPECT_EQ(rex->referenceCount(), 1);
}

TEST_F(Objects, OfStacksLiveAsLongAsTheyAreStored) {
    auto stack = std::make_unique<Stack>();
    Writer(*stack).writeObject(Object(ur::make<Animal>("Rex").get(), *database.getClass("farm::Animal")));
    state->reflection().pushObject(state->get(), Object(stack.release(), *database.getClass("nxRFL::Stack")));
    lua_setglobal(state->get(), "stack");
    Stack stored;
    ASSERT_FALSE(state->run("return stack, {stack}", "=test", {}, stored));
    succeed("stack = nil collectgarbage()");
    EXPECT_EQ(Animal::alive, 1);
    Stack none;
    ASSERT_FALSE(state->run("stack = ...", "=test", stored, none));
    stored.clear();
    EXPECT_EQ(Animal::alive, 1);
    succeed("stack = nil collectgarbage()");
    EXPECT_EQ(Animal::alive, 0);
}

TEST_F(Objects, AreGoneAfterTheirFinalizers) {
    succeed(R"(
        (function()
            local proxy = newproxy(true)            -- finalized after the object, which is newer
            local rex = farm.Animal.make("Rex")
            getmetatable(proxy).__gc = function()
                assert(tostring(rex):match("^farm::Animal: "))
                message = select(2, pcall(function() return rex.name end))
                same = rex == rex and rex ~= farm.Animal.make("Max")
            end
        end)()
        collectgarbage())");
    succeed("assert(same and message:match('the object must not be a farm::Animal that has gone$'), message)");
}

TEST_F(Objects, MadeByFinalizersOfAClosingStateAreGivenUp) {
    succeed(R"(
        proxy = newproxy(true)
        getmetatable(proxy).__gc = function() late = {farm.Animal.make("late"), farm.Duck.make(true)} end)");
    state.reset();
    EXPECT_EQ(Animal::alive, 0);
}

TEST_F(Objects, AreNotConfusedWithLaterOnesAtTheirAddress) {
    lua_State* const L = state->get();
    succeed(R"(
        (function()
            local proxy = newproxy(true)            -- finalized after the object, which is newer
            local rex = farm.Animal.make("Rex")
            getmetatable(proxy).__gc = function() pcall(function() return rex.name end) end
        end)()
        others, depthOf = {}, farm.tools.depthOf)");
    lua_getglobal(L, "others");
    for (int i = 0; i < 3; ++i) lua_gc(L, LUA_GCCOLLECT, 0);
    for (int i = 1; i <= 200; ++i) {
        std::memset(lua_newuserdata(L, 3 * sizeof(void*)), 1, 3 * sizeof(void*));  // the size of an object's userdata
        lua_rawseti(L, -2, i);
    }
    lua_pop(L, 1);
    succeed("for _, other in ipairs(others) do assert(not pcall(depthOf, other)) end");
}

TEST_F(Objects, AppearWhenTheyAreRegisteredLater) {
    struct Late {
        int value = 4;
    };
    ExposeClass<Late>(database, "farm::later::Late").addProperty("value", [](Late& late) { return late.value; });
    ExposeClass<Animal>(database, "farm::Animal").addMethod("run", [](Animal&) { return true; });
    Late late;
    give("late", &late);
    succeed("assert(late.value == 4) rex = farm.Animal.make('Rex') assert(not pcall(function() return rex.run end))");
    nxLC::ReflectionData::bind(state->get(), database);
    succeed("assert(rex:run() and farm.later.Late)");
}

TEST_F(Objects, AskTheHookAboutAssignments) {
    lua_State* const L = state->get();
    succeed(R"(
        log = ""
        function hook(object, name, value)
            log = log .. tostring(object):match("^[%w:]+%w") .. "." .. name .. "=" .. tostring(value) .. ";"
            object.weight = 9
            if value == "bad" then error("not that", 0) end
        end)");
    lua_getglobal(L, "hook");
    state->reflection().setPropertyAssignmentHook(L, lua_gettop(L));
    lua_pop(L, 1);
    succeed(R"(
        local rex = farm.Animal.make("Rex")
        rex.name = "Max"
        assert(rex.weight == 9 and rex.name == "Max")
        assert(select(2, pcall(function() rex.name = "bad" end)) == "not that")
        assert(rex.name == "Max")
        assert(log == "farm::Animal.name=Max;farm::Animal.name=bad;", log))");
    state->reflection().clearPropertyAssignmentHook(L);
    succeed("farm.Animal.make('Rex').name = 'bad' assert(#log < 60)");
}

TEST_F(Objects, FunctionsOfMetatablesBearAnyArguments) {
    succeed(R"(
        local rex = farm.Animal.make("Rex")
        for _, value in pairs(debug.getmetatable(rex)) do
            if type(value) == "function" then
                for _, bad in ipairs{5, "x", {}, io.stdout, print, farm.Animal} do
                    pcall(value, bad, "name", 1)
                    pcall(value, bad)
                    pcall(value, rex, bad, bad)
                end
                pcall(value)
            end
        end
        for name, value in pairs(farm.Animal) do pcall(value) pcall(value, rex) end
        local given = {}
        for i = 1, 20 do                            -- which may lie where those given up lay
            given[i] = farm.Animal.make("given up")
            debug.getmetatable(given[i]).__gc(given[i])
            rex = farm.Animal.make("Rex")
            assert(rex.name == "Rex" and rex ~= given[i])
        end
        local walk = rex:meals()
        assert(not pcall(rex.meals) and not pcall(rex.meals, farm.Barn) and walk(5, {}) == nil))");
}

}  // namespace
