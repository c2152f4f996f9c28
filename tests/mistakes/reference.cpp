// says: no ref() and unref() to count holders with: derive the class from ur::ReferenceCount
#include "foundation/ur/Reference.h"

struct Stroke {};
auto const stroke = ur::make<Stroke>();
