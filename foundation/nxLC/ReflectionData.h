// Binds a reflection database to a Lua state.
#pragma once

#include <cstdint>

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

/// The binding of a reflection database to a Lua state. The state owns it and deletes it when it closes.
///
/// Classes and tables of functions are global tables: scripts reach "a::B" as `a.B` and as `_G["a::B"]`. A native
/// object is one userdata for as long as the state knows it. docs/scripting.md describes how values are converted.
/// Functions that Lua calls may call all operations through `guard`. No operation raises a Lua error; on failure they
/// throw an `nxRFL::Exception`. `state` may be any thread of the bound state. One thread at a time.
class NX_API ReflectionData {
public:
    /// Null if the state is not bound.
    [[nodiscard]] static ReflectionData* find(lua_State* state) noexcept;
    /// Binds a state that the host created. If it is bound already, publishes new registrations. Open the scripts'
    /// libraries before; create coroutines after, because a hook counts their instructions. The database must outlive
    /// the state.
    static ReflectionData& bind(lua_State* state, nxRFL::Database& database);

    ReflectionData(ReflectionData const&) = delete;
    ReflectionData& operator=(ReflectionData const&) = delete;

    [[nodiscard]] nxRFL::Database* getDB() const noexcept;
    /// Publishes what was registered since the state was bound.
    void publish();

    /// Pushes the userdata of an object, or nil for none. The script owns the object from now on and releases it by the
    /// second pair of its class's operations.
    void pushObject(lua_State* state, nxRFL::Object const& object);
    /// The number of objects that the state knows.
    [[nodiscard]] int getObjectTableSize(lua_State* state) const noexcept;

    /// Calls the function at `index` before every assignment to a property, with the object, the property's name and
    /// the value. An error in it prevents the assignment. Assignments by the function itself do not call it.
    void setPropertyAssignmentHook(lua_State* state, int index) noexcept;
    void clearPropertyAssignmentHook(lua_State* state) noexcept;

    /// Applies to calls from native code that begin later.
    void setLimits(Limits const& limits) noexcept;
    /// Called by a native function of the running script: counts its work as this many instructions. Throws an
    /// `nxRFL::Exception` with the reason if the script must end. Does nothing while no script runs.
    void spend(std::uint64_t instructions);
    /// Ends the running script, if any, with an error. Safe in signal handlers and on any thread while the state is
    /// open.
    void interrupt() noexcept;
    /// Called by a native function of the running script: ends the script. Nothing more of it runs except finalizers.
    /// All later calls of its functions fail.
    void end() noexcept;

private:
    friend class impl::Binding;
    explicit ReflectionData(impl::Binding& binding) noexcept : binding_(binding) {}

    impl::Binding& binding_;
};

}  // namespace nxLC
