// Bytes that threads pass on without copying them.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

#include "foundation/ur/Account.h"
#include "foundation/ur/Export.h"
#include "foundation/ur/Reference.h"
#include "foundation/ur/containers.h"
#include "foundation/urThread/ReferenceCount.h"

namespace urThread {

/// A counted block of bytes, filled when it is made and never changed: any number of threads may read it.
///
/// Buffers may share their storage, of which each sees the beginning.
class NX_API Buffer : public ReferenceCount {
public:
    /// No bytes.
    Buffer() = default;
    /// A copy of `size` bytes, which may be null when `size` is 0.
    Buffer(void const* bytes, std::size_t size);
    /// A copy of the bytes of `text`.
    explicit Buffer(std::string_view text);
    /// Takes the bytes over without copying them.
    explicit Buffer(ur::vector<char>&& bytes);
    ~Buffer() override;

    /// `size` bytes that live as long as the buffer; may be null when `size` is 0.
    [[nodiscard]] char const* data() const noexcept { return data_; }
    [[nodiscard]] std::size_t size() const noexcept { return size_; }

    /// Charges the storage, and what it is merged into, for as long as a buffer shares it. The first account stays. Not
    /// while other threads use buffers with the same storage. Throws `ur::BudgetSpent`.
    void chargeTo(std::shared_ptr<ur::Account> const& account);

private:
    friend NX_API ur::Reference<Buffer> mergeBuffers(ur::Reference<Buffer> const& a, ur::Reference<Buffer> const& b);
    class Storage;

    Buffer(std::shared_ptr<Storage> storage, std::size_t size) noexcept;

    std::shared_ptr<Storage> storage_;
    char const* data_ = nullptr;
    std::size_t size_ = 0;
};

/// A new buffer with the bytes of `a` and then those of `b`; null counts as empty. Merging one block after the other
/// into the last result copies each byte a few times at most, however many blocks there are. Charged buffers are merged
/// on the thread of their account only; throws `ur::BudgetSpent` when that has no room.
[[nodiscard]] NX_API ur::Reference<Buffer> mergeBuffers(ur::Reference<Buffer> const& a, ur::Reference<Buffer> const& b);

}  // namespace urThread
