// Byte blocks that threads share without copying.
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

/// A counted block of bytes, filled at construction and never changed: any number of threads may read it.
///
/// Buffers may share storage; each sees a prefix of it.
class NX_API Buffer : public ReferenceCount {
public:
    /// An empty buffer.
    Buffer() = default;
    /// Copies `size` bytes; `bytes` may be null when `size` is 0.
    Buffer(void const* bytes, std::size_t size);
    /// Copies the bytes of `text`.
    explicit Buffer(std::string_view text);
    /// Takes over the bytes without copying.
    explicit Buffer(ur::vector<char>&& bytes);
    ~Buffer() override;

    /// `size` bytes that live as long as the buffer; may be null when `size` is 0.
    [[nodiscard]] char const* data() const noexcept { return data_; }
    [[nodiscard]] std::size_t size() const noexcept { return size_; }

    /// Charges the storage, and those that it is merged into, while a buffer uses it. The first account stays.
    /// Requires: no other thread uses buffers with the same storage. Throws `ur::BudgetSpent`.
    void chargeTo(std::shared_ptr<ur::Account> const& account);

private:
    friend NX_API ur::Reference<Buffer> mergeBuffers(ur::Reference<Buffer> const& a, ur::Reference<Buffer> const& b);
    class Storage;

    Buffer(std::shared_ptr<Storage> storage, std::size_t size) noexcept;

    std::shared_ptr<Storage> storage_;
    char const* data_ = nullptr;
    std::size_t size_ = 0;
};

/// A new buffer with the bytes of `a` followed by those of `b`; null counts as empty. Repeatedly merging a block into
/// the last result copies each byte a few times at most. Merge charged buffers only on their account's thread; throws
/// `ur::BudgetSpent` when the account has no room.
[[nodiscard]] NX_API ur::Reference<Buffer> mergeBuffers(ur::Reference<Buffer> const& a, ur::Reference<Buffer> const& b);

}  // namespace urThread
