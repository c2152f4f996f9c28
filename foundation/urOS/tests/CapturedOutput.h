// Captures the application output for a test.
#pragma once

#include <string>

#include "foundation/urOS/AppOutput.h"
#include "foundation/urOS/MemoryIOStream.h"

namespace urOS {

/// Captures the text printed on the application output while it lives.
class CapturedOutput {
public:
    CapturedOutput() {
        static_cast<void>(stream_.open(openForWriting));
        AppOutput::getInstance().open(stream_);
    }
    CapturedOutput(CapturedOutput const&) = delete;
    CapturedOutput& operator=(CapturedOutput const&) = delete;
    ~CapturedOutput() { static_cast<void>(AppOutput::getInstance().open("-", true)); }

    [[nodiscard]] std::string text() const { return std::string(stream_.contents().view()); }

private:
    MemoryIOStream stream_;
};

}  // namespace urOS
