// The class of objects.
#include "tools/nxhost/objects.h"

#include <map>
#include <optional>

#include "foundation/nxRFL/ExposeClass.h"
#include "foundation/urString/NearestName.h"
#include "tools/nxhost/Document.h"
#include "tools/nxhost/ObjectListener.h"
#include "tools/nxhost/PropertyValue.h"
#include "tools/nxhost/requireFunction.h"

namespace nxhost {

using nxSupport::Object;
using nxSupport::ObjectClass;
using ur::Reference;
using urString::CString;

namespace {

using Values = std::optional<std::map<CString, PropertyValue>>;
using Index = std::optional<std::size_t>;

/// For a parameter that calls may leave out.
constexpr std::optional<double> nothing;

/// Raises for the name of a new value that is nearly the name of a described property.
void requireSpelling(Object const& object, CString const& name) {
    ObjectClass const& objectClass = object.objectClass();
    auto const values = object.values();
    if (objectClass.find(name) || (values && values->find(name))) return;
    urString::NearestName nearest(name.view());
    for (auto const& property : objectClass.properties()) nearest.offer(property.name.view());
    if (nearest.get().empty()) return;
    throw nxRFL::Exception(
        CString(objectClass.name()).append(" has no property ").append(name).append(nearest.question()));
}

void requireContainable(ObjectClass const& parent, ObjectClass const& child) {
    if (parent.mayContain(child)) return;
    throw nxRFL::Exception(CString("a ").append(parent.name()).append(" may not contain a ").append(child.name()));
}

/// Raises for a change of children that the document did not make.
void requireDone(bool isDone) {
    if (isDone) return;
    throw nxRFL::Exception("the children stay: the history does not record the change here, or a listener came first");
}

/// From 0; `index` counts from 1, and is behind the last of `size` children when it is left out.
std::size_t placeAmong(std::size_t size, Index const& index) {
    if (!index) return size;
    if (*index >= 1 && *index <= size + 1) return *index - 1;
    throw nxRFL::Exception(CString::format("the index must be from 1 to %zu, but is %zu", size + 1, *index));
}

void assign(Document& document, Object& object, CString const& name, PropertyValue const& value) {
    document.requireChangeable(object);
    requireSpelling(object, name);
    document.setValue(object, name, value.item());
}

Reference<Object> add(Document& document, Object& parent, CString const& className, Values const& values,
                      Index const& index) {
    document.requireChangeable(parent);
    requireContainable(parent.objectClass(), *document.classes().get(className));
    std::size_t const place = placeAmong(parent.children().size(), index);
    document.charges().addObjects(1);
    Reference<Object> const held(&parent);
    Reference<Object> object;
    document.change(CString("Add ").append(className), [&] {
        object = document.document().make(className);
        if (values) {
            for (auto const& [name, value] : *values) assign(document, *object, name, value);
        }
        requireDone(parent.insert(std::min(place, parent.children().size()), object));  // a listener may come first
    });
    return object;
}

void remove(Document& document, Object& object) {
    document.requireChangeable(object);
    if (&object == &document.document().root()) throw nxRFL::Exception("the root of the document cannot be removed");
    if (!object.parent()) throw nxRFL::Exception("the object is in no other");
    document.change("Remove", [&] { requireDone(object.parent()->remove(object)); });
}

void moveTo(Document& document, Object& object, Object& parent, Index const& index) {
    document.requireChangeable(object);
    document.requireChangeable(parent);
    if (&object == &document.document().root()) throw nxRFL::Exception("the root of the document cannot be moved");
    bool const isBelow = object.children().empty() ? &parent == &object : parent.isWithin(object);
    if (isBelow) throw nxRFL::Exception("an object cannot be moved below itself");
    requireContainable(parent.objectClass(), object.objectClass());
    std::size_t const size = parent.children().size() - (object.parent() == &parent ? 1 : 0);
    std::size_t const place = placeAmong(size, index);
    document.change("Move", [&] {
        requireDone(object.parent() ? object.moveTo(parent, place) : parent.insert(place, Reference<Object>(&object)));
    });
}

/// Objects for references that the class describes.
PropertyValue read(Object const& object, CString const& name) {
    auto const* const description = object.objectClass().find(name);
    if (description && description->reference) return {.object = object.target(name)};
    return {.value = {object.value(name)}};
}

/// Those that the class describes, then the others that have a value.
ur::vector<CString> namesOf(Object const& object) {
    ur::vector<CString> names;
    for (auto const& property : object.objectClass().properties()) names.push_back(property.name);
    if (auto const values = object.values()) {
        for (auto const& [name, value] : values->dictionary()) {
            if (!object.objectClass().find(name)) names.push_back(name);
        }
    }
    return names;
}

ur::vector<Reference<Object>> childrenOf(Object const& object) {
    ur::vector<Reference<Object>> children;
    children.reserve(object.children().size());
    for (Object& child : object.children()) children.emplace_back(&child);
    return children;
}

void watch(Document& document, Object& object, Reference<nxRFL::Function> const& function) {
    requireFunction(function != nullptr, "nxhost::Object.watch", "1 (callback)");
    ObjectListener::connect(object, function, document.charges().callable());
}

}  // namespace

void exposeObjects(nxRFL::Database& database, Document& document) {
    Document* const d = &document;
    nxRFL::ExposeClass<Object>(database, "nxhost::Object")
        .setAliveTest([](void const* object) { return static_cast<Object const*>(object)->document() != nullptr; })
        .addProperty("class", [](Object& self) { return self.objectClass().name(); })
        .addProperty("id", [](Object& self) { return self.id().asString(); })
        .addProperty("parent", [](Object& self) { return self.parent(); })
        .addProperty("children", [](Object& self) { return childrenOf(self); })
        .addProperty("index", [](Object& self) { return self.parent() ? self.index() + 1 : 0; })
        .addProperty("path", [](Object& self) { return self.path(); })
        .addProperty("isInTree", [](Object& self) { return self.isInTree(); })
        .addMethod("add",
                   [d](Object& self, CString const& name, Values const& values, Index const& index) {
                       return add(*d, self, name, values, index);
                   },
                   {"class", {"values", nothing}, {"index", nothing}})
        .addMethod("paste",
                   [d](Object& self, std::string_view text, Index const& index) {
                       return paste(*d, self, placeAmong(self.children().size(), index), text);
                   },
                   {"text", {"index", nothing}})
        .addMethod("remove", [d](Object& self) { remove(*d, self); })
        .addMethod("moveTo", [d](Object& self, Object& parent, Index const& index) { moveTo(*d, self, parent, index); },
                   {"parent", {"index", nothing}})
        .addMethod("get", [](Object& self, CString const& name) { return nxSupport::ScriptValue{self.value(name)}; },
                   {"name"})
        .addMethod("set",
                   [d](Object& self, CString const& name, PropertyValue const& value) {
                       d->setValue(self, name, value.item());
                   },
                   {"name", "value"})
        .addMethod("names", &namesOf)
        .addMethod("target", [](Object& self, CString const& name) { return self.target(name); }, {"name"})
        .addMethod("find", [](Object& self, std::string_view path) { return self.find(path); }, {"path"})
        .addMethod("watch",
                   [d](Object& self, Reference<nxRFL::Function> const& function) { watch(*d, self, function); },
                   {"callback"})
        .addOtherNames(
            [](Object& self, CString const& name) { return read(self, name); },
            [d](Object& self, CString const& name, PropertyValue const& value) { assign(*d, self, name, value); });
}

}  // namespace nxhost
