// says: no names of this enumeration's values: add namesOf (foundation/ur/describe.h)
#include "foundation/nxRFL/ExposeClass.h"

enum class Wood { oak, ash };
struct Desk : ur::ReferenceCount {
    Wood wood{};
};
void expose(nxRFL::Database& database) {
    nxRFL::ExposeClass<Desk>(database, "studio::Desk").addProperty("wood", &Desk::wood);
}
