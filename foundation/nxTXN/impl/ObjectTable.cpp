// Adds and removes entries.
#include "foundation/nxTXN/impl/ObjectTable.h"

namespace nxTXN::impl {

std::uint32_t ObjectTable::add(Entry const& entry) {
    entries_.push_back(entry);
    return size() - 1;
}

void ObjectTable::remove(std::uint32_t index) noexcept {
    entries_[index].object = nullptr;
    ++gone_;
}

}  // namespace nxTXN::impl
