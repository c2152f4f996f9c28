// Named values shared by scripts and the host.
#pragma once

#include <memory>
#include <string_view>

#include "foundation/ur/Export.h"
#include "foundation/urString/CString.h"
#include "support/services/RegistryValue.h"

namespace nxSupport {

class RegistryImpl;

/// A table of values with text keys, in memory only. Main thread only.
///
/// A registry that was not copied owns the table. A copy is a view of the same table and must not outlive its owner. A
/// registry with values from scripts must be destroyed before their reflection database, which knows their objects.
class NX_API Registry {
public:
    Registry();
    Registry(Registry const& other) noexcept;
    Registry& operator=(Registry const&) = delete;
    ~Registry();

    /// Sets a key, possibly to no value; the key then still exists.
    void setKey(urString::CString const& key, RegistryValue const& value);
    /// Charges the keys that are set from now on. The stacks that hold the values charge the values.
    void chargeTo(std::shared_ptr<ur::Account> const& account);
    [[nodiscard]] bool hasKey(std::string_view key) const;
    /// A handle to the stored item. It stays valid when the key is set again. No value if the key does not exist.
    [[nodiscard]] RegistryValue getKey(std::string_view key) const;

private:
    RegistryImpl* impl_;
    bool ownsImpl_;
};

}  // namespace nxSupport
