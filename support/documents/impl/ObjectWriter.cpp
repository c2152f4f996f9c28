// Writes trees of any depth.
#include "support/documents/impl/ObjectWriter.h"

#include "support/documents/impl/format.h"

namespace nxSupport::impl {

using nxPLST::Array;
using nxPLST::Dictionary;
using ur::Reference;

namespace {

Reference<Dictionary> itemOf(ObjectClass::Versions const& versions) {
    auto item = ur::make<Dictionary>();
    for (auto const& [name, version] : versions) item->insert(name, static_cast<double>(version));
    return item;
}

}  // namespace

Reference<Dictionary> ObjectWriter::write(std::span<Object const* const> objects) {
    auto items = ur::make<Array>();
    for (Object const* const object : objects) items->insert(treeOf(*object));
    auto file = ur::make<Dictionary>();
    file->insert(form::format, form::formatName);
    file->insert(form::version, form::presentVersion);
    file->insert(form::classes, classes());
    file->insert(form::objects, std::move(items));
    return file;
}

Reference<Dictionary> ObjectWriter::classes() const { return impl::itemOf(versions_); }

Reference<Dictionary> ObjectWriter::treeOf(Object const& top) {
    struct Open {
        Object::Children::List::Iterator next;
        Object::Children::List::Iterator end;
        Reference<Array> items;
    };
    ur::vector<Open> open;
    auto const enter = [&](Object const& object) {
        auto item = itemOf(object);
        Object::Children const children = object.children();
        if (children.empty()) return item;
        auto items = ur::make<Array>();
        items->array().reserve(children.size());
        item->insert(form::children, items);
        open.push_back({children.begin(), children.end(), std::move(items)});
        return item;
    };
    auto tree = enter(top);
    while (!open.empty()) {
        Open& innermost = open.back();
        if (innermost.next == innermost.end) {
            open.pop_back();
            continue;
        }
        Object const& child = *innermost.next;
        ++innermost.next;
        auto const items = innermost.items;  // entering moves the others
        items->insert(enter(child));
    }
    return tree;
}

Reference<Dictionary> ObjectWriter::itemOf(Object const& object) {
    ClassItems const& ofClass = itemsOf(object.objectClass());
    auto item = ur::make<Dictionary>();
    item->insert(form::className, ofClass.name);
    item->insert(form::id, ur::make<nxPLST::String>(object.id().asString()));
    auto const values = object.values();
    // Nobody changes values that are shared: see Object::store.
    if (values && !values->empty()) item->insert(form::values, Reference(const_cast<Dictionary*>(values.get())));
    if (ofClass.versions) item->insert(form::versions, ofClass.versions);
    return item;
}

ObjectWriter::ClassItems const& ObjectWriter::itemsOf(ObjectClass const& objectClass) {
    auto [place, isNew] = classes_.try_emplace(&objectClass);
    if (!isNew) return place->second;
    place->second.name = ur::make<nxPLST::String>(objectClass.name());
    ObjectClass::Versions own;
    for (auto const& [name, version] : objectClass.versions()) {
        if (versions_.find(name) == versions_.end()) {
            auto const known = catalog_.find(name);
            versions_[name] = known ? known->versions().find(name)->second : version;
        }
        if (versions_[name] != version) own[name] = version;
    }
    if (!own.empty()) place->second.versions = impl::itemOf(own);
    return place->second;
}

}  // namespace nxSupport::impl
