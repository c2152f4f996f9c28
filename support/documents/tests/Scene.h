// What the tests of this module share: a catalog, and documents as text.
#pragma once

#include <gmock/gmock.h>

#include <stdexcept>
#include <string>

#include "plst/json.h"
#include "support/documents/documents.h"

namespace nxSupport::test {

inline void describe(ObjectCatalog& catalog) {
    auto const add = [&](ClassDescription description) {
        auto const error = catalog.add(std::move(description));
        if (error.isError()) throw std::logic_error(std::string(error.message()));
    };
    add({.name = "Node", .properties = {{.name = "name", .value = ""}}});
    add({.name = "Group", .base = "Node", .children = {"Node"}});
    add({.name = "Shape",
         .base = "Node",
         .version = 2,
         .properties = {{.name = "size", .value = 1.0, .label = "Size", .minimum = 0, .maximum = 100},
                        {.name = "place", .value = {0, 0, 0}, .maximum = 1000},
                        {.name = "fill", .value = "solid", .choices = {"none", "solid"}},
                        {.name = "next", .value = "", .reference = true}},
         .upgrade = [](nxPLST::Dictionary& values, unsigned) {
             auto const width = values.find("width");  // its name in version 1
             if (!width) return;
             if (nxPLST::valueOf<double>(width) < 0) throw std::runtime_error("the width is below 0");
             values.insert("size", width);
             values.dictionary().erase("width");
         }});
    add({.name = "Ball", .base = "Shape"});
}

struct Catalog : ObjectCatalog {
    Catalog() { describe(*this); }
};

inline std::string textOf(Object::ItemReference const& item) {
    std::string text;
    if (!nxPLST::writeJson(text, item, {.indent = 0})) text = "?";
    return text;
}

/// The object and all below it: class, identity, values and children.
inline std::string textOf(Object const& object) {
    std::string text = std::string(object.objectClass().name()) + "#" + std::to_string(object.id().words()[0]);
    if (auto const values = object.values(); values && !values->empty()) text += textOf(values);
    text += "[";
    for (Object const& child : object.children()) text += textOf(child);
    return text + "]";
}

/// Whether all holds that holds for every object of a document at any time.
inline bool isSound(Document const& document, Object const& object) {
    if (!object.isTxnExtant() || object.document() != &document || document.find(object.id()) != &object) return false;
    std::size_t index = 0;
    for (Object const& child : object.children()) {
        if (child.parent() != &object || child.index() != index++ || !isSound(document, child)) return false;
    }
    return true;
}
inline void audit(Document const& document) { EXPECT_TRUE(isSound(document, document.root())); }

/// A document with shapes in groups.
struct Scene : Catalog {
    Document document{*this, "Group"};

    Object& root() { return document.root(); }
    Object& add(Object& parent, char const* className, char const* name) {
        auto const object = document.make(className);
        document.edit("Add", [&] {
            object->set("name", name);
            EXPECT_TRUE(parent.append(object));
        });
        return *object;
    }
    std::string text() const { return textOf(document.root()); }
};

}  // namespace nxSupport::test
