// Writes one line per class to the debug channel.
#include "foundation/nxTXN/impl/diagnostics.h"

#include <mutex>
#include <set>
#include <string>

#include "foundation/nxTXN/debugChannel.h"
#include "foundation/ur/TypeInfo.h"

namespace nxTXN {

namespace {

/// Null for the process's own channel.
urOS::DebugChannel*& providedChannel() {
    static urOS::DebugChannel* channel = nullptr;
    return channel;
}

}  // namespace

urOS::DebugChannel& debugChannel() {
    static urOS::DebugChannel own;
    urOS::DebugChannel* const provided = providedChannel();
    return provided ? *provided : own;
}

void setDebugChannel(urOS::DebugChannel* channel) noexcept { providedChannel() = channel; }

std::string impl::unrecordedText(Object const& object, std::string_view name, char const* where) {
    std::string text = ur::TypeInfo::of(object).readableName();
    if (!name.empty()) text.append(" \"").append(name).append("\"");
    return text.append(" changed ").append(where);
}

void impl::reportUnrecorded(Object const& object, std::string_view name, char const* where) {
    static std::mutex mutex;
    static std::set<std::string> reported;
    std::lock_guard const lock(mutex);
    if (!reported.insert(ur::TypeInfo::of(object).readableName()).second) return;
    debugChannel().print("%s: applied, not recorded\n", unrecordedText(object, name, where).c_str());
}

}  // namespace nxTXN
