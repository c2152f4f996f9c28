// What the item classes do not do in their headers.
#include <typeinfo>
#include <utility>

#include "plst/Array.h"
#include "plst/Bool.h"
#include "plst/Dictionary.h"
#include "plst/Double.h"
#include "plst/String.h"
#include "plst/impl/treeWalk.h"

namespace nxPLST {

bool Item::onCongruent(Item const& other) const { return typeid(*this) == typeid(other); }

ur::Reference<Item> Bool::onClone() const { return ur::make<Bool>(value_); }

ur::Reference<Item> Double::onClone() const { return ur::make<Double>(value_); }

ur::Reference<Item> String::onClone() const { return ur::make<String>(value_); }

Array::~Array() { impl::dismantle(array_); }
void Array::clear() noexcept { impl::dismantle(array_); }
ur::Reference<Item> Array::onClone() const { return impl::cloneTree(*this); }
bool Array::onCongruent(Item const& other) const { return impl::congruentTrees(*this, other); }

Dictionary::~Dictionary() { impl::dismantle(dictionary_); }
ur::Reference<Item> Dictionary::onClone() const { return impl::cloneTree(*this); }
bool Dictionary::onCongruent(Item const& other) const { return impl::congruentTrees(*this, other); }

ur::Reference<Item> Dictionary::find(urString::CString const& key) const {
    auto const entry = dictionary_.find(key);
    return entry == dictionary_.end() ? nullptr : entry->second;
}

void Dictionary::insert(urString::CString const& key, ur::Reference<Item> value) {
    dictionary_.insert_or_assign(key, std::move(value));
}

}  // namespace nxPLST
