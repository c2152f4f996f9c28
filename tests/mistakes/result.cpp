// says: an object crosses over by pointer or reference; for a value list its members
#include "foundation/nxRFL/ExposeFunction.h"

struct Stroke {
    double pressure;
};
void expose(nxRFL::Database& database) {
    nxRFL::ExposeFunction(database, "studio").add("stroke", [] { return Stroke{1}; });
}
