// The steps of a history.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

#include "foundation/nxTXN/impl/RecordStore.h"
#include "foundation/ur/Reference.h"
#include "foundation/ur/ReferenceCount.h"
#include "foundation/ur/containers.h"
#include "foundation/urString/CString.h"

namespace nxTXN::impl {

/// The name of one or more steps.
struct SharedName final : ur::ReferenceCount {
    explicit SharedName(urString::CString const& name) : text(name) {}
    urString::CString const text;
};

/// A committed transaction.
struct Step {
    ur::Reference<SharedName> name;
    RecordStore::Place begin = {};  // of its records
    std::uint32_t records = 0;
    std::uint32_t stamp = 0;  // stamp of the objects that it recorded
    std::uint32_t birthsBegin = 0;
    std::uint32_t birthsEnd = 0;
};

/// A sequence of steps that grows and shrinks at its end and drops steps from its beginning. It lies in blocks, so that
/// a long sequence grows without copying.
class Steps {
public:
    explicit Steps(Sizes const& sizes) noexcept : blockBits_(sizes.stepBlockBits) {}

    [[nodiscard]] std::size_t size() const noexcept { return end_ - begin_; }
    [[nodiscard]] bool empty() const noexcept { return end_ == begin_; }
    [[nodiscard]] Step& operator[](std::size_t i) noexcept { return slot(begin_ + i); }
    [[nodiscard]] Step const& operator[](std::size_t i) const noexcept { return slot(begin_ + i); }
    [[nodiscard]] Step& back() noexcept { return slot(end_ - 1); }

    /// Ensures that the next `push` does not allocate.
    void makeRoom() {
        if (end_ == blocks_.size() * blockSize()) blocks_.push_back(std::make_unique<Step[]>(blockSize()));
    }
    void push(Step step) {
        makeRoom();
        slot(end_++) = std::move(step);
    }
    Step popBack() noexcept {
        Step step = std::move(slot(--end_));
        if (end_ + 2 * blockSize() <= blocks_.size() * blockSize()) blocks_.pop_back();  // keeps one block in reserve
        return step;
    }
    Step popFront() noexcept {
        Step step = std::move(slot(begin_++));
        if (begin_ == blockSize()) {
            blocks_.erase(blocks_.begin());
            begin_ = 0;
            end_ -= blockSize();
        }
        return step;
    }

private:
    [[nodiscard]] std::size_t blockSize() const noexcept { return std::size_t(1) << blockBits_; }
    [[nodiscard]] Step& slot(std::size_t i) const noexcept { return blocks_[i >> blockBits_][i & (blockSize() - 1)]; }

    unsigned const blockBits_;
    ur::vector<std::unique_ptr<Step[]>> blocks_;
    std::size_t begin_ = 0;  // index in the first block
    std::size_t end_ = 0;
};

}  // namespace nxTXN::impl
