// says: addBase takes a public base of the class
#include "foundation/nxRFL/ExposeClass.h"

struct Tool : ur::ReferenceCount {};
struct Brush : ur::ReferenceCount {};
void expose(nxRFL::Database& database) { nxRFL::ExposeClass<Brush>(database, "studio::Brush").addBase<Tool>(); }
