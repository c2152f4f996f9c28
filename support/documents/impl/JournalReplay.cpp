// Applies changes to a table of objects.
#include "support/documents/impl/JournalReplay.h"

#include <algorithm>
#include <unordered_set>

#include "support/documents/impl/format.h"
#include "support/documents/impl/journalRecords.h"

namespace nxSupport::impl {

using nxPLST::Array;
using nxPLST::Dictionary;
using nxPLST::Item;
using ur::Reference;
using urString::CString;

namespace {

bool readId(urOS::Uuid& id, Reference<Item> const& item) { return id.parse(nxPLST::valueOf<CString>(item)); }

Reference<Dictionary const> dictionaryUnder(Dictionary const& record, char const* key) {
    return nxPLST::asDictionary(record.find(key));
}

}  // namespace

bool JournalReplay::begin(Reference<Item> const& record) {
    auto const members = nxPLST::asDictionary(record);
    head_ = members ? nxPLST::asDictionary(members->find(record::document)) : nullptr;
    auto const tops = head_ ? nxPLST::asArray(head_->find(form::objects)) : nullptr;
    if (!tops || tops->size() != 1) return false;
    auto const top = nxPLST::asDictionary((*tops)[0]);
    name_ = nxPLST::valueOf<CString>(members->find(record::name));
    time_ = nxPLST::valueOf<double>(members->find(record::time));
    return top && readId(root_, top->find(form::id)) && enterTree(top);
}

bool JournalReplay::enterTree(Reference<Item> const& top) {
    ur::vector<Reference<Dictionary>> left = {nxPLST::asDictionary(top)};
    while (!left.empty()) {
        auto const item = std::move(left.back());
        left.pop_back();
        urOS::Uuid id;
        if (!item || !readId(id, item->find(form::id))) return false;
        auto const [place, isNew] = objects_.try_emplace(id);
        if (!isNew) return false;
        auto const children = nxPLST::asArray(item->find(form::children));
        item->dictionary().erase(form::children);
        place->second.item = item;
        if (!children) continue;
        for (auto const& child : children->array()) {
            auto const members = nxPLST::asDictionary(child);
            urOS::Uuid childId;
            if (!members || !readId(childId, members->find(form::id))) return false;
            place->second.children.insert(place->second.children.size(), childId);
            left.push_back(members);
        }
    }
    return true;
}

bool JournalReplay::apply(Reference<Item> const& record) {
    auto const members = nxPLST::asDictionary(record);
    if (!members || !addObjects(*members) || !applyValues(*members) || !applyLists(*members)) return false;
    if (auto const classes = members->find(record::classes)) head_->insert(form::classes, classes);
    time_ = nxPLST::valueOf<double>(members->find(record::time), time_);
    return true;
}

JournalReplay::Entry* JournalReplay::find(CString const& text) {
    urOS::Uuid id;
    if (!id.parse(text)) return nullptr;
    auto const found = objects_.find(id);
    return found == objects_.end() ? nullptr : &found->second;
}

bool JournalReplay::addObjects(Dictionary const& record) {
    auto const objects = nxPLST::asArray(record.find(record::objects));
    if (!objects) return false;
    for (auto const& object : objects->array()) {
        auto const item = nxPLST::asDictionary(object);
        urOS::Uuid id;
        if (!item || !readId(id, item->find(form::id))) return false;
        auto const children = nxPLST::asArray(item->find(form::children));
        item->dictionary().erase(form::children);
        Entry entry{item, {}};
        for (int i = 0; children && i < children->size(); ++i) {
            urOS::Uuid child;
            if (!readId(child, (*children)[i])) return false;
            entry.children.insert(entry.children.size(), child);
        }
        objects_[id] = std::move(entry);
    }
    return true;
}

bool JournalReplay::applyValues(Dictionary const& record) {
    auto const changed = dictionaryUnder(record, record::values);
    auto const unset = dictionaryUnder(record, record::unset);
    if (!changed || !unset) return false;
    auto const valuesOf = [&](CString const& id) -> Reference<Dictionary> {
        Entry* const entry = find(id);
        if (!entry) return nullptr;
        auto const shared = nxPLST::asDictionary(entry->item->find(form::values));  // by copies of the object
        auto own = shared ? ur::make<Dictionary>(*shared) : ur::make<Dictionary>();
        entry->item->insert(form::values, own);
        return own;
    };
    for (auto const& [id, item] : changed->dictionary()) {
        auto const values = valuesOf(id);
        auto const others = nxPLST::asDictionary(item);
        if (!values || !others) return false;
        for (auto const& [name, value] : others->dictionary()) values->insert(name, value);
    }
    for (auto const& [id, item] : unset->dictionary()) {
        auto const values = valuesOf(id);
        auto const names = nxPLST::asArray(item);
        if (!values || !names) return false;
        for (auto const& name : names->array()) values->dictionary().erase(nxPLST::valueOf<CString>(name));
    }
    return true;
}

bool JournalReplay::applyLists(Dictionary const& record) {
    auto const lists = nxPLST::asArray(record.find(record::lists));
    if (!lists) return false;
    for (auto const& item : lists->array()) {
        auto const change = nxPLST::asArray(item);
        if (!change || change->size() < 3 || !applyList(*change)) return false;
    }
    return true;
}

bool JournalReplay::applyList(Array const& change) {
    Entry* const parent = find(nxPLST::valueOf<CString>(change[0]));
    if (!parent) return false;
    auto& children = parent->children;
    auto const indexAt = [&](int i) {
        auto const index = nxPLST::valueOf<double>(change.size() > i ? change[i] : nullptr, -1);
        return index >= 0 && index <= static_cast<double>(children.size()) ? static_cast<std::size_t>(index)
                                                                           : children.size() + 1;
    };
    std::size_t const index = indexAt(2);
    switch (static_cast<ListChange>(nxPLST::valueOf<int>(change[1], -1))) {
        case ListChange::inserted: {
            urOS::Uuid child;
            if (index > children.size() || change.size() < 4 || !readId(child, change[3])) return false;
            children.insert(index, child);
            return true;
        }
        case ListChange::removed:
            if (index >= children.size()) return false;
            children.take(index);
            return true;
        case ListChange::moved: {
            std::size_t const to = indexAt(3);
            if (index >= children.size() || to >= children.size()) return false;
            children.insert(to, children.take(index));
            return true;
        }
    }
    return false;
}

Reference<Dictionary> JournalReplay::document() const {
    std::unordered_set<urOS::Uuid, urOS::UuidHash> used;
    ur::vector<std::pair<urOS::Uuid, Reference<Array>>> left;
    auto tops = ur::make<Array>();
    left.emplace_back(root_, tops);
    while (!left.empty()) {
        auto const [id, siblings] = std::move(left.back());
        left.pop_back();
        auto const found = objects_.find(id);
        if (found == objects_.end() || !used.insert(id).second) return nullptr;
        auto const item = ur::make<Dictionary>(*found->second.item);
        siblings->insert(item);
        auto const& ids = found->second.children;
        if (ids.empty()) continue;
        auto const children = ur::make<Array>();
        item->insert(form::children, children);
        // The last one first, since the next one taken is the last: each array thus grows in its order, for all below
        // one child are taken before the next.
        std::size_t const before = left.size();
        ids.forEach([&](urOS::Uuid const& child) { left.emplace_back(child, children); });
        std::reverse(left.begin() + static_cast<std::ptrdiff_t>(before), left.end());
    }
    auto document = ur::make<Dictionary>(*head_);
    document->insert(form::objects, tops);
    return document;
}

}  // namespace nxSupport::impl
