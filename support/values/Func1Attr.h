// Attributes that are functions of one other attribute.
#pragma once

#include <utility>

#include "foundation/ur/Export.h"
#include "foundation/ur/Reference.h"
#include "support/values/Attribute.h"

namespace nxSupport {

/// A `Result` computed from the value of an attribute of type `Input`, which it holds and which is not null.
template <class Result, class Input>
class NX_API Func1Attr : public Attribute<Result> {
public:
    explicit Func1Attr(ur::Reference<Attribute<Input>> input) noexcept : input_(std::move(input)) {}

    /// The answer of the input.
    [[nodiscard]] bool dynamic() const override { return input_->dynamic(); }

protected:
    [[nodiscard]] Attribute<Input> const& input() const noexcept { return *input_; }

private:
    ur::Reference<Attribute<Input>> input_;
};

}  // namespace nxSupport
