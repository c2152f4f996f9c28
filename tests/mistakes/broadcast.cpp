// says: messages derive from nxSupport::Broadcaster::Message
#include "support/messaging/Broadcaster.h"

struct Saved {};
void tell(nxSupport::Broadcaster& broadcaster) {
    Saved saved;
    broadcaster.broadcast(saved);
}
