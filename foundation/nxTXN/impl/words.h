// Stores the pointers of a record; the lowest bits mark how the targets are kept.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "foundation/nxTXN/Object.h"
#include "foundation/nxTXN/Writer.h"

namespace nxTXN::impl {

/// The kind of a word. Objects and `Holding`s leave two bits free; a second word can hold any address.
enum class Mark : std::uintptr_t {
    address = 0,  ///< an address whose two lowest bits are zero; its target is not kept
    object = 1,   ///< the address of a transaction object, which is kept
    keeper = 2,   ///< a transaction object, which is kept; then an address
    held = 3,     ///< how to hold an address, or nothing; the address follows
};

constexpr std::uintptr_t markBits = 3;

inline std::uintptr_t marked(void const* pointer, Mark mark) noexcept {
    return reinterpret_cast<std::uintptr_t>(pointer) | static_cast<std::uintptr_t>(mark);
}
inline Mark markOf(std::uintptr_t word) noexcept { return static_cast<Mark>(word & markBits); }
template <class T = void>
T* pointerOf(std::uintptr_t word) noexcept {
    return reinterpret_cast<T*>(word & ~markBits);  // NOLINT(performance-no-int-to-ptr)
}

/// Calls `onObject(Object&, word*)` for every transaction object that the words keep, with the word that names it, and
/// `onHeld(void const*, Holding const&)` for everything else that they hold.
template <class OnObject, class OnHeld>
void visitKept(std::span<std::uintptr_t> words, OnObject onObject, OnHeld onHeld) {
    for (std::size_t i = 0; i < words.size(); ++i) {
        switch (markOf(words[i])) {
            case Mark::address: break;
            case Mark::object: onObject(*pointerOf<Object>(words[i]), &words[i]); break;
            case Mark::keeper:
                onObject(*pointerOf<Object>(words[i]), &words[i]);
                ++i;
                break;
            case Mark::held:
                if (auto const* how = pointerOf<Holding const>(words[i])) {
                    onHeld(reinterpret_cast<void const*>(words[i + 1]), *how);  // NOLINT(performance-no-int-to-ptr)
                }
                ++i;
                break;
        }
    }
}

}  // namespace nxTXN::impl
