// Any bytes as the file of a document: refused with the document unchanged, or opened into one that survives being
// edited, saved and opened again.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

#include "fuzz/require.h"
#include "support/documents/documents.h"

namespace {

using nxSupport::Document;
using nxSupport::Object;

nxSupport::ObjectCatalog const& catalog() {
    static nxSupport::ObjectCatalog catalog;
    if (catalog.find("Node")) return catalog;
    bool const isDescribed =
        catalog.add({.name = "Node", .properties = {{.name = "name", .value = ""}}}).ok() &&
        catalog
            .add({.name = "Ball",
                  .base = "Node",
                  .version = 2,
                  .properties = {{.name = "size", .value = 1, .maximum = 9},
                                 {.name = "next", .value = "", .reference = true}},
                  .upgrade = [](nxPLST::Dictionary& values, unsigned version) { values.insert("from", int(version)); }})
            .ok() &&
        catalog.add({.name = "Group", .base = "Node", .children = {"Node"}}).ok();
    require(isDescribed, "the descriptions are right");
    return catalog;
}

std::size_t count(Document const& document, Object const& object) {
    require(document.find(object.id()) == &object && object.isInTree(), "an object of the tree is found");
    std::size_t objects = 1;
    for (Object const& child : object.children()) {
        require(child.parent() == &object, "a child knows its parent");
        objects += count(document, child);
    }
    return objects;
}

void edit(Document& document) {
    document.edit("Edit", [&] {
        Object& root = document.root();
        root.set("name", "edited");
        nxSupport::paste(root, 0, nxSupport::copy({&root}));
        while (!root.children().empty()) root.remove(root.children()[0]);
    });
    document.undo();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
    static std::string const path = "/tmp/document_fuzz." + std::to_string(::getpid());
    if (std::FILE* const file = std::fopen(path.c_str(), "wb")) {
        require(std::fwrite(bytes, 1, size, file) == size && std::fclose(file) == 0, "the bytes are written");
    }
    Document document(catalog(), "Group");
    bool const isOpened = open(document, path.c_str()).ok();
    std::size_t const objects = count(document, document.root());
    require(isOpened || objects == 1, "a refused file changes nothing");
    edit(document);
    require(count(document, document.root()) == objects, "undo brings all objects back");
    if (save(document, path.c_str(), nxSupport::FileForm::packets).ok()) {
        Document again(catalog(), "Group");
        require(open(again, path.c_str()).ok(), "what was saved opens");
        require(count(again, again.root()) == objects, "with all objects");
    }
    std::remove(path.c_str());
    return 0;
}
