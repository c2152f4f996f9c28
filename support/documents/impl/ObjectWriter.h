// Objects as items.
#pragma once

#include <map>
#include <span>

#include "support/documents/Document.h"

namespace nxSupport::impl {

/// Makes the items of objects, which share the objects' values. An object of a newer or unknown class keeps the
/// versions that it came with. One writer serves one file.
class ObjectWriter {
public:
    explicit ObjectWriter(ObjectCatalog const& catalog) noexcept : catalog_(catalog) {}

    /// The objects and all below them, with the head of a file.
    [[nodiscard]] ur::Reference<nxPLST::Dictionary> write(std::span<Object const* const> objects);
    /// One object without its children.
    [[nodiscard]] ur::Reference<nxPLST::Dictionary> itemOf(Object const& object);
    /// The versions of the classes that the items so far do not state themselves.
    [[nodiscard]] ur::Reference<nxPLST::Dictionary> classes() const;

private:
    struct ClassItems {
        ur::Reference<nxPLST::Item> name;
        ur::Reference<nxPLST::Dictionary> versions;  ///< those that differ from the table of the file
    };

    [[nodiscard]] ur::Reference<nxPLST::Dictionary> treeOf(Object const& top);
    [[nodiscard]] ClassItems const& itemsOf(ObjectClass const& objectClass);

    ObjectCatalog const& catalog_;
    std::map<ObjectClass const*, ClassItems> classes_;
    ObjectClass::Versions versions_;  ///< the table of the file
};

}  // namespace nxSupport::impl
