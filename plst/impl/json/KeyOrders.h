// Predicts the order of keys in consecutive dictionaries.
#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <span>

namespace nxPLST::impl {

/// Sorts the keys of small dictionaries.
///
/// Dictionaries of one text mostly have the same keys in the same places. So the order of the last dictionary with as
/// many members is the guess for the next, and often it only has to be checked.
class KeyOrders {
public:
    /// The indices of the members by ascending keys, valid until the next call. Null when this does not apply: two keys
    /// are equal, or there are no or too many members.
    template <class Member>
    [[nodiscard]] std::uint8_t const* of(std::span<Member const> members) noexcept {
        if (members.empty() || members.size() > mostMembers) return nullptr;
        std::uint8_t* const order = guess(members.size());
        auto const relation = [&](std::size_t place, std::uint8_t member) {
            return members[order[place]].key <=> members[member].key;
        };
        for (std::size_t i = 1; i < members.size(); ++i) {
            std::uint8_t const member = order[i];
            auto before = relation(i - 1, member);
            if (before < 0) [[likely]]
                continue;
            std::size_t place = i;
            while (before > 0) {
                order[place] = order[place - 1];
                before = --place > 0 ? relation(place - 1, member) : std::strong_ordering::less;
            }
            order[place] = member;
            if (before == 0) return nullptr;
        }
        return order;
    }

private:
    static constexpr std::size_t mostMembers = 24;

    [[nodiscard]] std::uint8_t* guess(std::size_t size) noexcept {
        auto& order = orders_[size - 1];
        bool const isNew = order[0] == order[1];
        if (isNew) std::iota(order.begin(), order.end(), std::uint8_t(0));
        return order.data();
    }

    /// For each size, the member indices in key order; all zero for a size not seen yet.
    std::array<std::array<std::uint8_t, mostMembers>, mostMembers> orders_{};
};

}  // namespace nxPLST::impl
