// Handles made from a class.
#include "foundation/nxRFL/Object.h"

#include "foundation/nxRFL/Class.h"

namespace nxRFL {

Object::Object(void* pointer, Class const& objectClass) noexcept
    : Object(pointer, objectClass.typeUtil(), &objectClass, Hold::shared) {}

Object Object::give(void* pointer, Class const& objectClass) noexcept {
    return Object(pointer, objectClass.typeUtil(), &objectClass, Hold::owned);
}

Object Object::borrow(void* pointer, Class const& objectClass) noexcept {
    return Object(pointer, objectClass.typeUtil(), &objectClass, Hold::borrowed);
}

}  // namespace nxRFL
