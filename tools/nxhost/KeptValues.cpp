// Detects values that have been dropped.
#include "tools/nxhost/KeptValues.h"

#include <algorithm>

#include "tools/nxhost/ScriptValue.h"

namespace nxhost {

void KeptValues::add(ur::Reference<nxPLST::Item const> const& value) {
    if (!value || !charge_) return;
    std::size_t const bytes = bytesOf(*value) + sizeof(Kept);
    if (values_.size() >= purgeThreshold_ || !charge_.account()->allows(bytes)) forgetDropped();
    charge_.add(bytes);
    values_.push_back({value, bytes});
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
