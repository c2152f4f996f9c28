// The table behind registries.
#include "support/services/Registry.h"

#include <utility>

#include "foundation/ur/ImplBase.h"
#include "foundation/ur/containers.h"

namespace nxSupport {

class RegistryImpl : public ur::ImplBase {
public:
    ur::map<urString::CString, RegistryValue, urString::less> values;
};

Registry::Registry() : impl_(new RegistryImpl), ownsImpl_(true) {}

Registry::Registry(Registry const& other) noexcept : impl_(other.impl_), ownsImpl_(false) {}

Registry::~Registry() {
    if (ownsImpl_) delete impl_;
}

void Registry::setKey(urString::CString const& key, RegistryValue const& value) {
    // The former value goes last, from outside the table: what it holds may use the registry when it is destroyed.
    RegistryValue next = value;
    std::swap(impl_->values[key], next);
}

bool Registry::hasKey(urString::CString const& key) const { return impl_->values.contains(key); }

RegistryValue Registry::getKey(urString::CString const& key) const {
    auto const found = impl_->values.find(key);
    return found == impl_->values.end() ? RegistryValue() : found->second;
}

}  // namespace nxSupport
