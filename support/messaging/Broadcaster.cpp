// What of the broadcaster does not depend on the message.
#include "support/messaging/Broadcaster.h"

namespace nxSupport {

Broadcaster::Message::~Message() = default;
Broadcaster::SigBase::~SigBase() = default;

Broadcaster::~Broadcaster() {
    if (delivery_) delivery_->cancel();
    // One by one: the end of a callable is its owner's code, which may still broadcast or connect here.
    for (auto const& [message, channel] : channels_)
        while (!channel->sigs.empty()) channel->sigs.pop_front();
    for (bool* flag : firstTimeFlags_) *flag = true;
}

Broadcaster::Channel& Broadcaster::channel(ur::TypeInfo message) {
    std::unique_ptr<Channel>& result = channels_[message];
    if (!result) result = std::make_unique<Channel>();
    return *result;
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

int compare(Priority const& a, Priority const& b) noexcept {
    if (a.unit() != b.unit()) return a.unit() < b.unit() ? -1 : 1;
    if (a.module() != b.module()) return a.module() < b.module() ? -1 : 1;
    return 0;
}

}  // namespace nxSupport
