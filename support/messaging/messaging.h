// All of this module. Made by scripts/module_headers.
#pragma once

#include "support/messaging/AppInitMsg.h"
#include "support/messaging/AsyncTask.h"
#include "support/messaging/Broadcaster.h"
#include "support/messaging/CallInfo.h"
#include "support/messaging/CallInfoControl.h"
#include "support/messaging/Context.h"
#include "support/messaging/ContextObserver.h"
#include "support/messaging/DataSink.h"
#include "support/messaging/Domain.h"
#include "support/messaging/InitializeLuaMsg.h"
#include "support/messaging/InitializeReflectionMsg.h"
#include "support/messaging/PreClearResourcesMsg.h"
#include "support/messaging/Priority.h"
#include "support/messaging/ServiceDomain.h"
#include "support/messaging/subscribeFirstTime.h"
