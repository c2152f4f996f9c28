// The values that scripts have put into the document.
#pragma once

#include <memory>

#include "foundation/ur/Account.h"
#include "foundation/ur/containers.h"
#include "plst/Item.h"

namespace nxhost {

/// Charges values for as long as somebody else holds them: a property, or the history with the former ones.
class KeptValues {
public:
    void chargeTo(std::shared_ptr<ur::Account> const& account) {
        if (!charge_) charge_ = ur::Charge(account, 0);
    }
    /// Charges a value that is to be kept; null is none. Throws `ur::BudgetSpent`.
    void add(ur::Reference<nxPLST::Item const> const& value);

private:
    struct Kept {
        ur::Reference<nxPLST::Item const> value;
        std::size_t bytes;
    };

    void forgetDropped() noexcept;

    ur::vector<Kept> values_;
    std::size_t lookAt_ = 64;  ///< values, at which it pays to look for dropped ones
    ur::Charge charge_;
};

}  // namespace nxhost
