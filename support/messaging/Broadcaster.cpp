// The parts of Broadcaster that are not templates.
#include "support/messaging/Broadcaster.h"

#include <algorithm>

namespace nxSupport {

Broadcaster::Message::~Message() = default;
Broadcaster::SigBase::~SigBase() = default;

Broadcaster::~Broadcaster() {
    if (delivery_) delivery_->cancel();
    // Disconnect one at a time and search again: destroying a callable runs foreign code, which may use this object.
    auto const left = [this] {
        return std::find_if(channels_.begin(), channels_.end(), [](auto const& c) { return !c.second->sigs.empty(); });
    };
    for (auto place = left(); place != channels_.end(); place = left()) place->second->sigs.pop_front();
    for (bool* flag : firstTimeFlags_) *flag = true;
}

Broadcaster::Channel& Broadcaster::channel(ur::TypeInfo message) {
    auto place = channels_.find(message);
    if (place == channels_.end()) place = channels_.emplace(message, std::make_unique<Channel>()).first;
    return *place->second;
}

ur::vector<Broadcaster::Listener> Broadcaster::listeners() const {
    ur::vector<Listener> result;
    for (auto const& [message, channel] : channels_) {
        for (auto const& sig : channel->sigs) {
            for (urRTB::Connection const& connection : channel->signal(*sig).connections()) {
                urString::CString const name(connection.describe());
                result.push_back({message, sig->priority(), name, connection.blocked()});
            }
        }
    }
    return result;
}

}  // namespace nxSupport
