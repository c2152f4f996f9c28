// says: an object crosses over by pointer or reference; for a value list its members (foundation/ur/describe.h) or add nxRFL::read and write
#include "foundation/nxRFL/ExposeFunction.h"

struct Stroke {
    double pressure;
};
void expose(nxRFL::Database& database) {
    nxRFL::ExposeFunction(database, "studio").add("stroke", [] { return Stroke{1}; });
}
