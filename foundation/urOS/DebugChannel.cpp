// Implements diagnostic output that can be disabled.
#include "foundation/urOS/DebugChannel.h"

#include "foundation/urOS/AppOutput.h"

namespace urOS {

void DebugChannel::print(char const* format, ...) {
    if (!enabled_) return;
    va_list arguments;
    va_start(arguments, format);
    printArg(format, arguments);
    va_end(arguments);
}

void DebugChannel::printArg(char const* format, va_list arguments) {
    if (!enabled_) return;
    OStream& output = output_ ? *output_ : AppOutput::getInstance();
    output.printArg(format, arguments);
    static_cast<void>(output.flush());
}

}  // namespace urOS
