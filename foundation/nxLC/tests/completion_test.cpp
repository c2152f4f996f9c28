// Tests completions of unfinished lines.
#include "foundation/nxLC/completion.h"

#include "foundation/nxLC/tests/Farm.h"

namespace {

struct Completions : farm::Farm {
    /// The part of the line that stays, and the possible names.
    std::string of(std::string_view line) {
        auto const [begin, names] = nxLC::completions(state->get(), line);
        std::string text(line.substr(0, begin));
        for (auto const& name : names) text.append("|").append(name.view());
        return text;
    }
};

TEST_F(Completions, FollowTablesObjectsAndTypesOfProperties) {
    succeed("rex, box = farm.Animal.make('Rex'), {lid = 1, ['no name'] = 2, open = print, 3}");
    succeed("azAZ_09 = {azAZ_09 = 1, ['`'] = 1, ['{'] = 1, ['@'] = 1, ['['] = 1, ['0a'] = 1, ['/'] = 1, [':'] = 1}");
    for (auto const& [line, proposed] : std::initializer_list<std::pair<char const*, char const*>>{
             {"fa", "|farm"},
             {"print(farm.A", "print(farm.|Animal"},
             {"x = farm.", "x = farm.|Animal|Barn|Duck|Swimmer|tools"},
             {"farm.Duck.", "farm.Duck.|make"},
             {"farm.tools.n", "farm.tools.|nameOf"},
             {"rex.", "rex.|friend|legs|name|weight"},
             {"rex:f", "rex:|fail|feed"},
             {"rex.friend.friend:m", "rex.friend.friend:|meals"},
             {"box.", "box.|lid|open"},
             {"box:", "box:|open"},
             {"azAZ_09.", "azAZ_09.|azAZ_09"},
             {"rex.name.", "rex.name."},
             {"rex.meals.x", "rex.meals."},
             {"no.such.thing", "no.such."},
             {"rex:call('x').n", "rex:call('x').n"},
         }) {
        EXPECT_EQ(of(line), proposed);
    }
    EXPECT_TRUE(of("").starts_with("|_G|"));
    EXPECT_EQ(lua_gettop(state->get()), 0);
}

TEST_F(Completions, CallNothing) {
    succeed("t = setmetatable({}, {__index = error}) setmetatable(_G, {__index = error})");
    EXPECT_EQ(of("t.a.b"), "t.a.");
    EXPECT_EQ(of("unknown.b"), "unknown.");
    lua_State* const plain = luaL_newstate();
    EXPECT_TRUE(nxLC::completions(plain, "a.b").names.empty());
    lua_close(plain);
}

}  // namespace
