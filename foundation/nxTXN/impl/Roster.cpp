// Entering and leaving the roster.
#include "foundation/nxTXN/impl/Roster.h"

namespace nxTXN::impl {

std::uint32_t Roster::add(Entry const& entry) {
    entries_.push_back(entry);
    return size() - 1;
}

void Roster::remove(std::uint32_t index) noexcept {
    entries_[index].object = nullptr;
    ++gone_;
}

}  // namespace nxTXN::impl
