// A program outside the tree that uses only the installed headers and the library.
#include <foundation/ur/ur.h>
#include <plst/fwd.h>
#include <plst/plst.h>
#include <yajl/yajl_version.h>

#include <iostream>

int main() {
    ur::Reference<nxPLST::Item> item;
    if (!nxPLST::convertFromJSON(item, "[0.5, true]")) return 1;
    double strength = 0.0;
    nxPLST::convert(strength, nxPLST::asArray(item)->objectAt(0));
    urString::CString text;
    if (!nxPLST::convertToJSON(text, item->clone())) return 1;

    ur::map<int, char const*> names{{2, "two"}, {1, "one"}};
    std::cout << "strength " << strength << ", " << text.size() << " bytes, first " << names.begin()->second
              << ", yajl " << yajl_version() / 10000 << '\n';
}
