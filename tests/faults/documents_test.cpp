// Documents, while memory runs out.
#include <unistd.h>

#include <filesystem>
#include <string>

#include "plst/json.h"
#include "support/documents/documents.h"
#include "tests/faults/survives.h"

namespace faults {
namespace {

using nxSupport::Document;
using nxSupport::Object;

struct Catalog : nxSupport::ObjectCatalog {
    Catalog() {
        EXPECT_TRUE(add({.name = "Group", .properties = {{.name = "name", .value = ""}}, .children = {"Group"}}).ok());
    }
};

std::string textOf(Object const& object) {
    std::string text(object.name());
    for (Object const& child : object.children()) text += "(" + textOf(child) + ")";
    return text;
}

/// Three objects, one of them below another.
struct Small {
    Small() {
        document.edit("Fill", [&] {
            for (char const* name : {"one", "another one, whose name does not fit in place"}) {
                auto const made = document.make("Group");
                made->set("name", name);
                Object& last = document.root().children().empty() ? document.root() : document.root().children()[0];
                last.append(made);
            }
        });
    }
    [[nodiscard]] std::string state() const {
        EXPECT_EQ(document.history().depth(), 0U);
        return textOf(document.root()) + (document.isModified() ? " modified" : "");
    }

    Catalog catalog;
    Document document{catalog, "Group"};
};

std::string pathOf(char const* name) {
    return std::filesystem::temp_directory_path() / ("faults." + std::to_string(::getpid()) + name);
}

template <nxSupport::FileForm form>
struct Save : Small {
    ~Save() {
        Document again(catalog, "Group");
        EXPECT_TRUE(!std::filesystem::exists(path) || open(again, path.c_str()).ok()) << "whole, if it is there";
        std::filesystem::remove(path);
    }
    bool act() { return save(document, path.c_str(), form).ok(); }
    std::string const path = pathOf("save");
};

template <nxSupport::FileForm form>
struct Open : Small {
    Open() {
        Small const other;
        EXPECT_TRUE(save(const_cast<Document&>(other.document), path.c_str(), form).ok());
        document.edit("Change", [&] { document.root().set("name", "to be replaced"); });
    }
    ~Open() { std::filesystem::remove(path); }
    bool act() { return open(document, path.c_str()).ok(); }
    std::string const path = pathOf("open");
};

struct Paste : Small {
    Paste() : copied(nxSupport::copy({&document.root().children()[0]})) {}
    bool act() { return nxSupport::paste(document.root(), 1, copied).ok(); }
    ur::Reference<nxPLST::Item> const copied;
};

TEST(WithoutMemory, DocumentsAreSavedWholeOrNotAtAll) {
    survives<Save<nxSupport::FileForm::json>>();
    survives<Save<nxSupport::FileForm::packets>>();
}

TEST(WithoutMemory, DocumentsAreOpenedOrStayWhatTheyAre) {
    survives<Open<nxSupport::FileForm::json>>();
    survives<Open<nxSupport::FileForm::packets>>();
}

TEST(WithoutMemory, ObjectsArePastedTogetherOrNotAtAll) { survives<Paste>(); }

}  // namespace
}  // namespace faults
