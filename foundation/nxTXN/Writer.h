// Collects the saved form of fields.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <type_traits>
#include <utility>

#include "foundation/ur/Export.h"

namespace nxTXN {

class Object;

/// A class that counts its holders, as `ur::Reference` requires.
template <class T>
concept Counted = requires(T const& object) {
    object.ref();
    object.unref();
};

namespace impl {

class History;
class Replay;

/// The operations that hold and release an object that counts its holders.
struct Holding {
    void (*hold)(void const* object);
    void (*drop)(void const* object);
};
template <Counted T>
inline constexpr Holding holding = {[](void const* object) { static_cast<T const*>(object)->ref(); },
                                    [](void const* object) { static_cast<T const*>(object)->unref(); }};

}  // namespace impl

/// Appends bytes and pointers; keeps the two separate, each in the order written.
///
/// A record made from it keeps the targets of its pointers alive as `writePtr` says; the writer itself does not.
/// One writer serves any number of objects one after the other without allocating again.
class NX_API Writer {
public:
    Writer() = default;
    Writer(Writer const&) = delete;
    Writer& operator=(Writer const&) = delete;

    void writeData(void const* bytes, std::size_t count) {
        if (count == 0) return;
        std::memcpy(data_.add(count), bytes, count);
    }

    /// Keeps a transaction object from being deleted; holds any other object that counts its holders. For other
    /// pointers the caller must keep the target alive. Null is allowed.
    template <class T>
    void writePtr(T const* pointer) {
        if constexpr (std::is_same_v<Object, T>) {
            writeObject(pointer);
        } else if constexpr (std::is_base_of_v<Object, T>) {
            writePtr(pointer, pointer);
        } else if constexpr (Counted<T>) {
            writeHeld(pointer, &impl::holding<T>);
        } else {
            writePtr(static_cast<void const*>(pointer));
        }
    }
    /// An address; nothing keeps its target.
    void writePtr(void const* address);
    /// An address that is valid as long as `keeper` lives; keeps the keeper.
    void writePtr(void const* address, Object const* keeper);

    void clear() noexcept { data_.size = words_.size = 0; }
    [[nodiscard]] std::span<std::byte const> data() const noexcept { return {data_.items.get(), data_.size}; }
    /// The pointers, marked with how they are kept.
    [[nodiscard]] std::span<std::uintptr_t const> words() const noexcept { return {words_.items.get(), words_.size}; }

private:
    friend class impl::History;
    friend class impl::Replay;

    template <class T>
    struct Buffer {
        std::unique_ptr<T[]> items;
        std::size_t size = 0;
        std::size_t capacity = 0;

        T* add(std::size_t count) {
            if (count > capacity - size) [[unlikely]]
                grow(count);
            return items.get() + std::exchange(size, size + count);
        }
        [[gnu::noinline]] void grow(std::size_t count) {
            std::size_t const larger = std::max({size + count, 2 * capacity, std::size_t(64)});
            auto grown = std::make_unique_for_overwrite<T[]>(larger);
            std::copy_n(items.get(), size, grown.get());
            items = std::move(grown);
            capacity = larger;
        }
    };

    [[nodiscard]] std::span<std::uintptr_t> mutableWords() noexcept { return {words_.items.get(), words_.size}; }
    void writeObject(Object const* object);
    void writeHeld(void const* address, impl::Holding const* holding);
    void writePair(std::uintptr_t first, void const* address);

    Buffer<std::byte> data_;
    Buffer<std::uintptr_t> words_;
};

}  // namespace nxTXN
