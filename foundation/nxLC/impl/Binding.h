// The internal data of a bound Lua state.
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

/// Outlives a state: functions of the state that are still held check here whether it is open.
struct Link final : ur::ReferenceCount {
    explicit Link(Binding* open) noexcept : binding(open) {}
    Binding* binding;  ///< null once the state has closed
};

/// A state's data for a class, as references into Lua's registry.
struct ClassTables {
    int metatable = LUA_NOREF;
    int classTable = LUA_NOREF;  ///< the class as scripts see it
    int objects = LUA_NOREF;     ///< maps the address of an object to its userdata; does not keep the userdata alive
};

struct Box;

/// The arguments and results of a call into native code. They keep their storage for the next call.
struct CallStacks {
    nxRFL::Stack arguments;
    nxRFL::Stack results;
};

/// The error of a script that native code passed on to the calling script.
struct PassedOn {
    nxRFL::Exception error;
    int depth;            ///< of the calling script
    bool caught = false;  ///< it can recur only if the script raises it again
};

/// All data of one state's binding. Deleted when the state closes.
///
/// A Lua error in the plain C build skips destructors, so code here is of two kinds. Functions that Lua calls, and
/// bodies given to `protect`, may raise Lua errors and have no object with a destructor in their frames. All other code
/// may have such objects, calls Lua functions that can raise only through `protect`, and fails by throwing.
class Binding {
public:
    /// Null for a state that is not bound or has closed.
    [[nodiscard]] static Binding* find(lua_State* state) noexcept;
    /// Throws an `nxRFL::Exception` when memory is exhausted. Requires: the state is neither bound nor a coroutine.
    static Binding& bind(lua_State* state, nxRFL::Database& database);

    Binding(Binding const&) = delete;
    Binding& operator=(Binding const&) = delete;
    ~Binding();

    /// Calls into a script from native code: errors get a trace, and the script's use is measured. May close the state,
    /// and so delete this, if its owner was destroyed meanwhile.
    void protectCall(Body body, void* context);

    /// Pushes the value stored under `reference`. Never raises.
    static void pushKept(lua_State* state, int reference) noexcept { lua_rawgeti(state, LUA_REGISTRYINDEX, reference); }

    nxRFL::Database& database;
    nxRFL::Class const* const classOfClasses;
    ReflectionData data;
    lua_State* const main;
    lua_State* running;  ///< the innermost thread that is inside a native function; otherwise the main thread
    Meter meter;
    ur::Reference<Link> const link;
    ur::vector<std::unique_ptr<CallStacks>> stacks;  ///< of current calls, followed by unused ones
    std::size_t callDepth = 0;
    Box const* verified[64] = {};     ///< userdata known to stand for objects, indexed by address
    std::deque<ClassTables> classes;  ///< by the index of the class
    ur::vector<int> freeFunctions;    ///< unused places in the table of functions
    int functionPlaces = 0;
    int objectCount = 0;               ///< userdata that stand for objects
    bool closeWhenIdle = false;        ///< the owner was destroyed during a call
    bool hasTrace = false;             ///< the last error left a trace
    int depth = 0;                     ///< the number of nested calls into scripts
    std::optional<PassedOn> passedOn;  ///< the last one, until the call into the calling script ends
    bool asksAssignmentHook = false;   ///< a hook exists and is not running

    // References into the registry.
    int anchor = LUA_NOREF;          ///< the userdata through which functions find the binding
    int tracer = LUA_NOREF;          ///< the error handler of calls
    int trace = LUA_NOREF;           ///< the handler's last trace
    int functions = LUA_NOREF;       ///< the script functions that native code holds
    int assignmentHook = LUA_NOREF;  ///< a function, or none
    int weakValues = LUA_NOREF;      ///< the metatable of tables that do not keep their values alive
    int functionBoxes = LUA_NOREF;   ///< the metatable of userdata that hold native functions

private:
    Binding(lua_State* state, nxRFL::Database& boundDatabase);

    static int setUp(lua_State* state);
    std::exception_ptr callMeasured(Body body, void* context);
};

/// Functions find their binding through this, their first upvalue. It outlives the binding, until the state is freed.
struct Anchor {
    Binding* binding;
};

/// Null once the state has begun to close.
[[nodiscard]] inline Binding* bindingOf(lua_State* state) noexcept {
    return static_cast<Anchor*>(lua_touserdata(state, lua_upvalueindex(1)))->binding;
}

/// A call of native code by a script. Records the thread, so that calls from there into scripts nest on it.
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

/// The stacks of one call, for the duration of the call.
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
        binding_.meter.spend(stacks_->results.length());
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
