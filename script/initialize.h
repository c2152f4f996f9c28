// The library's start-up.
#pragma once

#include "foundation/ur/Export.h"
#include "support/messaging/InitializeLuaMsg.h"

namespace nxLC {
class State;
}
namespace nxRFL {
class Database;
}

namespace nxSupport {

/// Subscribes `registerLuaFunctions` and `registerReflection` to their messages, once for each broadcaster. Call it in
/// a context of a domain whose call information holds the broadcaster; without one it does nothing.
NX_API void initialize();

/// The start-up in one call, in a context likewise: `initialize`, then broadcasts the message on which modules register
/// their classes in the database. False without a broadcaster.
NX_API bool initialize(nxRFL::Database& database);

/// Gives a state of that database the global table `nx` unless it has one, then broadcasts the message on which modules
/// equip it. False, after a line on the application output, when there is no broadcaster or no memory.
NX_API bool initialize(nxLC::State& state, InitializeLuaMsg::Type type = InitializeLuaMsg::Application);

}  // namespace nxSupport
