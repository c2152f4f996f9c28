// A program outside the tree: it knows the installed headers and the library, nothing else.
#include <foundation/ur/containers.h>
#include <plst/Dictionary.h>
#include <plst/casts.h>
#include <plst/convert.h>
#include <yajl/yajl_version.h>

#include <iostream>

int main() {
    auto settings = ur::make<nxPLST::Dictionary>();
    ur::Reference<nxPLST::Item> value;
    nxPLST::convert(value, 0.5);
    settings->insert("strength", value);
    double strength = 0.0;
    nxPLST::convert(strength, nxPLST::asDictionary(settings->clone())->get("strength"));

    ur::map<int, char const*> names{{2, "two"}, {1, "one"}};
    std::cout << "strength " << strength << ", first " << names.begin()->second << ", yajl " << yajl_version() / 10000
              << '\n';
}
