// Takes errors from the stack and traces them.
#include "foundation/nxLC/impl/errors.h"

#include <algorithm>
#include <cstring>

#include "foundation/nxLC/impl/Binding.h"

namespace nxLC::impl {

using urString::CString;

namespace {

/// Requires: a text is on top.
std::string_view textOf(lua_State* state) {
    std::size_t size = 0;
    char const* const text = lua_tolstring(state, -1, &size);
    return {text, size};
}

/// Requires: a text is on top.
CString takeText(lua_State* state) {
    CString result(textOf(state));
    lua_pop(state, 1);
    return result;
}

/// The reason for Lua's "not enough memory".
CString whyRefused(Meter const& meter) {
    if (meter.stopped()) return meter.reason();
    return meter.memoryRefused() ? "memory budget spent" : "not enough memory";
}

CString messageOf(lua_State* state) {
    if (lua_type(state, -1) == LUA_TSTRING) {
        Binding const* const binding = Binding::find(state);
        CString text = takeText(state);
        return binding && text == "not enough memory" ? whyRefused(binding->meter) : text;
    }
    CString text = CString::format("(error object is a %s value)", luaL_typename(state, -1));
    lua_pop(state, 1);
    return text;
}

/// The calls that led to an error, then those that passed it on. Both end with the same lines as far as the same thread
/// of the script made the calls.
CString joined(CString const& inner, CString const& outer) {
    std::string_view const first = inner.view();
    std::string_view const second = outer.view().substr(std::min(outer.find('\n'), outer.size()));
    auto const differing = std::mismatch(first.rbegin(), first.rend(), second.rbegin(), second.rend()).second;
    std::size_t const shared = second.find('\n', static_cast<std::size_t>(second.rend() - differing));
    std::size_t const kept = shared == second.npos ? first.size() : first.size() - (second.size() - shared);
    return CString(first.substr(0, kept)).append(second);
}

/// Omits lines in the middle of a trace that is too long.
CString bounded(std::string_view trace) {
    if (trace.size() <= mostTraceBytes) return CString(trace);
    std::string_view first = trace.substr(0, mostTraceBytes / 2);
    first = first.substr(0, first.rfind('\n'));
    std::string_view last = trace.substr(trace.size() - mostTraceBytes / 2);
    last = last.substr(std::min(last.find('\n'), last.size()));
    return CString(first).append("\n\t(the trace is too long, lines are left out here)").append(last);
}

/// Whether the traced error, which has the same text, is the one passed on: still pending, or caught and raised again.
bool isThatOf(std::string_view trace, PassedOn const& passedOn) {
    return !passedOn.caught || trace.starts_with("stack traceback:\n\t[C]: in function 'error'\n");
}

/// Lua's description of the calls, without the empty message at its start and the function at the bottom that protects
/// the call.
CString takeTrace(lua_State* state) {
    std::string_view trace = textOf(state);
    if (trace.starts_with('\n')) trace.remove_prefix(1);
    if (std::string_view const bottom = "\n\t[C]: ?"; trace.ends_with(bottom)) trace.remove_suffix(bottom.size());
    CString result = bounded(trace);
    lua_pop(state, 1);
    return result;
}

void makeText(lua_State* state, int index) {
    if (lua_isstring(state, index)) {
        lua_tostring(state, index);  // converts a number
        return;
    }
    if (!luaL_callmeta(state, index, "__tostring") || !lua_isstring(state, -1))
        lua_pushfstring(state, "(error object is a %s value)", luaL_typename(state, index));
    lua_replace(state, index);
}

}  // namespace

nxRFL::Exception takeError(lua_State* state) { return nxRFL::Exception(messageOf(state)); }

int traceError(lua_State* state) {
    lua_settop(state, 1);
    makeText(state, 1);
    lua_pushvalue(state, lua_upvalueindex(2));
    lua_pushliteral(state, "");
    lua_pushinteger(state, 2);  // skips this function
    lua_call(state, 2, 1);
    if (Binding* const binding = bindingOf(state)) {
        lua_rawseti(state, LUA_REGISTRYINDEX, binding->trace);
        binding->hasTrace = true;
    }
    lua_settop(state, 1);
    return 1;
}

nxRFL::Exception takeTracedError(Binding& binding, lua_State* state) {
    CString message = messageOf(state);
    if (!std::exchange(binding.hasTrace, false)) return nxRFL::Exception(std::move(message));
    Binding::pushKept(state, binding.trace);
    CString trace = takeTrace(state);
    std::optional<PassedOn> const& inner = binding.passedOn;
    // At another depth it is another script, and so another error with the same text.
    if (inner && inner->depth == binding.depth && inner->error.message() == message && isThatOf(trace.view(), *inner))
        trace = bounded(joined(inner->error.trace(), trace).view());
    return nxRFL::Exception(std::move(message), std::move(trace));
}

}  // namespace nxLC::impl
