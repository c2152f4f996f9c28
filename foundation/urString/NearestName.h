// What a misspelt name was probably to be.
#pragma once

#include <cstddef>
#include <string_view>

#include "foundation/ur/Export.h"
#include "foundation/urString/CString.h"

namespace urString {

/// Takes names one after the other and keeps the one that is most like a wanted one: it differs in at most a third of
/// its bytes. Of names and of what is wanted, the first 63 bytes are compared.
class NX_API NearestName {
public:
    explicit NearestName(std::string_view wanted);

    /// Whether the name is now the nearest.
    bool offer(std::string_view name);
    /// Empty when no name was like the wanted one.
    [[nodiscard]] CString const& get() const noexcept { return nearest_; }
    /// "; do you mean NAME?", or nothing.
    [[nodiscard]] CString question() const;

private:
    CString wanted_;
    CString nearest_;
    std::size_t least_ = static_cast<std::size_t>(-1);
};

}  // namespace urString
