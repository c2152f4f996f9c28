// The values that scripts have stored in the document.
#pragma once

#include <memory>
#include <unordered_map>

#include "foundation/ur/Account.h"
#include "plst/Item.h"

namespace nxhost {

/// Charges values as long as other references exist: in an object, or in the history for former values. A value that
/// several objects share is charged once.
class KeptValues {
public:
    using ItemReference = ur::Reference<nxPLST::Item const>;

    void chargeTo(std::shared_ptr<ur::Account> const& account) {
        if (!charge_) charge_ = ur::Charge(account, 0);
    }
    /// Charges a value, and `more` bytes that go with it, before it is stored; null is ignored. Throws
    /// `ur::BudgetSpent`.
    void add(ItemReference const& value, std::size_t more = 0);
    /// Gives back what dropped values were charged, when there are many or the account has little room. The script's
    /// own allocations cannot do that.
    void settle() noexcept;
    /// Charges a value that is stored already, so that the charge cannot be refused.
    void addAnyway(ItemReference const& value, std::size_t more);
    /// The same for anything else that objects share, of that many bytes.
    void addSharedAnyway(ur::Reference<ur::ReferenceCount const> const& shared, std::size_t bytes);

private:
    struct Kept {
        ur::Reference<ur::ReferenceCount const> value;
        std::size_t bytes;
    };

    [[nodiscard]] bool isKept(ItemReference const& value) const { return values_.contains(value.get()); }
    void forgetDropped() noexcept;

    std::unordered_map<ur::ReferenceCount const*, Kept> values_;
    std::size_t purgeThreshold_ = 64;  ///< the number of values at which to look for dropped ones
    ur::Charge charge_;
};

}  // namespace nxhost
