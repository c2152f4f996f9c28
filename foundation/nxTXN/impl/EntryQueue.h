// Queues of objects, linked through their table entries.
#pragma once

#include <cstdint>

#include "foundation/nxTXN/impl/ObjectTable.h"

namespace nxTXN::impl {

/// Objects of one manager in the order in which they were pushed; destroyed objects are skipped.
///
/// Pushing allocates nothing and cannot fail, since destructors push. Each object is in the queue at most once.
/// Requires: the table is not compacted while the queue is not empty.
template <std::uint32_t Entry::*next>
class EntryQueue {
public:
    explicit EntryQueue(ObjectTable& objects) noexcept : objects_(objects) {}

    [[nodiscard]] bool empty() const noexcept { return first_ == Entry::none; }
    void push(std::uint32_t index) noexcept {
        objects_[index].*next = Entry::none;
        (empty() ? first_ : objects_[last_].*next) = index;
        last_ = index;
    }
    /// Null when the first object is destroyed.
    [[nodiscard]] Object* pop() noexcept {
        Entry const& entry = objects_[first_];
        first_ = entry.*next;
        return entry.object;
    }
    void clear() noexcept { first_ = Entry::none; }

    /// Calls `visit(Object&)` for each object. Objects may be created and destroyed meanwhile, but not pushed.
    template <class Visit>
    void forEach(Visit visit) const {
        for (std::uint32_t i = first_; i != Entry::none; i = objects_[i].*next) {
            if (Object* const object = objects_[i].object) visit(*object);
        }
    }

private:
    ObjectTable& objects_;
    std::uint32_t first_ = Entry::none;
    std::uint32_t last_ = Entry::none;
};

}  // namespace nxTXN::impl
