// Readable class names.
#include "foundation/ur/TypeInfo.h"

#include "foundation/ur/impl/demangle.h"

namespace ur {

std::string TypeInfo::readableName() const { return impl::demangle(name()); }

}  // namespace ur
