// Copies, compares and destroys dictionaries, and accesses them by key.
#include "plst/Dictionary.h"

#include <utility>

#include "plst/impl/treeWalk.h"

namespace nxPLST {

Dictionary::~Dictionary() { impl::dismantle(dictionary_); }
ur::Reference<Item> Dictionary::onClone() const { return impl::cloneTree(*this); }
bool Dictionary::onCongruent(Item const& other) const { return impl::congruentTrees(*this, other); }

namespace {

template <class Key>
ur::Reference<Item> valueUnder(Dictionary::Map const& entries, Key const& key) {
    auto const entry = entries.find(key);
    return entry == entries.end() ? nullptr : entry->second;
}

}  // namespace

ur::Reference<Item> Dictionary::find(urString::CString const& key) const { return valueUnder(dictionary_, key); }
ur::Reference<Item> Dictionary::findText(std::string_view key) const { return valueUnder(dictionary_, key); }

void Dictionary::insert(urString::CString const& key, ur::Reference<Item> value) {
    dictionary_.insert_or_assign(key, std::move(value));
}

}  // namespace nxPLST
