// Axis-aligned boxes in single precision.
#pragma once

#include <limits>

#include "foundation/urLinear/Point.h"
#include "foundation/urLinear/Range3d.h"

namespace urGeom {

/// The smallest axis-aligned box around the included values, half the size of a `Range3d`.
///
/// Corners are rounded outwards, so that every included point stays inside. Empty by default. A plain value; its six
/// floats, the lower corner first, are the whole storage.
class NX_API BoundingBox {
public:
    BoundingBox() noexcept = default;
    explicit BoundingBox(urLinear::Range3d const& range);

    [[nodiscard]] bool empty() const noexcept;
    [[nodiscard]] urLinear::PointFlt const& min() const noexcept { return min_; }
    [[nodiscard]] urLinear::PointFlt const& max() const noexcept { return max_; }
    [[nodiscard]] urLinear::Range3d range() const;

    /// A point with a NaN is not included.
    void include(urLinear::Point const& point);
    void include(BoundingBox const& other);
    [[nodiscard]] bool contains(urLinear::Point const& point) const;
    /// True when they have a point in common.
    [[nodiscard]] bool intersects(BoundingBox const& other) const;

    bool operator==(BoundingBox const&) const = default;

private:
    static constexpr float far = std::numeric_limits<float>::infinity();

    urLinear::PointFlt min_ = {far, far, far};
    urLinear::PointFlt max_ = {-far, -far, -far};
};

static_assert(sizeof(BoundingBox) == 24);

}  // namespace urGeom
