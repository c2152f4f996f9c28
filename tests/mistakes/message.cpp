// says: messages are not constant: take a T& and broadcast one
#include "support/messaging/Broadcaster.h"

struct Saved {};
void tell(nxSupport::Broadcaster& broadcaster, Saved const& saved) { broadcaster.broadcast(saved); }
