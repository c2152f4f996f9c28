// Grows and shrinks the table of keys, and finds keys while it changes.
#include "krcache/impl/KeyTable.h"

#include <bit>
#include <utility>

namespace urKRCache {

// For keys whose comparison uses the cache: it holds the candidates, so that a comparison may remove them.
ur::Reference<Shim> KeyTable::findHeld(KeyData const& key, std::uint32_t hash) const {
    ur::vector<ur::Reference<Shim>> candidates;
    for (std::size_t place = home(hash); slots_[place].shim; place = after(place)) {
        if (slots_[place].hash == hash) candidates.emplace_back(slots_[place].shim);
    }
    for (ur::Reference<Shim> const& candidate : candidates) {
        ur::Reference<KeyData> const other = candidate->key_;
        if (other && key.compare(other.get()) == 0 && candidate->removal_ == Shim::Removal::none) return candidate;
    }
    return {};
}

// Returns null only if no shim was added while all candidates were compared.
Shim* KeyTable::findAmongAll(KeyData const& key, std::uint32_t hash) const {
    std::uint64_t before = 0;
    do {
        before = version_;
        ur::Reference<Shim> found = findHeld(key, hash);
        if (!found || found->removal_ != Shim::Removal::none) continue;
        --found->strongCount_;  // the table holds another one; dropping this one must not remove the result
        return found.release();
    } while (version_ != before);
    return nullptr;
}

void KeyTable::insert(Shim& shim) {
    if ((size_ + 1) * 3 > capacity_ * 2) grow();
    put({shim.hash_, &shim});
    shim.ref();
    ++size_;
    ++version_;
}

void KeyTable::put(Slot slot) noexcept {
    std::size_t place = home(slot.hash);
    while (slots_[place].shim) place = after(place);
    slots_[place] = slot;
}

void KeyTable::grow() {
    std::size_t const former = capacity_;
    std::size_t const wanted = former == 0 ? firstSlots_ : former * 2;
    auto const old = std::exchange(slots_, std::make_unique<Slot[]>(wanted));
    capacity_ = wanted;
    shift_ = static_cast<unsigned>(std::countl_zero(std::uint64_t{wanted - 1}));
    for (std::size_t i = 0; i < former; ++i) {
        if (old[i].shim) put(old[i]);
    }
}

ur::Reference<Shim> KeyTable::take(Shim const& shim) noexcept {
    if (size_ == 0) return {};
    std::size_t const place = placeOf(shim);
    if (!slots_[place].shim) return {};
    auto taken = ur::Reference<Shim>::adopt(slots_[place].shim);
    close(place);
    --size_;
    ++version_;
    return taken;
}

/// The shim's slot, or the empty slot that ends the search.
std::size_t KeyTable::placeOf(Shim const& shim) const noexcept {
    std::size_t place = home(shim.hash_);
    while (slots_[place].shim && slots_[place].shim != &shim) place = after(place);
    return place;
}

// Moves back each later slot that the hole would make unreachable.
void KeyTable::close(std::size_t hole) noexcept {
    std::size_t const mask = capacity_ - 1;
    for (std::size_t place = after(hole); slots_[place].shim; place = after(place)) {
        std::size_t const fromHome = (place - home(slots_[place].hash)) & mask;
        if (fromHome < ((place - hole) & mask)) continue;
        slots_[hole] = slots_[place];
        hole = place;
    }
    slots_[hole].shim = nullptr;
}

}  // namespace urKRCache
