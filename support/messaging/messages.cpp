// The anchors of the message classes.
#include "support/messaging/AppInitMsg.h"
#include "support/messaging/InitializeLuaMsg.h"
#include "support/messaging/InitializeReflectionMsg.h"
#include "support/messaging/PreClearResourcesMsg.h"

namespace nxSupport {

AppInitMsg::~AppInitMsg() = default;
InitializeLuaMsg::~InitializeLuaMsg() = default;
InitializeReflectionMsg::~InitializeReflectionMsg() = default;
PreClearResourcesMsg::~PreClearResourcesMsg() = default;

}  // namespace nxSupport
