// says: no nxRFL::read(Reader&, T&) for a value of this type: list its members (foundation/ur/describe.h)
#include "foundation/nxRFL/ExposeFunction.h"

struct Stroke {
    double pressure;
};
void expose(nxRFL::Database& database) {
    nxRFL::ExposeFunction(database, "studio").add("draw", [](std::vector<Stroke> const& strokes) {
        return strokes.size();
    });
}
