// The classes of objects that scripts describe.
#pragma once

#include "foundation/ur/Account.h"
#include "support/documents/ObjectCatalog.h"

namespace nxhost {

/// The bytes of a name that scripts choose, at most.
inline constexpr std::size_t longestName = 256;

/// Adds classes to a catalog from the tables of scripts: `{name = "Circle", base = "Shape", properties = {{name =
/// "radius", value = 1, minimum = 0}}}`. The members are those of `nxSupport::ClassDescription`.
class DescribedClasses {
public:
    explicit DescribedClasses(nxSupport::ObjectCatalog& catalog) : catalog_(catalog) {}

    void chargeTo(std::shared_ptr<ur::Account> const& account) {
        if (!charge_) charge_ = ur::Charge(account, 0);
    }
    /// Raises with the class, the property and the mistake; nothing is added then.
    void add(ur::Reference<nxPLST::Item const> const& description);
    /// Raises when there is none; the message names the nearest.
    [[nodiscard]] ur::Reference<nxSupport::ObjectClass const> get(urString::CString const& name) const;

private:
    void chargeFor(nxPLST::Item const& description, nxSupport::ObjectClass const* base);
    /// "; do you mean NAME?" for a name that no class has; otherwise empty.
    [[nodiscard]] urString::CString question(urString::CString const& name) const;

    nxSupport::ObjectCatalog& catalog_;
    ur::vector<urString::CString> names_;
    ur::Charge charge_;
};

}  // namespace nxhost
