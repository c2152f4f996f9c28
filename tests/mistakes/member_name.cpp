// says: listMembers calls visit(name, member)
#include "plst/make.h"

struct Stroke {
    double pressure;
};
template <class Visit>
void listMembers(Stroke& stroke, Visit&& visit) {
    visit(stroke.pressure);
}
auto const item = nxPLST::itemOf(Stroke{1});
