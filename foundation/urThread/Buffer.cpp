// Creates and merges buffers.
#include "foundation/urThread/Buffer.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <utility>

namespace urThread {

/// Bytes followed by spare room. The bytes that buffers see never change; the first buffer that claims the rest owns
/// it.
class Buffer::Storage {
public:
    explicit Storage(ur::vector<char>&& bytes) noexcept
        : taken_(std::move(bytes)), bytes_(taken_.data()), capacity_(taken_.size()), used_(capacity_) {}
    /// Throws `ur::BudgetSpent`.
    Storage(std::size_t capacity, std::shared_ptr<ur::Account> account)
        : charge_(std::move(account), capacity),
          made_(std::make_unique_for_overwrite<char[]>(capacity)),
          bytes_(made_.get()),
          capacity_(capacity) {}

    [[nodiscard]] char const* bytes() const noexcept { return bytes_; }
    [[nodiscard]] std::shared_ptr<ur::Account> const& account() const noexcept { return charge_.account(); }
    void chargeTo(std::shared_ptr<ur::Account> const& account) {
        if (!charge_) charge_ = ur::Charge(account, capacity_);
    }

    /// Appends the bytes of `added` after the first `size`. False when there is no room, or bytes are there already.
    bool append(std::size_t size, Buffer const& added) noexcept {
        if (added.size() > capacity_ - size) return false;
        if (!used_.compare_exchange_strong(size, size + added.size(), std::memory_order_relaxed)) return false;
        std::memcpy(bytes_ + size, added.data(), added.size());
        return true;
    }

private:
    ur::Charge charge_;
    ur::vector<char> taken_;
    std::unique_ptr<char[]> made_;
    char* bytes_;
    std::size_t capacity_;
    std::atomic<std::size_t> used_ = 0;
};

Buffer::Buffer(void const* bytes, std::size_t size)
    : Buffer(ur::vector<char>(static_cast<char const*>(bytes), static_cast<char const*>(bytes) + size)) {}

Buffer::Buffer(std::string_view text) : Buffer(text.data(), text.size()) {}

Buffer::Buffer(ur::vector<char>&& bytes) {
    if (bytes.empty()) return;
    size_ = bytes.size();
    storage_ = std::make_shared<Storage>(std::move(bytes));
    data_ = storage_->bytes();
}

Buffer::Buffer(std::shared_ptr<Storage> storage, std::size_t size) noexcept
    : storage_(std::move(storage)), data_(storage_ ? storage_->bytes() : nullptr), size_(size) {}

Buffer::~Buffer() = default;

void Buffer::chargeTo(std::shared_ptr<ur::Account> const& account) {
    if (storage_) storage_->chargeTo(account);
}

ur::Reference<Buffer> mergeBuffers(ur::Reference<Buffer> const& a, ur::Reference<Buffer> const& b) {
    Buffer const none;
    Buffer const& first = a ? *a : none;
    Buffer const& second = b ? *b : none;
    auto const make = [](std::shared_ptr<Buffer::Storage> storage, std::size_t size) {
        return ur::Reference<Buffer>(new Buffer(std::move(storage), size));
    };
    if (second.size() == 0) return make(first.storage_, first.size());
    if (first.size() == 0) return make(second.storage_, second.size());
    std::size_t const size = first.size() + second.size();
    if (first.storage_->append(first.size(), second)) return make(first.storage_, size);
    // Reserves room for the next merge, so the copies of a body that arrives in blocks are about three times its size.
    auto const& charged = first.storage_->account() ? first.storage_ : second.storage_;
    auto storage =
        std::make_shared<Buffer::Storage>(std::max(size, first.size() + first.size() / 2), charged->account());
    static_cast<void>(storage->append(0, first));
    static_cast<void>(storage->append(first.size(), second));
    return make(std::move(storage), size);
}

}  // namespace urThread
