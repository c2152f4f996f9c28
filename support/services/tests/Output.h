// What is printed on the application output while this lives.
#pragma once

#include <utility>

#include "foundation/urOS/tests/CapturedOutput.h"
#include "support/services/Debug.h"

namespace nxSupport {

struct Output {
    /// Since the last time.
    std::string take() {
        std::string const all = captured.text();
        return all.substr(std::exchange(taken, all.size()));
    }

    Debug& debug = Debug::getInstance();  // opens the application output when it is made
    urOS::CapturedOutput captured;
    std::size_t taken = 0;
};

}  // namespace nxSupport
