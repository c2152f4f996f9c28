// says: listMembers takes its structure as S&, not S const&
#include "plst/make.h"

struct Stroke {
    double pressure;
};
template <class Visit>
void listMembers(Stroke const& stroke, Visit&& visit) {
    visit("pressure", stroke.pressure);
}
Stroke first(ur::Reference<nxPLST::Item> const& item) { return nxPLST::valueOf<Stroke>(item); }
