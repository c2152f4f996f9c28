// Class names for people, and the anchors of the two base classes that have no source of their own.
#include "foundation/ur/TypeInfo.h"

#include "foundation/ur/ImplBase.h"
#include "foundation/ur/ReferenceCount.h"
#include "foundation/ur/impl/demangle.h"

namespace ur {

ReferenceCount::~ReferenceCount() = default;
ImplBase::~ImplBase() = default;

std::string TypeInfo::readableName() const { return impl::demangle(name()); }

}  // namespace ur
