// says: no nxRFL::write(Writer&, T const&) for the default of a parameter
#include "foundation/nxRFL/ExposeFunction.h"

struct Stroke {
    double pressure;
};
void expose(nxRFL::Database& database) {
    nxRFL::ExposeFunction(database, "studio").add("draw", [](double) {}, {{"stroke", Stroke{1}}});
}
