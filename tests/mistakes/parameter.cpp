// says: an object is taken by pointer or reference, not by value
#include "foundation/nxRFL/ExposeFunction.h"

struct Stroke {
    double pressure;
};
void expose(nxRFL::Database& database) {
    nxRFL::ExposeFunction(database, "studio").add("draw", [](Stroke stroke) { return stroke.pressure; });
}
