// Finds a written object's number.
#include "foundation/io/impl/ObjectIndex.h"

#include <algorithm>
#include <bit>
#include <cstdint>

namespace ioImpl {
namespace {

constexpr std::size_t smallestCapacity = 64;

}  // namespace

std::size_t ObjectIndex::slotOf(void const* object) const noexcept {
    // Multiplying by the golden ratio spreads addresses over the upper bits.
    std::uint64_t const hash = reinterpret_cast<std::uintptr_t>(object) * 0x9E3779B97F4A7C15U;
    return static_cast<std::size_t>(hash >> (64 - std::countr_zero(slots_.size())));
}

void ObjectIndex::insert(void const* object, std::size_t position) {
    std::size_t slot = slotOf(object);
    while (slots_[slot] != 0) slot = (slot + 1) & (slots_.size() - 1);
    slots_[slot] = position + 1;
}

void ObjectIndex::rebuild(std::vector<void const*> const& objects, std::size_t capacity) {
    slots_.assign(capacity, 0);
    for (std::size_t i = 0; i < known_; ++i) insert(objects[i], i);
}

void ObjectIndex::catchUp(std::vector<void const*> const& objects) {
    std::size_t const needed = std::max(smallestCapacity, std::bit_ceil(objects.size() * 2));
    if (needed > slots_.size()) rebuild(objects, needed);
    for (; known_ < objects.size(); ++known_) insert(objects[known_], known_);
}

std::size_t ObjectIndex::find(std::vector<void const*> const& objects, void const* object) {
    if (known_ < objects.size()) catchUp(objects);
    if (known_ == 0) return none;
    for (std::size_t slot = slotOf(object); slots_[slot] != 0; slot = (slot + 1) & (slots_.size() - 1)) {
        if (objects[slots_[slot] - 1] == object) return slots_[slot] - 1;
    }
    return none;
}

}  // namespace ioImpl
