// Works and sleeps.
#include "tools/nxhost/Loop.h"

#include <poll.h>

#include <array>

namespace nxhost {

// [runOnce]
bool Loop::runOnce() {
    if (work()) return true;
    if (!busy()) return false;
    transfers_.wait(std::array{interrupt_.descriptor()});
    if (interrupt_.pending() != 0) throw Ended();
    return true;
}
// [runOnce]

bool Loop::runOnceOrInput(int descriptor) {
    if (work()) return false;
    transfers_.wait(std::array{interrupt_.descriptor(), descriptor});
    if (interrupt_.pending() != 0) throw Ended();
    pollfd input{descriptor, POLLIN, 0};
    return poll(&input, 1, 0) != 0;
}

/// Returns false if there was nothing to do.
bool Loop::work() {
    if (interrupt_.pending() != 0) throw Ended();
    bool const ran = queue_.service() > 0;
    return transfers_.advance(interrupt_) || ran;
}

}  // namespace nxhost
