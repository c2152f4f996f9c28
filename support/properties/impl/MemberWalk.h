// Walks over the members of one data object.
#pragma once

#include <cstddef>

#include "foundation/ur/Reference.h"

namespace nxSupport::impl {

/// Reaches the members that the data object has when the walk is created or rewound, but not those added later. Keeps
/// the data object alive; it may be null.
template <class Data>
class MemberWalk {
public:
    explicit MemberWalk(Data* data) : data_(data) {
        if (!data_) return;
        data_->members().beginWalk();
        rewind();
    }
    MemberWalk(MemberWalk const&) = delete;
    MemberWalk& operator=(MemberWalk const&) = delete;
    ~MemberWalk() {
        if (data_) data_->members().endWalk();
    }

    [[nodiscard]] Data* data() const noexcept { return data_.get(); }
    [[nodiscard]] bool valid() const noexcept { return position_ < end_; }
    /// Null where a member has left.
    [[nodiscard]] auto* member() const noexcept { return data_->members().at(position_); }
    void next() noexcept { ++position_; }
    void rewind() noexcept {
        position_ = 0;
        end_ = data_ ? data_->members().slotCount() : 0;
    }

private:
    ur::Reference<Data> data_;
    std::size_t position_ = 0;
    std::size_t end_ = 0;
};

}  // namespace nxSupport::impl
