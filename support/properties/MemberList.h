// The members on one side of a joined set.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "foundation/ur/NodeHeap.h"
#include "foundation/ur/Reference.h"
#include "foundation/ur/containers.h"

namespace nxSupport {

/// Refers to a member in lists. Shared by the member and the lists. It outlives the member and is then empty, because
/// undo may restore a list with a member that no longer exists.
template <class Member>
class MemberEntry : public ur::NodeAllocated {
public:
    explicit MemberEntry(Member& member) noexcept : member_(&member) {}
    void ref() const noexcept { ++holders_; }
    void unref() const noexcept {
        if (--holders_ == 0) delete this;
    }

    [[nodiscard]] Member* member() const noexcept { return member_; }
    void detach() noexcept { member_ = nullptr; }

    std::uint32_t slot = 0;  ///< its index in the list that it was last added to

private:
    Member* member_;
    mutable std::uint32_t holders_ = 0;
};

/// Lists members in the order in which they were added. It does not own them.
///
/// Adding and removing take constant time, even during a walk: a removed member leaves an empty slot that walks skip,
/// and slots keep their positions until the last walk has ended.
template <class Member>
class MemberList {
public:
    void add(Member& member) {
        if (needsCleanup_) remove(member);
        add(*member.entry_);
    }
    /// Removes the first occurrence; does nothing if there is none.
    void remove(Member& member) noexcept {
        std::size_t const slot = find(member);
        if (slot == slots_.size()) return;
        empty(slot);
        closeGaps();
    }
    /// Reserves memory, so that the next `members` calls of `add` do not allocate.
    void makeRoom(std::size_t members) {
        std::size_t const needed = slots_.size() + members;
        if (slots_.capacity() < needed) slots_.reserve(std::max(needed, 2 * slots_.size()));
    }
    /// Replaces the members by the `count` results of `next()`, of which nulls are ignored, followed by those former
    /// members for which `stays` is true. A list that is being walked keeps its slots and adds new ones after them.
    /// Memory is reserved before anything changes. Restoring a list to its former members needs no memory.
    template <class Next, class Stays>
    void assign(std::size_t count, Next next, Stays stays) {
        std::size_t const former = slots_.size();
        if (slots_.capacity() < former + count) slots_.reserve(2 * (former + count));
        mayContainStale_ = needsCleanup_ = true;
        for (; count > 0; --count) {
            if (Member* const member = next()) slots_.push_back(member->entry_);
        }
        walks_ > 0 ? replaceWalked(former, stays) : replace(former, stays);
    }
    /// Declares that a member may have moved to another list without being removed.
    void markUnclean() noexcept { needsCleanup_ = true; }
    void clear() noexcept {
        for (std::size_t slot = 0; slot < slots_.size(); ++slot) empty(slot);
        closeGaps();
    }
    /// Keeps each member for which `stays(member, named)` is true, once. `named`: the last `assign` named it. Requires:
    /// all objects are restored.
    template <class Stays>
    void cleanUp(Stays stays) {
        for (std::size_t slot = 0; slot < slots_.size(); ++slot) {
            Member* const member = at(slot);
            if (!member) continue;
            if (stays(*member, slot < assignedSlots_) && find(*member) == slot) {
                slots_[slot]->slot = static_cast<std::uint32_t>(slot);
            } else {
                empty(slot);
            }
        }
        needsCleanup_ = false;
        closeGaps();
    }

    [[nodiscard]] bool contains(Member const& member) const noexcept { return find(member) != slots_.size(); }
    [[nodiscard]] std::size_t size() const noexcept {
        return static_cast<std::size_t>(
            std::count_if(slots_.begin(), slots_.end(), [](auto const& entry) { return entry && entry->member(); }));
    }
    [[nodiscard]] std::size_t slotCount() const noexcept { return slots_.size(); }
    /// Declares that a member may cease to exist without being removed.
    void markStale() noexcept { mayContainStale_ = true; }
    /// Whether the list may contain members that do not exist or have moved to another list.
    [[nodiscard]] bool mayContainStale() const noexcept { return mayContainStale_; }
    /// Null where a member was removed, and after the last slot.
    [[nodiscard]] Member* at(std::size_t slot) const noexcept {
        return slot < slots_.size() && slots_[slot] ? slots_[slot]->member() : nullptr;
    }
    template <class Visit>
    void forEach(Visit visit) const {
        for (auto const& entry : slots_) {
            if (entry && entry->member()) visit(*entry->member());
        }
    }

    void beginWalk() noexcept { ++walks_; }
    void endWalk() noexcept {
        if (--walks_ == 0) closeGaps();
    }

private:
    using Entry = MemberEntry<Member>;

    void add(Entry& entry) {
        slots_.emplace_back(&entry);
        entry.slot = static_cast<std::uint32_t>(slots_.size() - 1);
    }
    void empty(std::size_t slot) noexcept {
        if (!slots_[slot]) return;
        slots_[slot].reset();
        ++emptySlots_;
    }
    // The entry's slot is right unless undo has restored a list that contained the entry before.
    [[nodiscard]] std::size_t find(Member const& member) const noexcept {
        if (at(member.entry_->slot) == &member) return member.entry_->slot;
        return static_cast<std::size_t>(std::find(slots_.begin(), slots_.end(), member.entry_) - slots_.begin());
    }
    // Both replace the first `former` slots by those after them.
    template <class Stays>
    void replace(std::size_t former, Stays stays) {
        std::rotate(slots_.begin(), slots_.begin() + static_cast<std::ptrdiff_t>(former), slots_.end());
        name(0, slots_.size() - former);
        auto const goes = [&](auto const& entry) { return !entry || !staysUnnamed(*entry, 0, stays); };
        auto const unnamed = slots_.begin() + static_cast<std::ptrdiff_t>(assignedSlots_);
        slots_.erase(std::remove_if(unnamed, slots_.end(), goes), slots_.end());
        emptySlots_ = 0;
    }
    template <class Stays>
    void replaceWalked(std::size_t former, Stays stays) {
        name(former, slots_.size());
        for (std::size_t slot = 0; slot < former; ++slot) {
            auto const entry = slots_[slot];
            if (entry && staysUnnamed(*entry, former, stays)) slots_.push_back(entry);
            empty(slot);
        }
    }
    void name(std::size_t begin, std::size_t end) noexcept {
        for (std::size_t slot = begin; slot < end; ++slot) slots_[slot]->slot = static_cast<std::uint32_t>(slot);
        assignedSlots_ = end;
    }
    template <class Stays>
    [[nodiscard]] bool staysUnnamed(Entry const& entry, std::size_t firstNamed, Stays& stays) const {
        Member* const member = entry.member();
        bool const isNamed = firstNamed <= entry.slot && entry.slot < assignedSlots_ && at(entry.slot) == member;
        return member && !isNamed && stays(*member);
    }
    void closeGaps() noexcept {
        if (walks_ > 0) return;
        while (!slots_.empty() && !slots_.back()) {
            slots_.pop_back();
            --emptySlots_;
        }
        if (emptySlots_ <= slots_.size() / 2) return;
        slots_.erase(std::remove(slots_.begin(), slots_.end(), nullptr), slots_.end());
        emptySlots_ = 0;
        for (std::size_t i = 0; i < slots_.size(); ++i) slots_[i]->slot = static_cast<std::uint32_t>(i);
    }

    ur::vector<ur::Reference<Entry>> slots_;
    std::size_t emptySlots_ = 0;     ///< empty slots
    std::size_t assignedSlots_ = 0;  ///< the number of slots that the last `assign` filled with named members
    unsigned walks_ = 0;
    bool mayContainStale_ = false;  ///< may contain members that do not exist
    bool needsCleanup_ = false;     ///< may contain members twice, or some that have moved to another list
};

}  // namespace nxSupport
