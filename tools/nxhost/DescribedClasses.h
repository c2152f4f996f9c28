// The classes of objects that scripts describe.
#pragma once

#include "foundation/nxRFL/Function.h"
#include "foundation/ur/Account.h"
#include "script/ScriptValue.h"
#include "support/documents/ObjectCatalog.h"

namespace nxhost {

/// The bytes of a name that scripts choose, at most.
inline constexpr std::size_t longestName = 256;

/// A class as a script describes it: a table of values, but for a function under "upgrade".
struct ClassTable {
    nxSupport::ScriptValue values = {};
    ur::Reference<nxRFL::Function> upgrade = {};  ///< null if there is none
};

void read(nxRFL::Reader& reader, ClassTable& table);

/// Adds classes to a catalog from the tables of scripts: `{name = "Circle", base = "Shape", properties = {{name =
/// "radius", value = 1, minimum = 0}}}`. The members are those of `nxSupport::ClassDescription`; `upgrade`
/// takes a table of values and their version, and returns the values to have instead.
class DescribedClasses {
public:
    explicit DescribedClasses(nxSupport::ObjectCatalog& catalog) : catalog_(catalog) {}

    void chargeTo(std::shared_ptr<ur::Account> const& account) {
        if (!charge_) charge_ = ur::Charge(account, 0);
    }
    /// Raises with the class, the property and the mistake; nothing is added then.
    void add(ClassTable const& table);
    /// Raises when there is none; the message names the nearest.
    [[nodiscard]] ur::Reference<nxSupport::ObjectClass const> get(urString::CString const& name) const;
    /// Whether an upgrade function runs. The document is being read and must not change.
    [[nodiscard]] bool isUpgrading() const noexcept { return upgrading_ > 0; }

private:
    void chargeFor(nxPLST::Item const& description, nxSupport::ObjectClass const* base);
    [[nodiscard]] nxSupport::ClassDescription::Upgrade upgradeBy(ur::Reference<nxRFL::Function> function,
                                                                 urString::CString name);
    /// "; do you mean NAME?" for a name that no class has; otherwise empty.
    [[nodiscard]] urString::CString question(urString::CString const& name) const;

    nxSupport::ObjectCatalog& catalog_;
    ur::vector<urString::CString> names_;
    ur::Charge charge_;
    int upgrading_ = 0;
};

}  // namespace nxhost

template <>
struct nxRFL::TypeName<nxhost::ClassTable> {
    static constexpr char const* name = "dictionary";
};
