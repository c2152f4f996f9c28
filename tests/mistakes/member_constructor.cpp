// says: a structure that lists its members has a default constructor
#include "plst/make.h"

struct Stroke {
    explicit Stroke(double given) : pressure(given) {}
    double pressure;
};
template <class Visit>
void listMembers(Stroke& stroke, Visit&& visit) {
    visit("pressure", stroke.pressure);
}
Stroke first(ur::Reference<nxPLST::Item> const& item) { return nxPLST::valueOf<Stroke>(item, Stroke(1)); }
