// Writes one line per class to the debug channel.
#include "foundation/nxTXN/impl/diagnostics.h"

#include <mutex>
#include <set>
#include <string>

#include "foundation/nxTXN/debugChannel.h"
#include "foundation/ur/TypeInfo.h"

namespace nxTXN {

urOS::DebugChannel& debugChannel() {
    static urOS::DebugChannel channel;
    return channel;
}

void impl::reportUnrecorded(Object const& object, char const* where) {
    if (!debugChannel().isEnabled()) return;
    static std::mutex mutex;
    static std::set<std::string> reported;
    std::string const what = ur::TypeInfo::of(object).readableName() + " changed " + where;
    std::lock_guard const lock(mutex);
    if (!reported.insert(what).second) return;
    debugChannel().print("%s: applied, not recorded\n", what.c_str());
}

}  // namespace nxTXN
