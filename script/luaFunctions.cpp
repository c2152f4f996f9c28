// Defines the functions of the table `nx` and adds them to it.
#include "script/luaFunctions.h"

#include <array>
#include <string_view>

#include "foundation/nxLC/ReflectionData.h"
#include "foundation/nxLC/StackChecker.h"
#include "foundation/nxLC/protect.h"
#include "foundation/nxLC/stackValues.h"
#include "foundation/nxRFL/Database.h"
#include "foundation/urOS/AppOutput.h"
#include "foundation/urUtil/random.h"
#include "script/impl/jsonFunctions.h"
#include "script/impl/print.h"

namespace nxSupport {

using nxLC::ReflectionData;
using nxLC::StackChecker;

namespace {

int random(lua_State* state) {
    StackChecker const checker(state, 1);
    double value = 0;
    int const count = lua_gettop(state);
    if (count == 1) value = urUtil::random(lua_tonumber(state, 1));
    if (count == 2) value = urUtil::random(lua_tonumber(state, 1), lua_tonumber(state, 2));
    lua_pushnumber(state, value);
    return 1;
}

/// Does nothing; kept because scripts may call it.
int encodeJson2(lua_State* /*state*/) { return 0; }

int getObjectTableSize(lua_State* state) {
    StackChecker const checker(state, 1);
    ReflectionData const* const data = ReflectionData::find(state);
    lua_pushnumber(state, data ? data->getObjectTableSize(state) : 0);
    return 1;
}

int setPropertyAssignmentHook(lua_State* state) {
    StackChecker const checker(state, 0);
    ReflectionData* const data = ReflectionData::find(state);
    if (!data) return 0;
    if (lua_isfunction(state, 1)) {
        data->setPropertyAssignmentHook(state, 1);
    } else {
        data->clearPropertyAssignmentHook(state);
    }
    return 0;
}

int createStack(lua_State* state) {
    return nxLC::guard(state, [state] {
        StackChecker const checker(state, 1);
        ReflectionData* const data = ReflectionData::find(state);
        if (!data) throw nxRFL::Exception("the Lua state is not bound");
        auto stack = std::make_unique<nxRFL::Stack>();
        nxLC::readFromLua(state, *stack, 1);
        data->pushObject(state, nxRFL::Object::give(stack.release(), *data->getDB()->getClass("nxRFL::Stack")));
        return 1;
    });
}

struct Entry {
    char const* name;
    lua_CFunction function;
    char const* parameters;   // names, separated by commas
    char const* annotations;  // for editors, one per line
};

constexpr std::array<Entry, 8> functions{{
    {"decodeJSON", &impl::decodeJson, "text",
     "---@param text string\n---@return any value\n---@return string? message\n"},
    {"encodeJSON", &impl::encodeJson, "value, indent",
     "---@param value any\n---@param indent? number\n---@return string? text\n---@return string? message\n"},
    {"decodeJSON2", &impl::decodeJson2, "text", "---@param text string\n---@return any value\n"},
    {"encodeJSON2", &encodeJson2, "value", "---@param value any\n"},
    {"getObjectTableSize", &getObjectTableSize, "", "---@return number\n"},
    {"random", &random, "a, b", "---@param a? number\n---@param b? number\n---@return number\n"},
    {"setLCPropertyAssignmentHook", &setPropertyAssignmentHook, "hook",
     "---@param hook? fun(object: any, name: string, value: any)\n"},
    {"createLCStack", &createStack, "...", "---@param ... any\n---@return nxRFL.Stack\n"},
}};

/// Raises. Returns false and does nothing if there is no table `nx`.
bool fillTable(lua_State* state) {
    lua_getfield(state, LUA_GLOBALSINDEX, "nx");
    if (!lua_istable(state, -1)) return false;
    for (Entry const& entry : functions) {
        lua_pushcfunction(state, entry.function);
        lua_setfield(state, -2, entry.name);
    }
    lua_pushcfunction(state, &impl::print);
    lua_setfield(state, LUA_GLOBALSINDEX, "print");
    return true;
}

struct Parameter {
    std::string_view name;  ///< with "?" if calls may leave it out
    std::string_view type;
};

/// What the annotations of a function say.
struct Signature {
    explicit Signature(Entry const& entry) {
        for (std::string_view rest = entry.annotations; !rest.empty(); rest.remove_prefix(rest.find('\n') + 1)) {
            std::string_view const line = rest.substr(0, rest.find('\n'));
            std::string_view const content = line.substr(line.find(' ') + 1);
            std::size_t const end = content.find(' ');
            if (line.starts_with("---@param")) {
                parameters.push_back({content.substr(0, end), content.substr(end + 1)});
            } else {
                results.append(results.empty() ? "" : ", ").append(content.substr(0, end));
            }
        }
    }

    ur::vector<Parameter> parameters;
    urString::CString results;
};

}  // namespace

urString::CString luaFunctionListing() {
    urString::CString text = "table nx\n";
    for (Entry const& entry : functions) {
        Signature const signature(entry);
        text.append("    ").append(entry.name);
        char const* separator = "(";
        for (auto const& [name, type] : signature.parameters) {
            text.append(separator).append(name).append(": ").append(type);
            separator = ", ";
        }
        text.append(signature.parameters.empty() ? "()" : ")");
        if (!signature.results.empty()) text.append(": ").append(signature.results);
        text.append("\n");
    }
    return text;
}

urString::CString luaFunctionJson() {
    urString::CString text = R"({"name":"nx","functions":[)";
    char const* separator = "";
    for (Entry const& entry : functions) {
        Signature const signature(entry);
        urString::CString types, names;
        for (auto const& [name, type] : signature.parameters) {
            bool const isOptional = name.ends_with('?') || name == "...";
            types.append(",\"").append(type).append("\"");
            names.append(names.empty() ? "" : ",").append(R"({"name":")").append(name.substr(0, name.find('?')));
            names.append(R"(","optional":)").append(isOptional ? "true}" : "false}");
        }
        text.append(separator)
            .append(R"({"name":")")
            .append(entry.name)
            .append(R"(","kind":"function","signature":[")");
        text.append(signature.results.empty() ? "void" : signature.results).append("\"").append(types).append("]");
        if (!names.empty()) text.append(",\"parameters\":[").append(names).append("]");
        text.append("}");
        separator = ",";
    }
    return text.append("]}");
}

urString::CString luaFunctionStubs() {
    urString::CString text = "nx = {}\n";
    for (Entry const& entry : functions) {
        text.append(entry.annotations).append("function nx.").append(entry.name);
        text.append("(").append(entry.parameters).append(") end\n");
    }
    return text;
}

void registerLuaFunctions(InitializeLuaMsg& message) {
    lua_State* const state = message.getState();
    StackChecker const checker(state, 0);
    char const* complaint = "there is no table nx";
    try {
        nxLC::protect(state, 0, 0, [&complaint](lua_State* inner) {
            if (fillTable(inner)) complaint = nullptr;
            return 0;
        });
        if (complaint) throw nxRFL::Exception(complaint);
    } catch (std::exception const& error) {
        urOS::AppOutput::getInstance().print("nxSupport::registerLuaFunctions: %s\n", error.what());
    }
}

}  // namespace nxSupport
