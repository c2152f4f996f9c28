// An integer with the range that a user interface shows for it.
#pragma once

#include <cstdint>

namespace nxSupport {

/// A value and its range. The range is for display; values are not clamped. The default range is empty, 1 to 0.
class BoundedInt {
public:
    BoundedInt() noexcept = default;
    explicit BoundedInt(std::int32_t value) noexcept : value_(value) {}
    BoundedInt(std::int32_t value, std::int32_t minimum, std::int32_t maximum) noexcept
        : value_(value), minimum_(minimum), maximum_(maximum) {}

    [[nodiscard]] std::int32_t value() const noexcept { return value_; }
    operator int() const noexcept { return value_; }
    [[nodiscard]] std::int32_t minValue() const noexcept { return minimum_; }
    [[nodiscard]] std::int32_t maxValue() const noexcept { return maximum_; }

    void setValue(std::int32_t value) noexcept { value_ = value; }
    void setMinMax(std::int32_t minimum, std::int32_t maximum) noexcept {
        minimum_ = minimum;
        maximum_ = maximum;
    }

private:
    std::int32_t value_ = 0;
    std::int32_t minimum_ = 1;
    std::int32_t maximum_ = 0;
};

}  // namespace nxSupport
