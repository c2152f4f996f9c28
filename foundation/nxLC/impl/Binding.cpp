// Binds a state, calls into it, and releases it.
#include "foundation/nxLC/impl/Binding.h"

#include <memory>

#include "foundation/nxLC/impl/ScriptFunction.h"
#include "foundation/nxLC/impl/catching.h"
#include "foundation/nxLC/impl/errors.h"
#include "foundation/nxLC/impl/lua.h"
#include "foundation/nxLC/impl/objects.h"
#include "foundation/nxLC/impl/publish.h"
#include "foundation/nxLC/impl/runProtected.h"

namespace nxLC::impl {

namespace {

constexpr char anchorKey = 0;  // its address is the anchor's registry key

/// Runs when the state closes, after all later userdata were finalized.
int closeBinding(lua_State* state) {
    auto* const anchor = static_cast<Anchor*>(lua_touserdata(state, 1));
    if (anchor->binding) giveUpObjects(*anchor->binding, state);
    delete std::exchange(anchor->binding, nullptr);
    return 0;
}

void pushTableWith(lua_State* state, char const* name, lua_CFunction function) {
    lua_newtable(state);
    lua_pushcfunction(state, function);
    lua_setfield(state, -2, name);
}

int keep(lua_State* state) { return luaL_ref(state, LUA_REGISTRYINDEX); }

/// Pushes debug.traceback from a fresh library: scripts may have changed theirs.
void pushTraceback(lua_State* state) {
    luaL_findtable(state, LUA_REGISTRYINDEX, "_LOADED", 1);
    lua_getfield(state, -1, LUA_DBLIBNAME);
    lua_newtable(state);
    lua_setfield(state, -3, LUA_DBLIBNAME);  // opening fills the existing table
    lua_pushcfunction(state, &luaopen_debug);
    lua_pushliteral(state, LUA_DBLIBNAME);
    lua_call(state, 1, 1);
    lua_insert(state, -3);
    lua_setfield(state, -2, LUA_DBLIBNAME);
    lua_getfield(state, -2, "traceback");
    lua_replace(state, -3);
    lua_pop(state, 1);
}

/// A call into a script. What was passed on to that script is dropped with it.
class Nesting {
public:
    explicit Nesting(Binding& binding) noexcept : binding_(binding) { ++binding.depth; }
    Nesting(Nesting const&) = delete;
    Nesting& operator=(Nesting const&) = delete;
    ~Nesting() {
        if (binding_.passedOn && binding_.passedOn->depth == binding_.depth) binding_.passedOn.reset();
        --binding_.depth;
    }

private:
    Binding& binding_;
};

}  // namespace

Binding* Binding::find(lua_State* state) noexcept {
    pushAddress(state, anchorKey);
    lua_rawget(state, LUA_REGISTRYINDEX);
    auto const* const anchor = static_cast<Anchor*>(lua_touserdata(state, -1));
    lua_pop(state, 1);
    return anchor ? anchor->binding : nullptr;
}

Binding& Binding::bind(lua_State* state, nxRFL::Database& database) {
    std::unique_ptr<Binding> made(new Binding(state, database));
    if (lua_cpcall(state, &Binding::setUp, made.get()) != 0) throw takeError(state);
    Binding& binding = *made.release();  // now the anchor's
    binding.meter.attach(state);
    binding.data.publish();
    return binding;
}

Binding::Binding(lua_State* state, nxRFL::Database& boundDatabase)
    : database(boundDatabase),
      classOfClasses(boundDatabase.getClass(ur::TypeInfo::of<nxRFL::Class>())),
      data(*this),
      main(state),
      running(state),
      meter(boundDatabase.account(), running),
      link(ur::make<Link>(this)) {}

Binding::~Binding() {
    link->binding = nullptr;
    meter.detach(main);
}

int Binding::setUp(lua_State* state) {
    auto* const binding = static_cast<Binding*>(lua_touserdata(state, 1));
    auto* const anchor = static_cast<Anchor*>(lua_newuserdata(state, sizeof(Anchor)));
    anchor->binding = nullptr;
    pushTableWith(state, "__gc", &closeBinding);
    lua_setmetatable(state, -2);
    pushAddress(state, anchorKey);
    lua_pushvalue(state, -2);
    lua_rawset(state, LUA_REGISTRYINDEX);
    lua_pushvalue(state, -1);
    binding->anchor = keep(state);
    replaceCatchingFunctions(state);

    pushTraceback(state);
    lua_pushcclosure(state, &traceError, 2);
    binding->tracer = keep(state);
    for (int* const slot : {&binding->trace, &binding->assignmentHook}) {
        lua_pushboolean(state, 0);
        *slot = keep(state);
    }
    lua_newtable(state);
    binding->functions = keep(state);
    lua_newtable(state);
    lua_pushliteral(state, "v");
    lua_setfield(state, -2, "__mode");
    binding->weakValues = keep(state);
    pushTableWith(state, "__gc", &collectFunction);
    binding->functionBoxes = keep(state);
    anchor->binding = binding;
    return 0;
}

std::exception_ptr Binding::callMeasured(Body body, void* context) {
    lua_State* const state = running;
    Nesting const nesting(*this);
    Metered const metered(meter);
    hasTrace = false;
    pushKept(state, tracer);
    int const handler = lua_gettop(state);
    std::exception_ptr error;
    if (runProtected(state, 0, 0, handler, body, context, error) != 0)
        error = std::make_exception_ptr(takeTracedError(*this, state));
    lua_remove(state, handler);
    return error;
}

void Binding::protectCall(Body body, void* context) {
    std::exception_ptr const error = callMeasured(body, context);
    if (closeWhenIdle && !meter.active()) lua_close(main);  // deletes this
    if (error) std::rethrow_exception(error);
}

}  // namespace nxLC::impl
