// Working and sleeping.
#include "tools/nxhost/Loop.h"

#include <poll.h>

#include <array>

namespace nxhost {

bool Loop::turn() {
    if (work()) return true;
    if (!busy()) return false;
    transfers_.wait(std::array{interrupt_.descriptor()});
    if (interrupt_.pending() != 0) throw Ended();
    return true;
}

void Loop::turnUntilReadable(int descriptor) {
    for (;;) {
        work();
        pollfd input{descriptor, POLLIN, 0};
        if (poll(&input, 1, 0) != 0) return;
        transfers_.wait(std::array{interrupt_.descriptor(), descriptor});
    }
}

/// False when there was nothing to do.
bool Loop::work() {
    if (interrupt_.pending() != 0) throw Ended();
    bool const ran = queue_.service() > 0;
    return transfers_.advance() || ran;
}

}  // namespace nxhost
