// says: a member function of another class: it belongs to the exposed class or to a base of it
#include "foundation/nxRFL/ExposeClass.h"

struct Tool : ur::ReferenceCount {
    double size();
};
struct Brush : ur::ReferenceCount {};
void expose(nxRFL::Database& database) {
    nxRFL::ExposeClass<Brush>(database, "studio::Brush").addMethod("size", &Tool::size);
}
