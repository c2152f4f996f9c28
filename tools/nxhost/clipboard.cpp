// Copies as JSON.
#include "tools/nxhost/clipboard.h"

#include <unordered_set>

#include "plst/JsonReport.h"
#include "support/documents/clipboard.h"
#include "tools/nxhost/Document.h"

namespace nxhost {

using nxSupport::Object;
using urString::CString;

namespace {

/// The number of the objects and of those below them, each once.
std::size_t countBelow(ur::vector<Object*> left) {
    std::unordered_set<Object const*> seen;
    while (!left.empty()) {
        Object const& object = *left.back();
        left.pop_back();
        if (!seen.insert(&object).second) continue;
        for (Object& child : object.children()) left.push_back(&child);
    }
    return seen.size();
}

}  // namespace

ur::vector<Object*> pointersTo(Objects const& objects) {
    ur::vector<Object*> pointers;
    for (auto const& object : objects) {
        if (object) pointers.push_back(object.get());
    }
    return pointers;
}

CString copy(Document& document, Objects const& objects) {
    auto const originals = pointersTo(objects);
    if (originals.empty()) throw nxRFL::Exception("there is nothing to copy");
    ur::Charge const room = document.charges().roomToCopy(countBelow(originals));
    ur::Charge ofText = document.charges().nothing();
    CString text;
    if (!nxPLST::writeJson(text, nxSupport::copy(originals), {.indent = 0, .refuseNulls = true, .charge = &ofText})) {
        throw nxRFL::Exception(
            "the objects have no JSON form: they hold a null or a number that is not finite, or are too large");
    }
    return text;
}

Objects paste(Document& document, Object& parent, std::size_t place, std::string_view text) {
    document.requireChangeable(parent);
    ur::Charge const room = document.charges().roomToPaste(text);
    ur::Reference<nxPLST::Item> copied;
    nxPLST::JsonReport report;
    if (!nxPLST::convertFromJSON(copied, text, report)) {
        throw nxRFL::Exception(CString::format("the copy: line %zu, column %zu: %s", report.location.line,
                                               report.location.column, report.reason.c_str()));
    }
    ur::Charge const roomForClasses = document.charges().roomForClasses(copied);
    nxSupport::Pasted pasted;
    document.change("Paste", [&] {
        pasted = nxSupport::paste(parent, place, copied);
        if (!pasted.ok()) throw nxRFL::Exception(CString("the copy: ").append(pasted.error.message()));
    });
    document.charges().addValuesOf(pasted.objects);
    return std::move(pasted.objects);
}

Objects duplicate(Document& document, Objects const& objects) {
    auto const originals = pointersTo(objects);
    for (Object* const object : originals) {
        document.requireChangeable(*object);
        if (!object->parent()) throw nxRFL::Exception("an object that is in no other cannot be duplicated");
    }
    std::size_t const count = countBelow(originals);
    ur::Charge const room = document.charges().roomToCopy(count);
    document.charges().addObjects(count);
    Objects copies;
    document.change("Duplicate", [&] {
        copies = nxSupport::duplicate(originals);
        if (copies.empty() && !originals.empty())
            throw nxRFL::Exception("the children stay: the history does not record the change here");
    });
    document.charges().addValuesOf(copies);
    return copies;
}

}  // namespace nxhost
