// Stores the values of registries.
#include "support/services/Registry.h"

#include <utility>

#include "foundation/ur/ImplBase.h"
#include "foundation/ur/containers.h"

namespace nxSupport {

namespace {

/// The bytes of an entry in the table and of its value's handle.
constexpr std::size_t bytesOfEntry = 128;

}  // namespace

class RegistryImpl : public ur::ImplBase {
public:
    ur::map<urString::CString, RegistryValue, urString::less> values;
    ur::Charge charge;  ///< for the keys
};

Registry::Registry() : impl_(new RegistryImpl), ownsImpl_(true) {}

Registry::Registry(Registry const& other) noexcept : impl_(other.impl_), ownsImpl_(false) {}

Registry::~Registry() {
    if (ownsImpl_) delete impl_;
}

void Registry::setKey(urString::CString const& key, RegistryValue const& value) {
    // The old value is destroyed last, outside the table, because its destructor may use the registry.
    RegistryValue next = value;
    if (!hasKey(key)) impl_->charge.add(key.size() + bytesOfEntry);
    std::swap(impl_->values[key], next);
}

void Registry::chargeTo(std::shared_ptr<ur::Account> const& account) {
    if (!impl_->charge) impl_->charge = ur::Charge(account, 0);
}

bool Registry::hasKey(std::string_view key) const { return impl_->values.contains(key); }

RegistryValue Registry::getKey(std::string_view key) const {
    auto const found = impl_->values.find(key);
    return found == impl_->values.end() ? RegistryValue() : found->second;
}

}  // namespace nxSupport
