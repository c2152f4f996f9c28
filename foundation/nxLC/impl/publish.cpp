// Builds the tables that scripts see.
#include "foundation/nxLC/impl/publish.h"

#include <string_view>

#include "foundation/nxLC/impl/calls.h"
#include "foundation/nxLC/impl/lua.h"
#include "foundation/nxLC/impl/objects.h"

namespace nxLC::impl {

using nxRFL::Class;
using nxRFL::Member;

namespace {

void pushName(lua_State* state, std::string_view name) { lua_pushlstring(state, name.data(), name.size()); }

void pushFunction(Binding& binding, lua_State* state, lua_CFunction function) {
    Binding::pushKept(state, binding.anchor);
    lua_pushcclosure(state, function, 1);
}

void pushCell(Binding& binding, lua_State* state, Member const& member) {
    Binding::pushKept(state, binding.anchor);
    auto const* const anchor = static_cast<Anchor*>(lua_touserdata(state, -1));
    lua_pop(state, 1);
    *static_cast<MemberCell*>(lua_newuserdata(state, sizeof(MemberCell))) = {anchor, &member};
}

void pushMemberFunction(Binding& binding, lua_State* state, Member const& member) {
    pushCell(binding, state, member);
    lua_pushcclosure(state, member.kind == Member::Kind::iterator ? &beginIteration : &callMember, 1);
}

/// Sets the function of a member as a field of the table on top.
void setMemberFunction(Binding& binding, lua_State* state, Member const& member) {
    pushName(state, member.name);
    pushMemberFunction(binding, state, member);
    lua_rawset(state, -3);
}

/// Sets a function as a field of the table on top.
void setFunction(Binding& binding, lua_State* state, char const* name, lua_CFunction function) {
    lua_pushstring(state, name);
    pushFunction(binding, state, function);
    lua_rawset(state, -3);
}

/// Pushes a function whose further upvalues are the value at `table` and the cell of `others`, or nil.
void pushPropertyFunction(Binding& binding, lua_State* state, lua_CFunction function, int table, Member const* others) {
    Binding::pushKept(state, binding.anchor);
    lua_pushvalue(state, table);
    if (others) {
        pushCell(binding, state, *others);
    } else {
        lua_pushnil(state);
    }
    lua_pushcclosure(state, function, 3);
}

/// Fills the table on top with the members of objects: functions, and properties as cells. Members of bases come first,
/// so that the class's own members replace them.
bool fillMembers(Binding& binding, lua_State* state, Class const& objectClass) {
    bool hasProperties = false;
    for (auto link = objectClass.bases().rbegin(); link != objectClass.bases().rend(); ++link)
        hasProperties = fillMembers(binding, state, *link->base) || hasProperties;
    for (Member const& member : objectClass.members()) {
        if (member.kind == Member::Kind::property) {
            pushName(state, member.name);
            pushCell(binding, state, member);
            lua_rawset(state, -3);
            hasProperties = true;
        } else if (member.kind != Member::Kind::staticMethod) {
            setMemberFunction(binding, state, member);
        }
    }
    return hasProperties;
}

void fillStaticMethods(Binding& binding, lua_State* state, Class const& objectClass) {
    for (auto link = objectClass.bases().rbegin(); link != objectClass.bases().rend(); ++link)
        fillStaticMethods(binding, state, *link->base);
    for (Member const& member : objectClass.members()) {
        if (member.kind == Member::Kind::staticMethod) setMemberFunction(binding, state, member);
    }
}

/// Makes a look-up raise when a table with the metatable on top does not have the key.
void setMissingMember(lua_State* state, Class const& objectClass) {
    lua_pushliteral(state, "__index");
    pushName(state, objectClass.name());
    lua_pushcclosure(state, &missMember, 1);
    lua_rawset(state, -3);
}

void failOnMissing(lua_State* state, int members, Class const& objectClass) {
    lua_newtable(state);
    setMissingMember(state, objectClass);
    lua_setmetatable(state, members);
}

/// Updates the metatable on top to the class's current members.
void fillMetatable(Binding& binding, lua_State* state, Class const& objectClass) {
    lua_newtable(state);
    bool const hasProperties = fillMembers(binding, state, objectClass);
    int const members = lua_gettop(state);
    lua_pushliteral(state, "__index");
    Member const* const others = objectClass.otherNames();
    if (hasProperties || others) {
        pushPropertyFunction(binding, state, &indexObject, members, others);
    } else {
        failOnMissing(state, members, objectClass);
        lua_pushvalue(state, members);
    }
    lua_rawset(state, members - 1);
    lua_pushliteral(state, "__newindex");
    pushPropertyFunction(binding, state, &assignProperty, members, others);
    lua_rawset(state, members - 1);
    lua_pop(state, 1);
}

/// Gives the metatable on top its mark, and the name that scripts get instead of it.
void markMetatable(lua_State* state, char const& mark, std::string_view name) {
    pushAddress(state, mark);
    lua_rawseti(state, -2, 1);
    lua_pushliteral(state, "__metatable");
    pushName(state, name);
    lua_rawset(state, -3);
}

void makeMetatable(Binding& binding, lua_State* state, Class const& objectClass) {
    lua_newtable(state);
    markMetatable(state, objectMark, objectClass.name());
    setFunction(binding, state, "__gc", &collectObject);
    setFunction(binding, state, "__eq", &compareObjects);
    setFunction(binding, state, "__tostring", &describeObject);
    fillMetatable(binding, state, objectClass);
}

int describeClass(lua_State* state) {
    Class const* const described = toClass(state, 1);
    if (!described) return luaL_error(state, "a class is expected");
    lua_pushfstring(state, "class %s", described->name().c_str());
    return 1;
}

/// Pushes the global table `name`, whose parts are separated by "::"; creates missing tables.
void pushGlobalTable(lua_State* state, std::string_view name) {
    lua_pushvalue(state, LUA_GLOBALSINDEX);
    for (std::string_view rest = name; !rest.empty();) {
        std::size_t const end = rest.find("::");
        std::string_view const part = rest.substr(0, end);
        rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 2);
        pushName(state, part);
        lua_rawget(state, -2);
        if (!lua_istable(state, -1)) {
            lua_pop(state, 1);
            lua_newtable(state);
            pushName(state, part);
            lua_pushvalue(state, -2);
            lua_rawset(state, -4);
        }
        lua_remove(state, -2);
    }
    pushName(state, name);
    lua_pushvalue(state, -2);
    lua_rawset(state, LUA_GLOBALSINDEX);
}

/// Makes the table on top stand for the class.
void markAsClass(Binding& binding, lua_State* state, Class const& published) {
    lua_newtable(state);
    markMetatable(state, classMark, "nxRFL::Class");
    lua_pushlightuserdata(state, const_cast<Class*>(&published));
    lua_rawseti(state, -2, 2);
    setFunction(binding, state, "__tostring", &describeClass);
    setMissingMember(state, published);
    lua_setmetatable(state, -2);
}

}  // namespace

ClassTables const& tablesOf(Binding& binding, lua_State* state, Class const& objectClass) {
    if (ClassTables const* const known = knownTables(binding, objectClass)) return *known;
    luaL_checkstack(state, 12, "too many values");
    if (binding.classes.size() <= objectClass.index()) binding.classes.resize(objectClass.index() + 1);
    ClassTables& tables = binding.classes[objectClass.index()];
    pushGlobalTable(state, objectClass.name());
    markAsClass(binding, state, objectClass);
    tables.classTable = luaL_ref(state, LUA_REGISTRYINDEX);
    lua_newtable(state);
    Binding::pushKept(state, binding.weakValues);
    lua_setmetatable(state, -2);
    tables.objects = luaL_ref(state, LUA_REGISTRYINDEX);
    makeMetatable(binding, state, objectClass);
    tables.metatable = luaL_ref(state, LUA_REGISTRYINDEX);  // last: from now on the tables are known
    return tables;
}

void pushClass(Binding& binding, lua_State* state, Class const& pushed) {
    Binding::pushKept(state, tablesOf(binding, state, pushed).classTable);
}

void publishAll(Binding& binding, lua_State* state) {
    luaL_checkstack(state, 12, "too many values");
    for (auto const& known : binding.database.classes()) {
        ClassTables const& tables = tablesOf(binding, state, *known);
        Binding::pushKept(state, tables.classTable);
        fillStaticMethods(binding, state, *known);
        Binding::pushKept(state, tables.metatable);
        fillMetatable(binding, state, *known);
        lua_pop(state, 2);
    }
    for (auto const& table : binding.database.tables()) {
        pushGlobalTable(state, table->name);
        for (Member const& member : table->functions) setMemberFunction(binding, state, member);
        lua_pop(state, 1);
    }
}

}  // namespace nxLC::impl
