// Converts pointers to text and back.
#include "dyd/pointerText.h"

#include <cstdio>

#include "plst/String.h"
#include "plst/casts.h"

namespace nxDYD {

ur::Reference<nxPLST::Item const> pointerToString(void const* pointer) {
    return ur::make<nxPLST::String>(urString::CString::format("ptr:%p", pointer));
}

void* stringToPointer(ur::Reference<nxPLST::Item const> const& item) {
    auto const text = nxPLST::asString(item);
    void* pointer = nullptr;
    if (!text || std::sscanf(text->value().c_str(), "ptr:%p", &pointer) != 1) return nullptr;
    return pointer;
}

}  // namespace nxDYD
