// An outliner in text form: described objects in a tree, edits, undo, a file, copies, a panel, and what a crash leaves.
#include <cstdio>
#include <filesystem>
#include <string>

#include "plst/json.h"
#include "support/documents/documents.h"
#include "support/properties/Prop.h"

using nxSupport::Document;
using nxSupport::Object;
using nxSupport::ObjectCatalog;
using nxSupport::Prop;

/// Prints the error, if there is one.
bool succeeded(urUtil::Error const& error) {
    if (error.isError()) std::printf("%s\n", std::string(error.message()).c_str());
    return error.ok();
}

// [describe]
bool describe(ObjectCatalog& catalog) {
    return succeeded(catalog.add({.name = "Node", .properties = {{.name = "name", .value = ""}}})) &&
           succeeded(catalog.add({.name = "Folder", .base = "Node", .children = {"Node"}})) &&
           succeeded(catalog.add(
               {.name = "Task",
                .base = "Node",
                .properties = {
                    {.name = "hours", .value = 1, .label = "Estimate", .unit = "h", .minimum = 0, .maximum = 100},
                    {.name = "state", .value = "open", .choices = {"open", "done"}},
                    {.name = "after", .value = "", .reference = true},
                }}));
}
// [describe]

// [show]
void show(Object const& object, int depth = 0) {
    std::printf("%*s%s", 2 * depth, "", object.name().c_str());
    if (object.objectClass().isA("Task")) std::printf(" %g h", object.get<double>("hours"));
    if (Object const* const after = object.target("after")) std::printf(", after %s", after->name().c_str());
    std::printf("\n");
    for (Object const& child : object.children()) show(child, depth + 1);
}
// [show]

void build(Document& document) {
    // [edit]
    auto const add = [&](Object& parent, char const* className, char const* name) -> Object& {
        auto const object = document.make(className);
        object->set("name", name);
        parent.append(object);
        return *object;
    };
    document.edit("Plan", [&] {
        document.root().set("name", "House");
        Object& kitchen = add(document.root(), "Folder", "Kitchen");
        Object& walls = add(kitchen, "Task", "Walls");
        Object& tiles = add(kitchen, "Task", "Tiles");
        tiles.setTarget("after", &walls);
        tiles.set("hours", 12);
    });
    bool const isTaken = document.find("Kitchen/Walls")->set("hours", 1000);  // nothing to record
    std::printf("1000 hours %s\n", isTaken ? "taken" : "refused");
    // [edit]
}

void useHistory(Document& document) {
    // [undo]
    Object& tiles = *document.find("Kitchen/Tiles");
    document.edit("Remove walls", [&] { tiles.parent()->remove(*document.find("Kitchen/Walls")); });
    std::printf("tiles come after %s\n", tiles.target("after") ? "something" : "nothing");
    document.undo();
    std::printf("tiles come after %s\n", tiles.target("after")->path().c_str());
    try {
        document.edit("Fail", [&] {
            tiles.moveTo(document.root(), 0);
            throw std::runtime_error("changed my mind");
        });
    } catch (std::runtime_error const& error) {
        std::printf("%s: %s\n", error.what(), tiles.path().c_str());
    }
    // [undo]
}

void usePanel(Document& document) {
    // [panel]
    auto const panel = nxSupport::panelOf({document.find("Kitchen/Walls"), document.find("Kitchen/Tiles")});
    for (auto const& row : panel.rows()) {
        std::printf("%s: %s\n", row.description.name.c_str(), row.isMixed() ? "differs" : "the same");
    }
    Prop<double> const hours(panel.find("hours")->property);
    Prop<double>(hours).set(500);  // moved into the range, in both objects, in one step
    std::printf("%s: %g and %g\n", document.history().undoName().c_str(),
                document.find("Kitchen/Walls")->get<double>("hours"),
                document.find("Kitchen/Tiles")->get<double>("hours"));
    document.undo();
    // [panel]
}

void useCopies(Document& document) {
    // [copy]
    auto const copied = nxSupport::copy({document.find("Kitchen")});
    std::string text;  // for the system's clipboard
    if (nxPLST::writeJson(text, copied)) std::printf("%zu bytes of text\n", text.size());
    document.edit("Paste", [&] {
        auto const pasted = nxSupport::paste(document.root(), 1, copied);
        if (pasted.ok()) pasted.objects.front()->set("name", "Bath");
    });
    show(document.root());
    // [copy]
}

void useFiles(Document& document, ObjectCatalog const& catalog, std::string const& folder) {
    // [files]
    std::string const path = folder + "/plan.json";
    if (succeeded(save(document, path.c_str()))) std::printf("saved, %smodified\n", document.isModified() ? "" : "un");
    Document other(catalog, "Folder");
    if (succeeded(open(other, path.c_str()))) std::printf("opened %s\n", other.root().name().c_str());
    // [files]
}

void recover(Document& document, ObjectCatalog const& catalog, std::string const& folder) {
    // [recovery]
    {
        nxSupport::Autosave autosave(document, folder.c_str());
        succeeded(autosave.write());
        document.edit("Rename", [&] { document.find("Bath")->set("name", "Bathroom"); });
        succeeded(autosave.write());  // some hundred bytes
        // The program dies here.
    }
    for (auto const& left : nxSupport::recoverable(folder.c_str())) {
        Document rescued(catalog, "Folder");
        if (succeeded(nxSupport::recover(rescued, left.path)))
            std::printf("rescued %s\n", rescued.find("Bathroom")->path().c_str());
    }
    // [recovery]
}

int main() {
    ObjectCatalog catalog;
    if (!describe(catalog)) return 1;
    Document document(catalog, "Folder");
    document.insertedSignal().addCallback([](Object& parent, std::size_t index, Object& child) {
        std::printf("+ %s at %zu of %s\n", child.name().c_str(), index, parent.path().c_str());
    });
    document.removedSignal().addCallback([](Object& parent, std::size_t index, Object& child) {
        std::printf("- %s at %zu of %s\n", child.name().c_str(), index, parent.path().c_str());
    });
    auto const folder =
        std::filesystem::temp_directory_path() / ("outliner" + std::to_string(document.root().id().words()[0]));
    std::filesystem::create_directory(folder);
    build(document);
    useHistory(document);
    usePanel(document);
    useCopies(document);
    useFiles(document, catalog, folder.string());
    recover(document, catalog, folder.string());
    std::filesystem::remove_all(folder);
    return 0;
}
