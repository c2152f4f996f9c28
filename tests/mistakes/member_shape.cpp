// says: no item shape of a listed member: include plst/convert.h or plst/containers.h
#include "plst/make.h"

struct Stroke {
    std::pair<int, int> from;
};
template <class Visit>
void listMembers(Stroke& stroke, Visit&& visit) {
    visit("from", stroke.from);
}
Stroke first(ur::Reference<nxPLST::Item> const& item) { return nxPLST::valueOf<Stroke>(item); }
