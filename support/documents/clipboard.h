// Copies objects, within a document and between documents and programs.
#pragma once

#include <initializer_list>
#include <span>

#include "foundation/urUtil/Error.h"
#include "support/documents/Document.h"

namespace nxSupport {

/// The objects and all below them as an item, in the form of a saved document: `nxPLST::writeJson` makes it a text for
/// the system's clipboard. An object below another one of them comes with that one only. Shares the values.
[[nodiscard]] NX_API ur::Reference<nxPLST::Dictionary> copy(std::span<Object* const> objects);
[[nodiscard]] inline ur::Reference<nxPLST::Dictionary> copy(std::initializer_list<Object*> objects) {
    return copy(std::span(objects.begin(), objects.size()));
}

/// The objects that were pasted, in their order, or why none was.
struct Pasted {
    ur::vector<ur::Reference<Object>> objects;
    urUtil::Error error;

    [[nodiscard]] bool ok() const noexcept { return error.ok(); }
};

/// Inserts the objects of a copy, from anywhere, as children of `parent` from `index` on, at most at the end; a step
/// "Paste", or a part of the open one. They get new identities. Texts that are the identity of an object copied with
/// them (references, alone or in an array) become the new identity; other references stay. Shares the values: do not
/// change `copied` afterwards.
NX_API Pasted paste(Object& parent, std::size_t index, ur::Reference<nxPLST::Item> const& copied);

/// Inserts a copy of each object directly after it, as with `paste`; a step "Duplicate". Without effect on objects that
/// have no parent.
NX_API ur::vector<ur::Reference<Object>> duplicate(std::span<Object* const> objects);

}  // namespace nxSupport
