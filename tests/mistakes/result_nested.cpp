// says: no nxRFL::write(Writer&, T const&) for a value of this type: list its members (foundation/ur/describe.h)
#include "foundation/nxRFL/ExposeFunction.h"

struct Stroke {
    double pressure;
};
void expose(nxRFL::Database& database) {
    nxRFL::ExposeFunction(database, "studio").add("strokes", [] { return std::vector<Stroke>(3); });
}
