// Class names for people, and the anchor of a base class that has no source of its own.
#include "foundation/ur/TypeInfo.h"

#include "foundation/ur/ImplBase.h"
#include "foundation/ur/impl/demangle.h"

namespace ur {

ImplBase::~ImplBase() = default;

std::string TypeInfo::readableName() const { return impl::demangle(name()); }

}  // namespace ur
