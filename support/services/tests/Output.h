// A test whose printed lines are caught.
#pragma once

#include <gmock/gmock.h>

#include <utility>

#include "foundation/urOS/tests/CapturedOutput.h"
#include "support/services/Debug.h"
#include "support/services/debugList.h"

namespace nxSupport {

/// Catches the application output, and leaves no debug code on.
struct OutputTest : testing::Test {
    ~OutputTest() override { switchDebugCodes("-*"); }

    /// Since the last time.
    std::string printed() {
        std::string const all = captured.text();
        return all.substr(std::exchange(taken, all.size()));
    }

    Debug& debug = Debug::getInstance();  // opens the application output when it is made
    urOS::CapturedOutput captured;
    std::size_t taken = 0;
};

}  // namespace nxSupport
