// The error of application code that failed during undo, redo or abort.
#pragma once

#include <exception>
#include <stdexcept>

#include "foundation/ur/Export.h"

namespace nxTXN {

/// Carries an exception out of a hook or field handler and says how the operation ended. The exception is nested:
/// `rethrow_nested` throws it. If several were thrown, it is the first.
class NX_API HookError : public std::runtime_error, public std::nested_exception {
public:
    enum class Outcome {
        unchanged,  ///< objects and history are as they were before the call
        completed,  ///< objects and history are as after a call without failure
    };

    HookError(std::exception_ptr const& cause, Outcome outcome);
    ~HookError() override;

    [[nodiscard]] Outcome outcome() const noexcept { return outcome_; }

private:
    Outcome outcome_;
};

}  // namespace nxTXN
