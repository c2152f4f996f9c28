// The values that scripts have stored in the document.
#pragma once

#include <memory>

#include "foundation/ur/Account.h"
#include "foundation/ur/containers.h"
#include "plst/Item.h"

namespace nxhost {

/// Charges values as long as other references exist: in a property, or in the history for former values.
class KeptValues {
public:
    void chargeTo(std::shared_ptr<ur::Account> const& account) {
        if (!charge_) charge_ = ur::Charge(account, 0);
    }
    /// Charges a value before it is stored; null is ignored. Throws `ur::BudgetSpent`.
    void add(ur::Reference<nxPLST::Item const> const& value);

private:
    struct Kept {
        ur::Reference<nxPLST::Item const> value;
        std::size_t bytes;
    };

    void forgetDropped() noexcept;

    ur::vector<Kept> values_;
    std::size_t purgeThreshold_ = 64;  ///< the number of values at which to look for dropped ones
    ur::Charge charge_;
};

}  // namespace nxhost
