// A test fixture that captures printed lines.
#pragma once

#include <gmock/gmock.h>

#include <utility>

#include "foundation/urOS/tests/CapturedOutput.h"
#include "support/services/Debug.h"
#include "support/services/debugList.h"

namespace nxSupport {

/// Captures the application output, and switches all debug codes off at the end.
struct OutputTest : testing::Test {
    ~OutputTest() override { switchDebugCodes("-*"); }

    /// The output since the last call.
    std::string printed() {
        std::string const all = captured.text();
        return all.substr(std::exchange(taken, all.size()));
    }

    Debug& debug = Debug::getInstance();  // opens the application output on its creation
    urOS::CapturedOutput captured;
    std::size_t taken = 0;
};

}  // namespace nxSupport
