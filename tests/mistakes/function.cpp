// says: a function with a signature is needed: a generic or overloaded one has several
#include "foundation/nxRFL/ExposeFunction.h"

void expose(nxRFL::Database& database) {
    nxRFL::ExposeFunction(database, "studio").add("any", [](auto value) { return value; });
}
