// The defaults of keys.
#include "krcache/KeyData.h"

#include <typeinfo>

#include "foundation/ur/TypeInfo.h"
#include "foundation/ur/hashfunction.h"

namespace urKRCache {

KeyData::KeyData() noexcept = default;
KeyData::~KeyData() = default;

bool KeyData::hasPredeterminedSize() const { return false; }
unsigned KeyData::getPredeterminedSize() const { return 0; }
bool KeyData::isResidential() const { return true; }
void KeyData::onVisitSubKeys(KeyVisitor& /*visitor*/) const {}
void KeyData::onKeyRemoved() {}
void KeyData::onResourceCleared() {}
void KeyData::onInitializeResource(ur::Reference<Resource> /*resource*/) const {}

int KeyData::compare(KeyData const* other) const {
    ur::TypeInfo const mine(typeid(*this));
    ur::TypeInfo const theirs(typeid(*other));
    if (mine == theirs) return onCompare(other);
    return mine < theirs ? -1 : 1;
}

unsigned KeyData::getTypeHash() const { return ur::hashfunction(typeid(*this).name()); }

}  // namespace urKRCache
