// Starts up the library.
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
/// a context of a domain whose call information holds the broadcaster; does nothing without one.
NX_API void initialize();

/// The whole start-up; call it in such a context, too. Calls `initialize`, then broadcasts the message on which modules
/// register their classes in the database. False if there is no broadcaster.
NX_API bool initialize(nxRFL::Database& database);

/// Creates the global table `nx` in a state of that database if it has none, then broadcasts the message on which
/// modules add their functions. If there is no broadcaster or no memory, prints a line on the application output and
/// returns false.
NX_API bool initialize(nxLC::State& state, InitializeLuaMsg::Type type = InitializeLuaMsg::Application);

}  // namespace nxSupport
