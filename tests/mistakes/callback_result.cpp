// says: no nxRFL::read(Reader&, T&) for the result of a script function
#include "foundation/nxRFL/ExposeFunction.h"

struct Stroke {
    double pressure;
};
void expose(nxRFL::Database& database) {
    nxRFL::ExposeFunction(database, "studio").add("draw", [](std::function<Stroke()> const& next) {
        return next().pressure;
    });
}
