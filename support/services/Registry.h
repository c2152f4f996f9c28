// Named values that scripts and the host share.
#pragma once

#include "foundation/ur/Export.h"
#include "foundation/urString/CString.h"
#include "support/services/RegistryValue.h"

namespace nxSupport {

class RegistryImpl;

/// A table of values under text keys, in memory only. Main thread only.
///
/// The registry that was made without another owns the table. A copy is a view of the same table and must not outlive
/// that one. With what scripts stored in it, it goes before their reflection database, which knows their objects.
class NX_API Registry {
public:
    Registry();
    Registry(Registry const& other) noexcept;
    Registry& operator=(Registry const&) = delete;
    ~Registry();

    /// A key may be set to no value: it exists all the same.
    void setKey(urString::CString const& key, RegistryValue const& value);
    /// Charges the keys that are set from now on; values are charged by the stacks that hold them.
    void chargeTo(std::shared_ptr<ur::Account> const& account);
    [[nodiscard]] bool hasKey(urString::CString const& key) const;
    /// Shares the stored item, which stays when the key is set anew. No value when there is no such key.
    [[nodiscard]] RegistryValue getKey(urString::CString const& key) const;

private:
    RegistryImpl* impl_;
    bool ownsImpl_;
};

}  // namespace nxSupport
