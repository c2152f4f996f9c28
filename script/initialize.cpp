// Subscribes the functions that prepare databases and Lua states.
#include "script/initialize.h"

#include "foundation/nxLC/State.h"
#include "foundation/urOS/AppOutput.h"

#include "script/luaFunctions.h"
#include "script/reflection.h"
#include "support/messaging/InitializeReflectionMsg.h"
#include "support/messaging/subscribeFirstTime.h"

namespace nxSupport {

namespace {

// The broadcaster's destructor sets them to true again.
bool luaFirstTime = true;
bool reflectionFirstTime = true;

}  // namespace

void initialize() {
    subscribeFirstTime<InitializeLuaMsg>(luaFirstTime, &registerLuaFunctions);
    subscribeFirstTime<InitializeReflectionMsg>(reflectionFirstTime, &registerReflection);
}

bool initialize(nxRFL::Database& database) {
    auto* const broadcaster = ci().get<Broadcaster>();
    if (!broadcaster) return false;
    initialize();
    InitializeReflectionMsg message(&database);
    broadcaster->broadcast(message);
    return true;
}

bool initialize(nxLC::State& state, InitializeLuaMsg::Type type) {
    auto* const broadcaster = ci().get<Broadcaster>();
    auto const error =
        broadcaster ? state.run("nx = nx or {}", "=start") : std::optional(nxRFL::Exception("there is no broadcaster"));
    if (error) {
        urOS::AppOutput::getInstance().print("nxSupport::initialize: %s\n", error->what());
        return false;
    }
    InitializeLuaMsg message(type, state.get());
    broadcaster->broadcast(message);
    return true;
}

}  // namespace nxSupport
