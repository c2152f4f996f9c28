// Class names for people, and the anchors of the two base classes that have no source of their own.
#include "foundation/ur/TypeInfo.h"

#include "foundation/ur/ImplBase.h"
#include "foundation/ur/ReferenceCount.h"

#if defined(__GNUG__)
#include <cxxabi.h>

#include <cstdlib>
#include <memory>
#endif

namespace ur {

ReferenceCount::~ReferenceCount() = default;
ImplBase::~ImplBase() = default;

std::string TypeInfo::readableName() const {
#if defined(__GNUG__)
    int status = 0;
    std::unique_ptr<char, decltype(&std::free)> text(abi::__cxa_demangle(name(), nullptr, nullptr, &status),
                                                     &std::free);
    if (status == 0) return text.get();
#endif
    return name();
}

}  // namespace ur
