// Facts about the display, as the host found them, and how near a pointer must come to hit something.
#pragma once

#include "foundation/ur/Export.h"

namespace nxSupport {

// Main thread only. Nothing here checks what the host sets.

/// Dots per inch: 132 until the host says otherwise.
[[nodiscard]] NX_API double getDisplayDPI() noexcept;
NX_API void setDisplayDPI(double dpi) noexcept;

/// Device pixels per logical pixel: 1 until the host says otherwise. The tolerances do not depend on it.
[[nodiscard]] NX_API double getDisplayScale() noexcept;
NX_API void setDisplayScale(double scale) noexcept;
/// The scale is more than 1.
[[nodiscard]] NX_API bool isHighResolutionDisplay() noexcept;

/// In dots, as the display has them now: 0.06 inches, rounded down; what the pointer is that near to is picked.
[[nodiscard]] NX_API int getHitTestRadius() noexcept;
/// 0.075 inches: a pointer that has gone farther is moving something.
[[nodiscard]] NX_API double getMovingGestureThreshold() noexcept;
/// 0.3 inches: for the parts of skeletons.
[[nodiscard]] NX_API double getSkeletonHitTestRadius() noexcept;

}  // namespace nxSupport
