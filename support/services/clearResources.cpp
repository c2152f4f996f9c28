// Releases cached memory.
#include "support/services/clearResources.h"

#include "krcache/Manager.h"
#include "support/messaging/CallInfo.h"
#include "support/messaging/PreClearResourcesMsg.h"
#include "support/services/DebugPrint.h"

namespace nxSupport {

void clearResources() {
    PreClearResourcesMsg message;
    if (auto* const broadcaster = ci().get<Broadcaster>()) broadcaster->broadcast(message);

    auto* const manager = ci().get<urKRCache::Manager>();
    if (!manager) return;
    DebugPrint resident("nxSupport::clearResources", Debug_Resources);
    resident("Resident size of process %d bytes.", manager->getResidentSize());
    DebugPrint clearing("nxSupport::clearResources", Debug_Resources);
    clearing("Clearing %d bytes of cached resources.", manager->getMemoryUsed());
    manager->clear();
}

}  // namespace nxSupport
