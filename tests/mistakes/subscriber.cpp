// says: messages derive from nxSupport::Broadcaster::Message
#include "support/messaging/Broadcaster.h"

struct Saved {};
void listen(nxSupport::Broadcaster& broadcaster) {
    auto const handle = broadcaster.subscribe<Saved>({}, [](Saved&) {});
}
