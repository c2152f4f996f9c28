// Copies through items.
#include "support/documents/clipboard.h"

#include <algorithm>
#include <unordered_set>

#include "support/documents/impl/ObjectReader.h"
#include "support/documents/impl/ObjectWriter.h"

namespace nxSupport {

using impl::ObjectReader;
using ur::Reference;
using urString::CString;

namespace {

/// Those that are not below another one, each once.
ur::vector<Object const*> outermost(std::span<Object* const> objects) {
    std::unordered_set<Object const*> const all(objects.begin(), objects.end());
    std::unordered_set<Object const*> taken;
    ur::vector<Object const*> result;
    for (Object const* const object : objects) {
        if (!object) continue;
        Object const* above = object->parent();
        while (above && !all.contains(above)) above = above->parent();
        if (!above && taken.insert(object).second) result.push_back(object);
    }
    return result;
}

}  // namespace

Reference<nxPLST::Dictionary> copy(std::span<Object* const> objects) {
    auto const copied = outermost(objects);
    if (copied.empty() || !copied.front()->document()) return ur::make<nxPLST::Dictionary>();
    return impl::ObjectWriter(copied.front()->document()->catalog()).write(copied);
}

Pasted paste(Object& parent, std::size_t index, Reference<nxPLST::Item> const& copied) {
    Document* const document = parent.document();
    if (!document) return {{}, urUtil::Error(0, "the document is gone")};
    ObjectReader reader(*document, ObjectReader::Identities::fresh);
    if (!reader.read(copied)) return {{}, urUtil::Error(0, reader.fault())};
    for (auto const& object : reader.objects()) {
        if (parent.objectClass().mayContain(object->objectClass())) continue;
        return {{},
                urUtil::Error(0, CString("a ")
                                     .append(object->objectClass().name())
                                     .append(" may not be in a ")
                                     .append(parent.objectClass().name()))};
    }
    Reference<Object> const held(&parent);
    nxTXN::Transaction transaction(document->history(), "Paste");
    reader.enter();
    for (auto const& object : reader.objects()) {
        if (!parent.insert(std::min(index++, parent.children().size()), object))
            return {{}, urUtil::Error(0, "the children stay: the history does not record the change here")};
    }
    transaction.commit();
    return {reader.objects(), {}};
}

ur::vector<Reference<Object>> duplicate(std::span<Object* const> objects) {
    auto originals = outermost(objects);
    std::erase_if(originals, [](Object const* object) { return !object->parent() || !object->document(); });
    if (originals.empty()) return {};
    Document& document = *originals.front()->document();
    auto const copied = impl::ObjectWriter(document.catalog()).write(originals);
    ObjectReader reader(document, ObjectReader::Identities::fresh);
    if (!reader.read(copied)) return {};
    ur::vector<Reference<Object const>> const held(originals.begin(), originals.end());
    nxTXN::Transaction transaction(document.history(), "Duplicate");
    reader.enter();
    for (std::size_t i = 0; i < originals.size(); ++i) {
        Object* const parent = originals[i]->parent();
        if (parent && !parent->insert(originals[i]->index() + 1, reader.objects()[i])) return {};
    }
    transaction.commit();
    return reader.objects();
}

}  // namespace nxSupport
