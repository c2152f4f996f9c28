// says: no nxRFL::read(Reader&, T&) for a value of this type: list its members (foundation/ur/describe.h)
#include "foundation/nxRFL/ExposeFunction.h"

struct Stroke {
    double pressure;
};
struct Layer {
    Stroke stroke;
};
template <class Visit>
void listMembers(Layer& layer, Visit&& visit) {
    visit("stroke", layer.stroke);
}
void expose(nxRFL::Database& database) {
    nxRFL::ExposeFunction(database, "studio").add("draw", [](Layer const& layer) { return layer.stroke.pressure; });
}
