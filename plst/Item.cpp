// Compares and prints items by value.
#include "plst/Item.h"

#include <ostream>

#include "plst/impl/json/StyledJsonWriter.h"
#include "plst/impl/treeWalk.h"

namespace nxPLST {

bool operator==(Item const& a, Item const& b) { return impl::equalTrees(a, b); }

std::ostream& operator<<(std::ostream& out, Item const& item) {
    impl::StyledJsonWriter writer({.indent = 0});
    bool const isWhole = writer.write(&item);
    return out << writer.text() << (isWhole ? "" : "...");
}
std::ostream& operator<<(std::ostream& out, ur::Reference<Item const> const& item) {
    return item ? out << *item : out << "null";
}

}  // namespace nxPLST
