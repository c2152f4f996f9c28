// Facts about the display, and tolerances that depend on them.
#include "support/services/display.h"

#include <algorithm>
#include <limits>

namespace nxSupport {

namespace {

double displayDPI = 132.0;
double displayScale = 1.0;

/// Rounds toward zero. Returns the nearest int for larger values, and 0 for not-a-number.
int truncate(double value) noexcept {
    using Limits = std::numeric_limits<int>;
    if (value != value) return 0;
    return static_cast<int>(std::clamp<double>(value, Limits::lowest(), Limits::max()));
}

}  // namespace

double getDisplayDPI() noexcept { return displayDPI; }
void setDisplayDPI(double dpi) noexcept { displayDPI = dpi; }

double getDisplayScale() noexcept { return displayScale; }
void setDisplayScale(double scale) noexcept { displayScale = scale; }
bool isHighResolutionDisplay() noexcept { return displayScale > 1.0; }

int getHitTestRadius() noexcept { return truncate(displayDPI * 0.06); }
double getMovingGestureThreshold() noexcept { return displayDPI * 0.075; }
double getSkeletonHitTestRadius() noexcept { return displayDPI * 0.3; }

}  // namespace nxSupport
