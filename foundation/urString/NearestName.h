// Suggests the probable name for a misspelt one.
#pragma once

#include <cstddef>
#include <string_view>

#include "foundation/ur/Export.h"
#include "foundation/urString/CString.h"

namespace urString {

/// Takes names one by one and keeps the one nearest to a wanted name: they differ in one place, or in at most a third
/// of the bytes. Two neighbouring bytes that are exchanged are one difference. Compares the first 63 bytes of each
/// name.
class NX_API NearestName {
public:
    explicit NearestName(std::string_view wanted);

    /// Whether `name` is now the nearest.
    bool offer(std::string_view name);
    /// Empty when no name is near enough.
    [[nodiscard]] CString const& get() const noexcept { return nearest_; }
    /// "; do you mean NAME?", or an empty text.
    [[nodiscard]] CString question() const;

private:
    CString wanted_;
    CString nearest_;
    std::size_t least_ = static_cast<std::size_t>(-1);
};

}  // namespace urString
