// Detects values that have been dropped.
#include "tools/nxhost/KeptValues.h"

#include <algorithm>

#include "script/ScriptValue.h"

namespace nxhost {

namespace {

constexpr std::size_t bytesOfEntry = 64;  // in the table

}  // namespace

void KeptValues::add(ItemReference const& value, std::size_t more) {
    if (!value || !charge_ || isKept(value)) return;
    std::size_t const bytes = nxSupport::bytesOf(*value) + bytesOfEntry + more;
    if (values_.size() >= purgeThreshold_ || !charge_.account()->allows(bytes)) forgetDropped();
    charge_.add(bytes);
    values_.try_emplace(value.get(), Kept{value, bytes});
}

void KeptValues::addAnyway(ItemReference const& value, std::size_t more) {
    if (value && !isKept(value)) addSharedAnyway(value, nxSupport::bytesOf(*value) + more);
}

void KeptValues::addSharedAnyway(ur::Reference<ur::ReferenceCount const> const& shared, std::size_t bytes) {
    bytes += bytesOfEntry;
    if (!charge_ || !values_.try_emplace(shared.get(), Kept{shared, bytes}).second) return;
    charge_.set(charge_.bytes() + bytes);
}

void KeptValues::settle() noexcept {
    if (!charge_) return;
    if (values_.size() >= purgeThreshold_ || !charge_.account()->allows(charge_.bytes() / 4)) forgetDropped();
}

void KeptValues::forgetDropped() noexcept {
    std::size_t left = 0;
    std::erase_if(values_, [&left](auto const& entry) {
        bool const isDropped = entry.second.value->referenceCount() == 1;
        if (!isDropped) left += entry.second.bytes;
        return isDropped;
    });
    charge_.set(left);
    purgeThreshold_ = std::max<std::size_t>(64, 2 * values_.size());
}

}  // namespace nxhost
