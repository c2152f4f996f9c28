// Compares and prints items by value.
#include "plst/Item.h"

#include <ostream>

#include "plst/impl/json/StyledJsonWriter.h"
#include "plst/impl/treeWalk.h"

namespace nxPLST {

bool operator==(Item const& a, Item const& b) { return impl::equalTrees(a, b); }

std::ostream& operator<<(std::ostream& out, Item const& item) {
    urString::CString text;
    bool const isWhole = impl::StyledJsonWriter(text, {.indent = 0}).write(&item);
    return out << text.view() << (isWhole ? "" : "...");
}
std::ostream& operator<<(std::ostream& out, ur::Reference<Item const> const& item) {
    return item ? out << *item : out << "null";
}

}  // namespace nxPLST
