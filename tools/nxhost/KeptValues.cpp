// Detects values that have been dropped.
#include "tools/nxhost/KeptValues.h"

#include <algorithm>

#include "tools/nxhost/ScriptValue.h"

namespace nxhost {

void KeptValues::add(ItemReference const& value, std::size_t more) {
    if (!value || !charge_) return;
    std::size_t const bytes = bytesOf(*value) + sizeof(Kept) + more;
    if (values_.size() >= purgeThreshold_ || !charge_.account()->allows(bytes)) forgetDropped();
    charge_.add(bytes);
    values_.push_back({value, bytes});
}

void KeptValues::addAnyway(ItemReference const& value, std::size_t more) {
    if (!value || !charge_) return;
    std::size_t const bytes = bytesOf(*value) + sizeof(Kept) + more;
    values_.push_back({value, bytes});
    charge_.set(charge_.bytes() + bytes);
}

void KeptValues::settle() noexcept {
    if (charge_ && !charge_.account()->allows(charge_.bytes() / 4)) forgetDropped();
}

void KeptValues::forgetDropped() noexcept {
    std::size_t left = 0;
    std::erase_if(values_, [&left](Kept const& kept) {
        bool const isDropped = kept.value->referenceCount() == 1;
        if (!isDropped) left += kept.bytes;
        return isDropped;
    });
    charge_.set(left);
    purgeThreshold_ = std::max<std::size_t>(64, 2 * values_.size());
}

}  // namespace nxhost
