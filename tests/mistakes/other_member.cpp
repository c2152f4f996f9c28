// says: a member of another class: it belongs to the exposed class or to a base of it
#include "foundation/nxRFL/ExposeClass.h"

struct Tool : ur::ReferenceCount {
    double size = 1;
};
struct Brush : ur::ReferenceCount {};
void expose(nxRFL::Database& database) {
    nxRFL::ExposeClass<Brush>(database, "studio::Brush").addProperty("size", &Tool::size);
}
