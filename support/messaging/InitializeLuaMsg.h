// The message on which modules add their functions to a Lua state.
#pragma once

#include <cstdint>

#include "foundation/ur/Export.h"
#include "support/messaging/Broadcaster.h"

struct lua_State;

namespace nxSupport {

/// Carries a Lua state, which it does not own, and the host's type of that state.
class NX_API InitializeLuaMsg : public Broadcaster::Message {
public:
    /// Types defined by the host; any value can be cast to it.
    enum Type : std::int32_t { Application = 0 };

    InitializeLuaMsg(Type type, lua_State* state) noexcept : type_(type), state_(state) {}

    [[nodiscard]] Type getType() const noexcept { return type_; }
    [[nodiscard]] lua_State* getState() const noexcept { return state_; }

private:
    Type type_;
    lua_State* state_;
};

}  // namespace nxSupport
