// Ends connections.
#include "net/Connection.h"

#include <utility>

#include "foundation/ur/keepAlive.h"

namespace nxNet {

Connection::~Connection() = default;

void Connection::cancel() {
    auto const self = ur::keepAlive(*this);  // the host may drop its reference in `onCancel`
    onCancel();
    finish(Cancelled);
}

void Connection::setConnected() {
    if (status_ == Connected) return;
    status_ = Connected;
    statusFunc_();
}

void Connection::setFailed(int error) {
    error_ = error;
    finish(ConnectionFailed);
}

void Connection::finish(Status status) {
    status_ = status;
    auto const statusFunc = std::exchange(statusFunc_, {});
    static_cast<void>(std::exchange(dataFunc_, {}));
    // Either function may have held the last reference, so use no members from here on.
    statusFunc();
}

}  // namespace nxNet
