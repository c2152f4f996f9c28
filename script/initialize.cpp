// Subscribing the registrars.
#include "script/initialize.h"

#include "script/luaFunctions.h"
#include "script/reflection.h"
#include "support/messaging/subscribeFirstTime.h"

namespace nxSupport {

namespace {

// They turn true again when the broadcaster goes.
bool luaFirstTime = true;
bool reflectionFirstTime = true;

}  // namespace

void initialize() {
    subscribeFirstTime<InitializeLuaMsg>(luaFirstTime, &registerLuaFunctions);
    subscribeFirstTime<InitializeReflectionMsg>(reflectionFirstTime, &registerReflection);
}

}  // namespace nxSupport
