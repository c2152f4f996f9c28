// Reads pointers, and zeros past the end.
#include "foundation/nxTXN/Reader.h"

#include "foundation/nxTXN/impl/Lifetimes.h"
#include "foundation/nxTXN/impl/words.h"

namespace nxTXN {

using impl::Mark;
using impl::pointerOf;

void* Reader::readPtr() {
    std::uintptr_t const word = nextWord();
    switch (impl::markOf(word)) {
        case Mark::address: return pointerOf(word);
        case Mark::object: impl::Lifetimes::returned(*pointerOf<Object>(word)); return pointerOf(word);
        case Mark::keeper: impl::Lifetimes::returned(*pointerOf<Object>(word)); break;
        case Mark::held: break;
    }
    return reinterpret_cast<void*>(nextWord());  // NOLINT(performance-no-int-to-ptr)
}

std::uintptr_t Reader::nextWord() noexcept {
    if (words_.empty()) return 0;
    std::uintptr_t const word = words_.front();
    words_ = words_.subspan(1);
    return word;
}

void Reader::readShort(void* destination, std::size_t count) {
    if (!data_.empty()) std::memcpy(destination, data_.data(), data_.size());
    std::memset(static_cast<std::byte*>(destination) + data_.size(), 0, count - data_.size());
    data_ = {};
}

}  // namespace nxTXN
