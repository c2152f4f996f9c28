// Bytes that threads pass on without copying them.
#pragma once

#include <cstddef>
#include <string_view>

#include "foundation/ur/Export.h"
#include "foundation/ur/Reference.h"
#include "foundation/ur/containers.h"
#include "foundation/urThread/ReferenceCount.h"

namespace urThread {

/// A counted block of bytes, filled when it is made and never changed: any number of threads may read it.
class NX_API Buffer : public ReferenceCount {
public:
    /// No bytes.
    Buffer() = default;
    /// A copy of `size` bytes, which may be null when `size` is 0.
    Buffer(void const* bytes, std::size_t size);
    /// A copy of the bytes of `text`.
    explicit Buffer(std::string_view text);
    /// Takes the bytes over without copying them.
    explicit Buffer(ur::vector<char>&& bytes) noexcept;
    ~Buffer() override;

    /// `size` bytes that live as long as the buffer; may be null when `size` is 0.
    [[nodiscard]] char const* data() const noexcept { return bytes_.data(); }
    [[nodiscard]] std::size_t size() const noexcept { return bytes_.size(); }

private:
    ur::vector<char> bytes_;
};

/// A new buffer with the bytes of `a` and then those of `b`; null counts as empty.
[[nodiscard]] NX_API ur::Reference<Buffer> mergeBuffers(ur::Reference<Buffer> const& a, ur::Reference<Buffer> const& b);

}  // namespace urThread
