// The objects of one manager, with what is known of each.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "foundation/nxTXN/Object.h"
#include "foundation/ur/containers.h"

namespace nxTXN::impl {

/// What the manager knows of one object.
struct Entry {
    Object* object;  // null once it has gone

    std::uint32_t pins : 25;     // records that need it
    std::uint32_t counted : 1;   // it is a RefCountedObject, deleted by the manager
    std::uint32_t born : 1;      // made in a transaction whose undoing unmakes it
    std::uint32_t unborn : 1;    // its making is undone
    std::uint32_t dead : 1;      // its last reference has gone
    std::uint32_t notified : 1;  // `onTxnDestroyed` was called
    std::uint32_t queued : 1;    // it is in one of the queues of its Lifetimes
    std::uint32_t existed : 1;   // while it is among the changes: what it was before

    /// While it lives: the transaction that recorded it last. When dead: its bytes that count as history.
    std::uint32_t stamp;

    std::uint32_t nextWaiting;  // the index of the next object in the queue of that name, or none
    std::uint32_t nextChanged;

    static constexpr std::uint32_t none = ~0U;

    [[nodiscard]] bool exists() const noexcept { return !unborn && !dead; }
    [[nodiscard]] bool extant() const noexcept { return object && exists(); }
};
static_assert(sizeof(Entry) == 24);

/// All objects in the order in which they were made. An object knows its index.
class ObjectTable {
public:
    /// The index of the new entry.
    std::uint32_t add(Entry const& entry);
    void remove(std::uint32_t index) noexcept;

    [[nodiscard]] Entry& operator[](std::uint32_t index) noexcept { return entries_[index]; }
    /// Indices from here on are those of objects yet to be made.
    [[nodiscard]] std::uint32_t size() const noexcept { return static_cast<std::uint32_t>(entries_.size()); }

    /// Whether closing gaps would save more than growing.
    [[nodiscard]] bool worthCompacting() const noexcept {
        return entries_.size() == entries_.capacity() && gone_ > entries_.size() / 2;
    }
    /// Closes the gaps and calls `moved(object, index)` for every object. `bounds` are indices kept elsewhere, in
    /// ascending order; they are changed to bound the same objects as before.
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
