// What the error says.
#include "foundation/nxTXN/HookError.h"

#include <string>

#include "foundation/urOS/reportException.h"

namespace nxTXN {
namespace {

std::string describe(std::exception_ptr const& cause, HookError::Outcome outcome) {
    bool const completed = outcome == HookError::Outcome::completed;
    return (completed ? "all was done, but: " : "nothing was done: ") + urOS::exceptionText(cause);
}

std::nested_exception nested(std::exception_ptr const& cause) {
    try {
        std::rethrow_exception(cause);
    } catch (...) {
        return {};
    }
}

}  // namespace

HookError::HookError(std::exception_ptr const& cause, Outcome outcome)
    : std::runtime_error(describe(cause, outcome)), std::nested_exception(nested(cause)), outcome_(outcome) {}

HookError::~HookError() = default;

}  // namespace nxTXN
