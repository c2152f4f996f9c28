// Values for gdb to print; it stops in `look`. The program mentions each class, so that gdb knows its layout.
#include "plst/plst.h"

namespace {

[[gnu::noinline]] void look() { asm volatile(""); }

}  // namespace

int main() {
    urString::CString const brief = "fifteen at most";
    urString::CString const longText = "a text of more than fifteen bytes, with \"quotes\"";
    ur::map<urString::CString, int> many;
    for (int i = 0; i < 200; ++i) many[urString::CString::format("%03d", i)] = i;
    ur::Reference<nxPLST::Item> const nothing;
    ur::Reference<nxPLST::Item> const tree = nxPLST::dictionary({{"name", ur::make<nxPLST::String>("desk")},
                                                                 {"size", ur::make<nxPLST::Double>(1.5)},
                                                                 {"on", ur::make<nxPLST::Bool>(true)},
                                                                 {"at", {1, 2, nothing}}});
    look();
    return many.size() + brief.size() + longText.size() + tree->referenceCount() > 0 ? 0 : 1;
}
