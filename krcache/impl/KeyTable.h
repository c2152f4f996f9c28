// The manager's table of keys.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "krcache/Shim.h"

namespace urKRCache {

/// Finds the shim of a key by hash and comparison. Holds one reference to each shim. Shims that are being removed are
/// still in the table but are not found.
///
/// Open addressing: a slot stores the hash next to the shim, so that a look-up reads a shim only when it is very likely
/// the right one. Comparisons run code of keys, which may change the table: afterwards everything read before must be
/// read again.
class KeyTable {
public:
    /// `slots`: the initial number of slots; a power of two, at least 2.
    explicit KeyTable(std::size_t slots) noexcept : firstSlots_(slots) {}
    KeyTable(KeyTable const&) = delete;
    KeyTable& operator=(KeyTable const&) = delete;

    /// Null if no key is equal.
    [[nodiscard]] Shim* find(KeyData const& key) const;
    /// Requires: the table has no equal key, and the shim has its key's hash.
    void insert(Shim& shim);
    /// Moves the table's reference to the caller. Null if the shim is not here.
    ur::Reference<Shim> take(Shim const& shim) noexcept;

    /// Whether a look-up can reach this shim.
    [[nodiscard]] bool reaches(Shim const& shim) const noexcept { return size_ > 0 && slots_[placeOf(shim)].shim; }

    [[nodiscard]] std::size_t size() const noexcept { return size_; }
    /// Changes with every insertion and removal.
    [[nodiscard]] std::uint64_t version() const noexcept { return version_; }

    /// Calls `visit` with every shim. Requires: `visit` runs no code of keys, resources or clients.
    template <class Visit>
    void forEach(Visit&& visit) const {
        for (std::size_t i = 0; i < capacity_; ++i) {
            if (slots_[i].shim) visit(*slots_[i].shim);
        }
    }

    /// The first shim at or after `place`, which is moved there. Null if there is none. Continuing from the same place
    /// is only correct while shims are taken out and none are added.
    [[nodiscard]] Shim* firstFrom(std::size_t& place) const noexcept {
        while (place < capacity_ && !slots_[place].shim) ++place;
        return place < capacity_ ? slots_[place].shim : nullptr;
    }

private:
    struct Slot {
        std::uint32_t hash;
        Shim* shim;
    };

    [[nodiscard]] std::size_t home(std::uint32_t hash) const noexcept {
        return static_cast<std::size_t>(hash * 0x9E3779B97F4A7C15U >> shift_);
    }
    [[nodiscard]] std::size_t after(std::size_t place) const noexcept { return (place + 1) & (capacity_ - 1); }
    [[nodiscard]] std::size_t placeOf(Shim const& shim) const noexcept;
    [[nodiscard]] ur::Reference<Shim> findHeld(KeyData const& key, std::uint32_t hash) const;
    [[nodiscard]] Shim* findAmongAll(KeyData const& key, std::uint32_t hash) const;
    void put(Slot slot) noexcept;
    void grow();
    void close(std::size_t hole) noexcept;

    std::size_t firstSlots_;
    std::unique_ptr<Slot[]> slots_;
    std::size_t capacity_ = 0;  ///< a power of two, or 0 before the first insertion
    std::size_t size_ = 0;
    unsigned shift_ = 64;
    std::uint64_t version_ = 0;
};

inline Shim* KeyTable::find(KeyData const& key) const {
    std::uint32_t const hash = key.hash();
    if (size_ == 0) return nullptr;
    for (std::size_t place = home(hash); slots_[place].shim; place = after(place)) {
        Shim* const shim = slots_[place].shim;
        if (slots_[place].hash != hash) continue;
        std::uint64_t const before = version_;
        ur::Reference<KeyData> const other = shim->key_;
        bool const equal = key.compare(other.get()) == 0;
        if (version_ != before) [[unlikely]]
            return findAmongAll(key, hash);
        if (equal && shim->removal_ == Shim::Removal::none) return shim;
    }
    return nullptr;
}

}  // namespace urKRCache
