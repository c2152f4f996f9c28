// Attributes computed from one other attribute.
#pragma once

#include <utility>

#include "foundation/ur/Export.h"
#include "foundation/ur/Reference.h"
#include "support/values/Attribute.h"

namespace nxSupport {

/// Computes a `Result` from an attribute of type `Input`. It holds that attribute, which is not null.
template <class Result, class Input>
class NX_API Func1Attr : public Attribute<Result> {
public:
    explicit Func1Attr(ur::Reference<Attribute<Input>> input) noexcept : input_(std::move(input)) {}

    /// The result of the input's `dynamic`.
    [[nodiscard]] bool dynamic() const override { return input_->dynamic(); }

protected:
    [[nodiscard]] Attribute<Input> const& input() const noexcept { return *input_; }

private:
    ur::Reference<Attribute<Input>> input_;
};

}  // namespace nxSupport
