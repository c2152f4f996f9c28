// says: castTheOverloadedFunctionToOneForm | call to deleted member function
#include "foundation/nxRFL/ExposeClass.h"

struct Brush : ur::ReferenceCount {
    void size(int);
    void size(double);
};
void expose(nxRFL::Database& database) {
    nxRFL::ExposeClass<Brush>(database, "studio::Brush").addMethod("size", &Brush::size, {"width"});
}
