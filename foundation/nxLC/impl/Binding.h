// The private record of a bound Lua state.
#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <utility>

#include "foundation/nxLC/ReflectionData.h"
#include "foundation/nxLC/impl/Meter.h"
#include "foundation/nxLC/impl/lua.h"
#include "foundation/nxLC/protect.h"
#include "foundation/nxRFL/Database.h"
#include "foundation/nxRFL/Exception.h"
#include "foundation/nxRFL/Stack.h"
#include "foundation/ur/ReferenceCount.h"
#include "foundation/ur/containers.h"

namespace nxLC::impl {

/// Outlives a state: a function of the state that is still held checks here whether the state is open.
struct Link final : ur::ReferenceCount {
    explicit Link(Binding* open) noexcept : binding(open) {}
    Binding* binding;  ///< null once the state has closed
};

/// What a state keeps for a class, as references into Lua's registry.
struct ClassTables {
    int metatable = LUA_NOREF;
    int classTable = LUA_NOREF;  ///< what scripts see as the class itself
    int objects = LUA_NOREF;     ///< from the address of an object to its userdata, which the table does not keep alive
};

struct Box;

/// The arguments and the results of a call into native code. They keep their storage for the next one.
struct CallStacks {
    nxRFL::Stack arguments;
    nxRFL::Stack results;
};

/// The error of a script that native code has passed on to the script that called it.
struct PassedOn {
    nxRFL::Exception error;
    int depth;            ///< of the calling script
    bool caught = false;  ///< and so comes again only if the script raises it anew
};

/// Everything that belongs to the binding of one state. Deleted when the state closes.
///
/// An error of plain Lua jumps over destructors, so that code here is of two kinds. Functions that Lua calls, and
/// bodies given to `protect`, may raise errors of Lua and have no object with a destructor in their frames. All other
/// code may have such objects, calls nothing of Lua that can raise except through `protect`, and fails by throwing.
class Binding {
public:
    /// Null for a state that is not bound, or has closed.
    [[nodiscard]] static Binding* find(lua_State* state) noexcept;
    /// Throws an `nxRFL::Exception` when there is no memory. Requires: the state is neither bound nor a coroutine.
    static Binding& bind(lua_State* state, nxRFL::Database& database);

    Binding(Binding const&) = delete;
    Binding& operator=(Binding const&) = delete;
    ~Binding();

    /// Calls into a script from native code: errors come with a trace, and what the script uses is measured. May close
    /// the state, and with it delete this, when its owner has gone meanwhile.
    void protectCall(Body body, void* context);

    /// Pushes what is kept under `reference`. Never raises.
    static void pushKept(lua_State* state, int reference) noexcept { lua_rawgeti(state, LUA_REGISTRYINDEX, reference); }

    nxRFL::Database& database;
    nxRFL::Class const* const classOfClasses;
    ReflectionData data;
    lua_State* const main;
    lua_State* running;  ///< the innermost thread that is inside a native function; otherwise the main thread
    Meter meter;
    ur::Reference<Link> const link;
    ur::vector<std::unique_ptr<CallStacks>> stacks;  ///< of calls under way, and behind them unused ones
    std::size_t callDepth = 0;
    Box const* verified[64] = {};  ///< userdata that are known to stand for objects, each at the place of its address
    std::deque<ClassTables> classes;  ///< by the index of the class
    ur::vector<int> freeFunctions;    ///< unused places in the table of functions
    int functionPlaces = 0;
    int objectCount = 0;               ///< userdata that stand for objects
    bool closeWhenIdle = false;        ///< the owner has gone in the middle of a call
    bool hasTrace = false;             ///< the last error left a trace
    int depth = 0;                     ///< calls into scripts that are under way inside each other
    std::optional<PassedOn> passedOn;  ///< the last one, until the call into the calling script ends
    bool asksAssignmentHook = false;   ///< there is one, and it is not running

    // References into the registry.
    int anchor = LUA_NOREF;          ///< the userdata by which functions find the binding
    int tracer = LUA_NOREF;          ///< the error handler of calls
    int trace = LUA_NOREF;           ///< what it last found
    int functions = LUA_NOREF;       ///< the script functions that native code keeps
    int assignmentHook = LUA_NOREF;  ///< a function, or not
    int weakValues = LUA_NOREF;      ///< the metatable of tables that do not keep their values alive
    int functionBoxes = LUA_NOREF;   ///< the metatable of userdata that hold native functions

private:
    Binding(lua_State* state, nxRFL::Database& boundDatabase);

    static int setUp(lua_State* state);
    std::exception_ptr callMeasured(Body body, void* context);
};

/// Where functions find their binding, as their first upvalue. It outlives the binding until the state has gone.
struct Anchor {
    Binding* binding;
};

/// Null once the state has begun to close.
[[nodiscard]] inline Binding* bindingOf(lua_State* state) noexcept {
    return static_cast<Anchor*>(lua_touserdata(state, lua_upvalueindex(1)))->binding;
}

/// A call of native code by a script. Notes the thread, so that calls from there into scripts nest on it.
class NativeCall {
public:
    NativeCall(Binding& binding, lua_State* state) noexcept
        : binding_(binding), outer_(std::exchange(binding.running, state)) {}
    NativeCall(NativeCall const&) = delete;
    NativeCall& operator=(NativeCall const&) = delete;
    ~NativeCall() { binding_.running = outer_; }

private:
    Binding& binding_;
    lua_State* outer_;
};

/// The stacks of one call, for as long as that lasts.
class UsedStacks {
public:
    explicit UsedStacks(Binding& binding) : binding_(binding) {
        if (binding.callDepth == binding.stacks.size()) binding.stacks.push_back(std::make_unique<CallStacks>());
        stacks_ = binding.stacks[binding.callDepth++].get();
        stacks_->arguments.chargeTo(binding.database.account());
        stacks_->results.chargeTo(binding.database.account());
    }
    UsedStacks(UsedStacks const&) = delete;
    UsedStacks& operator=(UsedStacks const&) = delete;
    ~UsedStacks() {
        binding_.meter.spend(stacks_->arguments.length() + stacks_->results.length());
        stacks_->arguments.clear();
        stacks_->results.clear();
        --binding_.callDepth;
    }

    [[nodiscard]] nxRFL::Stack& arguments() const noexcept { return stacks_->arguments; }
    [[nodiscard]] nxRFL::Stack& results() const noexcept { return stacks_->results; }

private:
    Binding& binding_;
    CallStacks* stacks_;
};

}  // namespace nxLC::impl
