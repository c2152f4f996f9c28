// Creates handles from a class.
#include "foundation/nxRFL/Object.h"

#include "foundation/nxRFL/Class.h"

namespace nxRFL {

Object::Object(void* pointer, Class const& objectClass, Hold hold, Known known) noexcept
    : Object(pointer, objectClass.typeUtil(), &objectClass, hold, known) {}

}  // namespace nxRFL
