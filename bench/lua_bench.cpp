// Lua: calls and properties of a native class, tables and trees, JSON into tables.
#include <iterator>
#include <lua.hpp>
#include <memory>
#include <string>

#include "bench/Gauge.h"
#include "bench/inputs.h"
#include "bench/rows.h"
#include "foundation/nxLC/State.h"
#include "foundation/nxRFL/ExposeClass.h"
#include "plst/json.h"
#include "script/luaFunctions.h"
#include "script/luaItems.h"

extern "C" int luaopen_gauge(lua_State* state);  // made by SWIG of Gauge.i

namespace bench {
namespace {

char const* const ownName = "nxLC";
char const* const jsonName = "lua-cjson";

/// A state as a host without our library has it.
class PlainState {
public:
    PlainState() { luaL_openlibs(state_); }
    PlainState(PlainState const&) = delete;
    PlainState& operator=(PlainState const&) = delete;
    ~PlainState() { lua_close(state_); }
    [[nodiscard]] lua_State* get() const { return state_; }

private:
    lua_State* state_ = luaL_newstate();
};

/// A state that knows our classes and functions.
struct OurState {
    OurState() : state(database) {
        lua_newtable(get());
        lua_setglobal(get(), "nx");
        nxSupport::InitializeLuaMsg message(nxSupport::InitializeLuaMsg::Application, get());
        nxSupport::registerLuaFunctions(message);
    }
    [[nodiscard]] lua_State* get() const { return state.get(); }

    nxRFL::Database database;
    nxLC::State state;
    Gauge gauge;
};

void check(lua_State* state, int status) {
    if (status != 0) std::fprintf(stderr, "nxbench: %s\n", lua_tostring(state, -1));
}

void define(lua_State* state, std::string const& script) { check(state, luaL_dostring(state, script.c_str())); }

/// Calls the global function `run` with a count.
double timeOfRun(lua_State* state, int count) {
    lua_getglobal(state, "run");
    lua_pushinteger(state, count);
    return seconds([&] { check(state, lua_pcall(state, 1, 0, 0)); });
}

// The class, bound by hand as the manual of Lua does it.

Gauge& toGauge(lua_State* state) {
    return *static_cast<Gauge*>(*static_cast<void**>(luaL_checkudata(state, 1, "Gauge")));
}

int addByHand(lua_State* state) {
    lua_pushnumber(state, toGauge(state).add(luaL_checknumber(state, 2), luaL_checknumber(state, 3)));
    return 1;
}

int indexByHand(lua_State* state) {
    std::string_view const key = luaL_checkstring(state, 2);
    if (key == "level") {
        lua_pushnumber(state, toGauge(state).getLevel());
        return 1;
    }
    luaL_getmetatable(state, "Gauge");
    lua_pushvalue(state, 2);
    lua_rawget(state, -2);
    return 1;
}

int assignByHand(lua_State* state) {
    if (std::string_view(luaL_checkstring(state, 2)) != "level") return luaL_error(state, "no such property");
    toGauge(state).setLevel(luaL_checknumber(state, 3));
    return 0;
}

void bindByHand(lua_State* state, Gauge& gauge) {
    constexpr luaL_Reg functions[] = {
        {"add", &addByHand}, {"__index", &indexByHand}, {"__newindex", &assignByHand}, {nullptr, nullptr}};
    *static_cast<void**>(lua_newuserdata(state, sizeof(void*))) = &gauge;
    luaL_newmetatable(state, "Gauge");
    luaL_register(state, nullptr, functions);
    lua_setmetatable(state, -2);
    lua_setglobal(state, "gauge");
}

enum class Peer { swig, byHand };

/// Sides that run `body` on the global `gauge` a million times, in a state of each kind.
Sides users(Peer peer, std::string const& body, int count) {
    std::string const script = "function run(n) local gauge, x = gauge for i = 1, n do " + body + " end end";
    auto const ours = std::make_shared<OurState>();
    nxRFL::ExposeClass<Gauge>(ours->database, "Gauge")
        .addProperty("level", &Gauge::getLevel, &Gauge::setLevel)
        .addMethod("add", &Gauge::add);
    ours->state.reflection().publish();
    ours->state.reflection().pushObject(ours->get(), {&ours->gauge, *ours->database.getClass("Gauge")});
    lua_setglobal(ours->get(), "gauge");
    define(ours->get(), script);

    auto const plain = std::make_shared<PlainState>();
    auto const gauge = std::make_shared<Gauge>();
    if (peer == Peer::byHand) {
        bindByHand(plain->get(), *gauge);
    } else {
        luaopen_gauge(plain->get());
        define(plain->get(), "gauge = gauge.Gauge()");
    }
    define(plain->get(), script);
    return {
        {ownName, [=] { return timeOfRun(ours->get(), count); }},
        {peer == Peer::byHand ? "by hand" : "SWIG", [plain, gauge, count] { return timeOfRun(plain->get(), count); }}};
}

void addCallRows(Suite& suite) {
    struct Use {
        std::string name;
        std::string body;
    };
    int const count = suite.scaled(1000000);
    for (Use const& use : {Use{"lua-method", "x = gauge:add(1, 2)"}, Use{"lua-read", "x = gauge.level"},
                           Use{"lua-write", "gauge.level = i"}}) {
        suite.compare(use.name + "/swig", 0.6, [&] { return users(Peer::swig, use.body, count); });
        suite.compare(use.name + "/hand", 1.6, [&] { return users(Peer::byHand, use.body, count); });
    }
}

/// A state with cjson, and on its stack the encoder at 1 and the decoder at 2.
std::shared_ptr<PlainState> jsonState() {
    auto state = std::make_shared<PlainState>();
    define(state->get(), "local json = require 'cjson' json.decode_max_depth(10000) return json.encode, json.decode");
    return state;
}

/// Tables to trees and back, beside the same by way of a JSON text.
Sides converters(int records) {
    auto const ours = std::make_shared<OurState>();
    auto const peer = jsonState();
    for (lua_State* const state : {ours->get(), peer->get()}) {
        nxSupport::pushPListItem(state, recordTree(records));
        lua_setglobal(state, "records");
    }
    return {{"popPListItem",
             [=] {
                 lua_getglobal(ours->get(), "records");
                 ur::Reference<nxPLST::Item const> tree;
                 double const result = seconds([&] { tree = nxSupport::popPListItem(ours->get(), 1); });
                 lua_pop(ours->get(), 1);
                 return result;
             }},
            {"JSON text", [=] {
                 lua_pushvalue(peer->get(), 1);
                 lua_getglobal(peer->get(), "records");
                 ur::Reference<nxPLST::Item> tree;
                 double const result = seconds([&] {
                     check(peer->get(), lua_pcall(peer->get(), 1, 1, 0));
                     std::size_t size = 0;
                     char const* const text = lua_tolstring(peer->get(), -1, &size);
                     static_cast<void>(nxPLST::convertFromJSON(tree, text, static_cast<unsigned>(size)));
                 });
                 lua_pop(peer->get(), 1);
                 return result;
             }}};
}

Sides pushers(int records) {
    auto const tree = recordTree(records);
    auto const ours = std::make_shared<OurState>();
    auto const peer = jsonState();
    return {{"pushPListItem",
             [=] {
                 lua_gc(ours->get(), LUA_GCCOLLECT, 0);
                 double const result = seconds([&] { nxSupport::pushPListItem(ours->get(), tree); });
                 lua_pop(ours->get(), 1);
                 return result;
             }},
            {"JSON text", [=] {
                 lua_gc(peer->get(), LUA_GCCOLLECT, 0);
                 lua_pushvalue(peer->get(), 2);
                 double const result = seconds([&] {
                     urString::CString text;
                     static_cast<void>(nxPLST::convertToJSON(text, tree));
                     lua_pushlstring(peer->get(), text.data(), text.size());
                     check(peer->get(), lua_pcall(peer->get(), 1, 1, 0));
                 });
                 lua_pop(peer->get(), 1);
                 return result;
             }}};
}

Sides decoders(Document const& document, int count) {
    std::string const script = "function run(n) for i = 1, n do decode(text) end end";
    auto const ours = std::make_shared<OurState>();
    auto const peer = jsonState();
    lua_setglobal(peer->get(), "decode");
    define(ours->get(), "decode = nx.decodeJSON2");
    for (lua_State* const state : {ours->get(), peer->get()}) {
        lua_pushlstring(state, document.text.data(), document.text.size());
        lua_setglobal(state, "text");
        define(state, script);
    }
    return {{"decodeJSON2", [=] { return timeOfRun(ours->get(), count); }},
            {jsonName, [=] { return timeOfRun(peer->get(), count); }}};
}

}  // namespace

void addLuaRows(Suite& suite) {
    addCallRows(suite);
    int const records = suite.scaled(20000);
    suite.compare("lua-table-to-tree", 0.3, [&] { return converters(records); });
    suite.compare("lua-tree-to-table", 0.4, [&] { return pushers(records); });
    for (Document const& document : documents(suite.quick())) {
        suite.compare("lua-decode/" + document.name, 1.0, [&] { return decoders(document, 1); });
    }
}

}  // namespace bench
