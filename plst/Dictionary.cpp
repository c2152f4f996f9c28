// Copies, compares and destroys dictionaries, and accesses them by key.
#include "plst/Dictionary.h"

#include <utility>

#include "plst/impl/treeWalk.h"

namespace nxPLST {

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
