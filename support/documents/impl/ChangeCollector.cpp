// Collects changes, and makes items of them.
#include "support/documents/impl/ChangeCollector.h"

#include "support/documents/impl/format.h"
#include "support/documents/impl/journalRecords.h"

namespace nxSupport::impl {

using nxPLST::Array;
using nxPLST::Dictionary;
using ur::Reference;
using urString::CString;

namespace {

Reference<nxPLST::Item> itemOf(urOS::Uuid const& id) { return ur::make<nxPLST::String>(id.asString()); }
Reference<nxPLST::Item> itemOf(std::size_t number) { return ur::make<nxPLST::Double>(static_cast<double>(number)); }

template <class Visit>
void forEachBelow(Object const& top, Visit visit) {
    ur::vector<Object const*> left = {&top};
    while (!left.empty()) {
        Object const& object = *left.back();
        left.pop_back();
        visit(object);
        for (Object const& child : object.children()) left.push_back(&child);
    }
}

}  // namespace

/// Changes of objects that the file does not know are written with the objects. What there is no memory for makes the
/// next record a whole one.
template <class Collect>
void ChangeCollector::collect(Object const& known, Collect collect) noexcept {
    if (needsAll_ || !known_.contains(known.id())) return;
    try {
        collect();
    } catch (...) {
        forgetAll();
    }
}

void ChangeCollector::valueChanged(Object& object, CString const& name) noexcept {
    collect(object, [&] { values_[object.id()].insert(name); });
}

void ChangeCollector::inserted(Object& parent, std::size_t index, Object& child) noexcept {
    collect(parent, [&] {
        lists_.push_back({parent.id(), static_cast<int>(ListChange::inserted), index, 0, child.id()});
    });
}

void ChangeCollector::removed(Object& parent, std::size_t index) noexcept {
    collect(parent, [&] { lists_.push_back({parent.id(), static_cast<int>(ListChange::removed), index, 0, {}}); });
}

void ChangeCollector::moved(Object& parent, std::size_t from, std::size_t to) noexcept {
    collect(parent, [&] { lists_.push_back({parent.id(), static_cast<int>(ListChange::moved), from, to, {}}); });
}

void ChangeCollector::forgetAll() noexcept {
    needsAll_ = true;
    values_.clear();
    lists_.clear();
}

Reference<Dictionary> ChangeCollector::takeAll() {
    forgetAll();
    writer_ = std::make_unique<ObjectWriter>(document_->catalog());
    Object const* const root = &document_->root();
    auto file = writer_->write({&root, 1});
    known_.clear();
    forEachBelow(*root, [&](Object const& object) { known_.insert(object.id()); });
    needsAll_ = false;
    return file;
}

Reference<Dictionary> ChangeCollector::takeChanges() {
    auto record = ur::make<Dictionary>();
    auto objects = newObjects();
    addValues(*record);
    record->insert(record::lists, listItems());
    record->insert(record::classes, writer_->classes());
    record->insert(record::objects, std::move(objects));
    values_.clear();
    lists_.clear();
    return record;
}

Object const* ChangeCollector::inMemory(urOS::Uuid const& id) const noexcept {
    auto const found = document_->index_.find(id);
    return found == document_->index_.end() ? nullptr : found->second;
}

Reference<Array> ChangeCollector::newObjects() {
    ur::vector<Object const*> left;
    for (List const& list : lists_) {
        if (list.kind != static_cast<int>(ListChange::inserted)) continue;
        if (Object const* const child = inMemory(list.child)) left.push_back(child);
    }
    auto objects = ur::make<Array>();
    while (!left.empty()) {
        Object const& object = *left.back();
        left.pop_back();
        if (!known_.insert(object.id()).second) continue;
        auto const item = writer_->itemOf(object);
        auto const children = ur::make<Array>();
        for (Object const& child : object.children()) {
            children->insert(impl::itemOf(child.id()));
            left.push_back(&child);
        }
        item->insert(form::children, children);
        objects->insert(item);
    }
    return objects;
}

void ChangeCollector::addValues(Dictionary& record) const {
    auto const values = ur::make<Dictionary>();
    auto const unset = ur::make<Dictionary>();
    for (auto const& [id, names] : values_) {
        Object const* const object = inMemory(id);
        if (!object) continue;
        auto const changed = ur::make<Dictionary>();
        auto const gone = ur::make<Array>();
        for (CString const& name : names) {
            auto const value = object->values() ? object->values()->find(name) : nullptr;
            value ? changed->insert(name, value) : gone->insert(ur::make<nxPLST::String>(name));
        }
        CString const key = id.asString();
        if (!changed->empty()) values->insert(key, changed);
        if (!gone->empty()) unset->insert(key, gone);
    }
    record.insert(record::values, values);
    record.insert(record::unset, unset);
}

Reference<Array> ChangeCollector::listItems() const {
    auto items = ur::make<Array>();
    for (List const& list : lists_) {
        auto const item = ur::make<Array>();
        item->insert(impl::itemOf(list.parent));
        item->insert(impl::itemOf(static_cast<std::size_t>(list.kind)));
        item->insert(impl::itemOf(list.index));
        if (list.kind == static_cast<int>(ListChange::inserted)) item->insert(impl::itemOf(list.child));
        if (list.kind == static_cast<int>(ListChange::moved)) item->insert(impl::itemOf(list.to));
        items->insert(item);
    }
    return items;
}

}  // namespace nxSupport::impl
