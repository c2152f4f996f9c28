// The members on one side of a joined set.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "foundation/ur/containers.h"

namespace nxSupport {

/// Members in the order in which they were added; it does not own them.
///
/// Adding and removing take constant time, also while the list is walked: a removed member leaves an empty slot that
/// walks skip, and slots keep their positions until the last walk has ended.
template <class Member>
class MemberList {
public:
    void add(Member& member) {
        slots_.push_back(&member);
        member.slot_ = static_cast<std::uint32_t>(slots_.size() - 1);
    }
    /// The first occurrence; nothing when there is none.
    void remove(Member& member) noexcept {
        std::size_t const slot = find(member);
        if (slot == slots_.size()) return;
        slots_[slot] = nullptr;
        ++gone_;
        if (walks_ == 0) closeGaps();
    }
    /// Makes these the members. A list that is walked keeps its slots, and gets new ones behind them.
    void assign(ur::vector<Member*> const& members) {
        if (equals(members)) return;
        assigned_ = true;
        if (walks_ == 0) slots_.clear();
        std::fill(slots_.begin(), slots_.end(), nullptr);
        gone_ = slots_.size();
        for (Member* member : members) add(*member);
    }

    [[nodiscard]] std::size_t size() const noexcept { return slots_.size() - gone_; }
    [[nodiscard]] bool empty() const noexcept { return size() == 0; }
    [[nodiscard]] std::size_t slotCount() const noexcept { return slots_.size(); }
    /// Whether the members were ever assigned, and not only added one by one.
    [[nodiscard]] bool assigned() const noexcept { return assigned_; }
    /// Null where a member was removed, and beyond the last slot.
    [[nodiscard]] Member* at(std::size_t slot) const noexcept { return slot < slots_.size() ? slots_[slot] : nullptr; }
    template <class Visit>
    void forEach(Visit visit) const {
        for (Member* member : slots_) {
            if (member) visit(*member);
        }
    }

    void beginWalk() noexcept { ++walks_; }
    void endWalk() noexcept {
        if (--walks_ == 0) closeGaps();
    }

private:
    // The member knows where it is, unless undo has brought back a list that it was in before.
    [[nodiscard]] std::size_t find(Member const& member) const noexcept {
        if (at(member.slot_) == &member) return member.slot_;
        return static_cast<std::size_t>(std::find(slots_.begin(), slots_.end(), &member) - slots_.begin());
    }
    [[nodiscard]] bool equals(ur::vector<Member*> const& members) const noexcept {
        return gone_ == 0 && slots_ == members;
    }
    void closeGaps() noexcept {
        while (!slots_.empty() && !slots_.back()) {
            slots_.pop_back();
            --gone_;
        }
        if (gone_ <= slots_.size() / 2) return;
        slots_.erase(std::remove(slots_.begin(), slots_.end(), nullptr), slots_.end());
        gone_ = 0;
        for (std::size_t i = 0; i < slots_.size(); ++i) slots_[i]->slot_ = static_cast<std::uint32_t>(i);
    }

    ur::vector<Member*> slots_;
    std::size_t gone_ = 0;  // empty slots
    unsigned walks_ = 0;
    bool assigned_ = false;
};

}  // namespace nxSupport
