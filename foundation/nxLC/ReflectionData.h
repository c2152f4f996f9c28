// A reflection database as one Lua state sees it.
#pragma once

#include "foundation/nxRFL/Object.h"
#include "foundation/ur/Export.h"

struct lua_State;

namespace nxRFL {
class Database;
}

namespace nxLC {

struct Limits;
namespace impl {
class Binding;
}

/// The binding of a reflection database to a Lua state. It belongs to the state and goes when that closes.
///
/// Classes and tables of functions are global tables: "a::B" is reached as `a.B` and as `_G["a::B"]`. A native object
/// is one userdata for as long as the state knows it. docs/scripting.md says how values cross over.
/// All operations may be called from functions that Lua calls, through `guard`; none raises an error of Lua, and those
/// that fail throw an `nxRFL::Exception`. `state` may be any thread of the bound state. One thread at a time.
class NX_API ReflectionData {
public:
    /// Null for a state that is not bound.
    [[nodiscard]] static ReflectionData* find(lua_State* state) noexcept;
    /// Binds a state that the host has made, or publishes what is new when it is bound already. Open the libraries that
    /// scripts shall have before, and make coroutines after: their instructions are counted by a hook. The database
    /// outlives the state.
    static ReflectionData& bind(lua_State* state, nxRFL::Database& database);

    ReflectionData(ReflectionData const&) = delete;
    ReflectionData& operator=(ReflectionData const&) = delete;

    [[nodiscard]] nxRFL::Database* getDB() const noexcept;
    /// Shows the state what has been registered since it was bound.
    void publish();

    /// Pushes the userdata of an object, nil for none. The script owns the object from now on: it is given up by the
    /// second pair of its class's operations when the script is done with it.
    void pushObject(lua_State* state, nxRFL::Object const& object);
    /// The number of objects that the state knows.
    [[nodiscard]] int getObjectTableSize(lua_State* state) const noexcept;

    /// Calls the function at `index` before every assignment to a property, with the object, the name of the property
    /// and the value. An error in it prevents the assignment. What it assigns itself does not call it.
    void setPropertyAssignmentHook(lua_State* state, int index) noexcept;
    void clearPropertyAssignmentHook(lua_State* state) noexcept;

    /// For calls from native code that begin from now on.
    void setLimits(Limits const& limits) noexcept;
    /// Ends the script that runs, if one does, with an error. Safe in signal handlers and on any thread, as long as the
    /// state is open.
    void interrupt() noexcept;
    /// Ends the script that runs: called by a native function of its, nothing more of it runs but finalizers. All later
    /// calls of its functions fail.
    void end() noexcept;

private:
    friend class impl::Binding;
    explicit ReflectionData(impl::Binding& binding) noexcept : binding_(binding) {}

    impl::Binding& binding_;
};

}  // namespace nxLC
