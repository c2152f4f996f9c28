// Prints formatted text on the application output.
#include "support/services/nx_printf.h"

#include "foundation/urOS/AppOutput.h"

namespace nxSupport {

void nx_printf(char const* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    nx_vprintf(format, arguments);
    va_end(arguments);
}

void nx_vprintf(char const* format, va_list arguments) { urOS::AppOutput::getInstance().printArg(format, arguments); }

}  // namespace nxSupport
