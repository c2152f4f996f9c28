// says: a method of a class takes its object first, by reference
#include "foundation/nxRFL/ExposeClass.h"

struct Brush : ur::ReferenceCount {};
void expose(nxRFL::Database& database) {
    nxRFL::ExposeClass<Brush>(database, "studio::Brush").addMethod("size", [](int size) { return size; });
}
