// Marks pointers as they are written.
#include "foundation/nxTXN/Writer.h"

#include "foundation/nxTXN/impl/words.h"

namespace nxTXN {

using impl::Mark;
using impl::marked;

void Writer::writePtr(void const* address) {
    std::uintptr_t const word = marked(address, Mark::address);
    if (word & impl::markBits) return writePair(marked(nullptr, Mark::held), address);
    *words_.add(1) = word;
}

void Writer::writeObject(Object const* object) {
    *words_.add(1) = marked(object, object ? Mark::object : Mark::address);
}

void Writer::writePtr(void const* address, Object const* keeper) {
    if (!address || !keeper) return writePtr(address);
    if (address == keeper) return writeObject(keeper);
    writePair(marked(keeper, Mark::keeper), address);
}

void Writer::writeHeld(void const* address, impl::Holding const* holding) {
    if (!address) return writePtr(address);
    writePair(marked(holding, Mark::held), address);
}

void Writer::writePair(std::uintptr_t first, void const* address) {
    std::uintptr_t* const words = words_.add(2);
    words[0] = first;
    words[1] = reinterpret_cast<std::uintptr_t>(address);
}

}  // namespace nxTXN
