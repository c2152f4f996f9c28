// The objects of one manager and their states.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "foundation/nxTXN/Object.h"
#include "foundation/ur/containers.h"

namespace nxTXN::impl {

/// The state of one object.
struct Entry {
    Object* object;  // null once destroyed

    std::uint32_t pins : 25;     // records that need it
    std::uint32_t counted : 1;   // it is a RefCountedObject, deleted by the manager
    std::uint32_t born : 1;      // created in a transaction whose undo reverts the creation
    std::uint32_t unborn : 1;    // its creation is undone
    std::uint32_t dead : 1;      // its last reference has gone
    std::uint32_t notified : 1;  // `onTxnDestroyed` was called
    std::uint32_t queued : 1;    // it is in one of the queues of its Lifetimes
    std::uint32_t existed : 1;   // while it is in the changes: its state before

    /// While it lives: the last transaction that recorded it. When dead: its bytes that count as history.
    std::uint32_t stamp;

    std::uint32_t nextWaiting;  // the index of the next object in `waiting_`, or none
    std::uint32_t nextChanged;

    static constexpr std::uint32_t none = ~0U;

    [[nodiscard]] bool exists() const noexcept { return !unborn && !dead; }
    [[nodiscard]] bool extant() const noexcept { return object && exists(); }
};
static_assert(sizeof(Entry) == 24);

/// All objects in order of creation. An object knows its index.
class ObjectTable {
public:
    /// Returns the index of the new entry.
    std::uint32_t add(Entry const& entry);
    void remove(std::uint32_t index) noexcept;

    [[nodiscard]] Entry& operator[](std::uint32_t index) noexcept { return entries_[index]; }
    /// Objects created later get indices from here on.
    [[nodiscard]] std::uint32_t size() const noexcept { return static_cast<std::uint32_t>(entries_.size()); }

    /// Whether closing gaps saves more than growing.
    [[nodiscard]] bool worthCompacting() const noexcept {
        return entries_.size() == entries_.capacity() && gone_ > entries_.size() / 2;
    }
    /// Closes the gaps and calls `moved(object, index)` for every object. `bounds` are external indices in ascending
    /// order; they are adjusted to bound the same objects as before.
    template <class Moved>
    void compact(std::span<std::uint32_t* const> bounds, Moved moved);

private:
    ur::vector<Entry> entries_;
    std::size_t gone_ = 0;
};

template <class Moved>
void ObjectTable::compact(std::span<std::uint32_t* const> bounds, Moved moved) {
    std::uint32_t kept = 0;
    auto bound = bounds.begin();
    for (std::uint32_t i = 0; i < size(); ++i) {
        for (; bound != bounds.end() && **bound <= i; ++bound) **bound = kept;
        if (!entries_[i].object) continue;
        entries_[kept] = entries_[i];
        moved(*entries_[kept].object, kept);
        ++kept;
    }
    for (; bound != bounds.end(); ++bound) **bound = kept;
    entries_.resize(kept);
    gone_ = 0;
}

}  // namespace nxTXN::impl
