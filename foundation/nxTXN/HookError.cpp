// The messages of hook errors.
#include "foundation/nxTXN/HookError.h"

#include <string>

#include "foundation/urOS/reportException.h"

namespace nxTXN {
namespace {

// For when memory is too short for a longer message: copies share the text.
std::runtime_error const allButSomething("all was done, but something failed");
std::runtime_error const nothing("nothing was done");

std::runtime_error describe(std::exception_ptr const& cause, HookError::Outcome outcome) noexcept {
    bool const completed = outcome == HookError::Outcome::completed;
    try {
        return std::runtime_error((completed ? "all was done, but: " : "nothing was done: ") +
                                  urOS::exceptionText(cause));
    } catch (...) {
        return completed ? allButSomething : nothing;
    }
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
