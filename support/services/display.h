// Facts about the display, set by the host, and tolerances for pointer input.
#pragma once

#include "foundation/ur/Export.h"

namespace nxSupport {

// Main thread only. The library does not check the values that the host sets.

/// Dots per inch; 132 by default.
[[nodiscard]] NX_API double getDisplayDPI() noexcept;
NX_API void setDisplayDPI(double dpi) noexcept;

/// Device pixels per logical pixel; 1 by default. The tolerances do not depend on it.
[[nodiscard]] NX_API double getDisplayScale() noexcept;
NX_API void setDisplayScale(double scale) noexcept;
/// Whether the scale is more than 1.
[[nodiscard]] NX_API bool isHighResolutionDisplay() noexcept;

/// In dots, for the current display: 0.06 inches, rounded down. A pointer within this distance hits an object.
[[nodiscard]] NX_API int getHitTestRadius() noexcept;
/// 0.075 inches, in dots: a pointer that has moved farther is dragging.
[[nodiscard]] NX_API double getMovingGestureThreshold() noexcept;
/// 0.3 inches, in dots: the hit radius for parts of skeletons.
[[nodiscard]] NX_API double getSkeletonHitTestRadius() noexcept;

}  // namespace nxSupport
