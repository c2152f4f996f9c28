// Implements the shared text of a failure.
#include "foundation/urUtil/Error.h"

#include <string>

namespace urUtil {

struct Error::Failure {
    int code;
    std::string message;
};

Error::Error(int code, std::string_view message)
    : failure_(std::make_shared<Failure>(Failure{code, std::string(message)})) {}

Error Error::fromSystem(int code, std::string_view what) {
    return {code, std::string(what).append(": ").append(std::generic_category().message(code))};
}

Error Error::fromSystem(std::error_code code, std::string_view what) {
    return fromSystem(code.default_error_condition().value(), what);
}

int Error::code() const noexcept { return failure_ ? failure_->code : 0; }

std::string_view Error::message() const noexcept {
    return failure_ ? std::string_view(failure_->message) : std::string_view();
}

}  // namespace urUtil
