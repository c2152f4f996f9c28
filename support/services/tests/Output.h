// What is printed on the application output while this lives.
#pragma once

#include <string>

#include "foundation/urOS/AppOutput.h"
#include "foundation/urOS/MemoryIOStream.h"
#include "support/services/Debug.h"

namespace nxSupport {

class Output {
public:
    Output() {
        Debug::getInstance();  // opens the application output when it is made
        static_cast<void>(stream_.open(urOS::openForWriting));
        urOS::AppOutput::getInstance().open(stream_);
    }
    Output(Output const&) = delete;
    Output& operator=(Output const&) = delete;
    ~Output() { static_cast<void>(urOS::AppOutput::getInstance().open(urString::IString("-"), false)); }

    /// Since the last time.
    std::string take() {
        std::string text(stream_.contents().view());
        static_cast<void>(stream_.open(urOS::openForWriting));
        return text;
    }

private:
    urOS::MemoryIOStream stream_;
};

}  // namespace nxSupport
