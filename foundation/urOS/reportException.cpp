// Describes exceptions and prints them to the application output.
#include "foundation/urOS/reportException.h"

#include "foundation/urOS/AppOutput.h"

namespace urOS {

std::string exceptionText(std::exception_ptr const& exception) {
    try {
        std::rethrow_exception(exception);
    } catch (std::exception const& known) {
        return known.what();
    } catch (...) {
        return "unknown exception";
    }
}

void reportException(char const* where, std::exception_ptr const& exception) noexcept {
    try {
        AppOutput::getInstance().print("%s: %s\n", where, exceptionText(exception).c_str());
    } catch (...) {  // NOLINT(bugprone-empty-catch): nowhere else to report
    }
}

}  // namespace urOS
