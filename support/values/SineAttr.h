// A sinusoidal ease between two values.
#pragma once

#include "foundation/ur/Export.h"
#include "foundation/ur/Reference.h"
#include "support/values/Func1Attr.h"

namespace nxSupport {

/// Eases from `from` at input 0 to `to` at input 1. Outside it oscillates with a period of 2.
class NX_API SineAttr final : public Func1Attr<double, double> {
public:
    SineAttr(ur::Reference<Attribute<double>> input, double from, double to) noexcept;

    [[nodiscard]] double evaluate() const override;

private:
    double from_;
    double to_;
};

}  // namespace nxSupport
