// A linear ramp between two points.
#pragma once

#include "foundation/ur/Export.h"
#include "foundation/ur/Reference.h"
#include "support/values/Func1Attr.h"

namespace nxSupport {

/// Rises or falls linearly between two points, and stays constant outside of them.
///
/// If both inputs are equal, the value is constant below and above and not-a-number at that input.
class NX_API RampAttr final : public Func1Attr<double, double> {
public:
    /// From `y0` at input 0 to `y1` at input 1.
    RampAttr(ur::Reference<Attribute<double>> input, double y0, double y1) noexcept;
    /// From the point (x0, y0) to the point (x1, y1).
    RampAttr(ur::Reference<Attribute<double>> input, double x0, double y0, double x1, double y1) noexcept;

    [[nodiscard]] double evaluate() const override;

private:
    double inputLow_;
    double inputHigh_;
    double outputLow_;
    double outputHigh_;
};

}  // namespace nxSupport
