// The sixteen-byte representation of a text: inline when short, on the heap when long.
#pragma once

#include <array>
#include <bit>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <utility>

#include "foundation/ur/Export.h"

namespace urString::impl {

/// For each byte count below sixteen, the masks of two words that keep their first bytes in memory.
inline constexpr auto firstBytes = [] {
    std::array<std::array<std::uint64_t, 2>, 16> masks{};
    for (std::size_t count = 0; count < masks.size(); ++count) {
        for (std::size_t byte = 0; byte < count; ++byte) {
            std::size_t const place = std::endian::native == std::endian::little ? byte % 8 : 7 - byte % 8;
            masks[count][byte / 8] |= std::uint64_t(0xff) << (8 * place);
        }
    }
    return masks;
}();

/// Owned bytes followed by a NUL; the layout and the comparisons of `CString`.
///
/// Two words. The last byte in memory is the tag. Inline, the tag is 15 - size, so it also terminates a text of 15
/// bytes; every byte between the text and the tag is zero, so equal short texts are equal words. On the heap, the tag's
/// top bit is set and the rest is the code of the block's size; the first word is the block's address and the other
/// seven bytes of the second word are the size of the text.
class NX_API TextRep {
public:
    static constexpr std::size_t inlineCapacity = 15;
    static constexpr std::size_t maxSize = (std::size_t(7) << 33) - 1;  // the largest block that has a code

    constexpr TextRep() noexcept = default;
    /// Throws `std::length_error` beyond `maxSize`, `std::bad_alloc` when memory is exhausted.
    TextRep(char const* text, std::size_t size) { take(text, size); }
    /// The same if `readable` bytes can be read, at least `size`: with sixteen of them, a short text is copied without
    /// checking its size.
    TextRep(char const* text, std::size_t size, std::size_t readable) {
        if (size <= inlineCapacity && readable > inlineCapacity) [[likely]] {
            keepInline(load<std::uint64_t>(text), load<std::uint64_t>(text + 8), size);
        } else {
            take(text, size);
        }
    }
    TextRep(TextRep const& other) : words_{other.words_[0], other.words_[1]} {
        if (!other.isInline()) [[unlikely]]
            std::memcpy(makeRoom(other.size(), other.size()), other.data(), other.size());
    }
    TextRep(TextRep&& other) noexcept : words_{other.words_[0], other.words_[1]} { other.forget(); }
    TextRep& operator=(TextRep const& other) {
        if (this != &other) TextRep(other).swap(*this);
        return *this;
    }
    TextRep& operator=(TextRep&& other) noexcept {
        TextRep(std::move(other)).swap(*this);
        return *this;
    }
    ~TextRep() {
        if (!isInline()) [[unlikely]]
            release();
    }

    /// An uninitialized text of `size` bytes in a block for `capacity` bytes; the caller must fill it at once.
    [[nodiscard]] static TextRep ofSize(std::size_t size, std::size_t capacity) {
        TextRep result;
        if (capacity > inlineCapacity) {
            result.makeRoom(size, capacity);
        } else {
            result.setSize(size);
        }
        return result;
    }

    [[nodiscard]] bool isInline() const noexcept { return tag() < heapTag; }
    [[nodiscard]] std::size_t size() const noexcept {
        return isInline() ? inlineCapacity - tag() : (words_[1] >> sizeShift) & sizeMask;
    }
    [[nodiscard]] std::size_t capacity() const noexcept {
        return isInline() ? inlineCapacity : blockBytes(tag() - heapTag) - 1;
    }
    [[nodiscard]] char const* data() const noexcept {
        return isInline() ? reinterpret_cast<char const*>(words_) : block();
    }
    [[nodiscard]] char* data() noexcept { return isInline() ? reinterpret_cast<char*>(words_) : block(); }
    [[nodiscard]] std::string_view view() const noexcept { return {data(), size()}; }

    /// Requires: at most `capacity()`. Bytes added to the text keep their present value.
    void setSize(std::size_t size) noexcept {
        if (isInline()) {
            // Stated explicitly because g++ 12 warns of an index out of bounds when it knows a larger size.
            if (size > inlineCapacity) __builtin_unreachable();
            keepInline(words_[0], words_[1], size);
        } else {
            block()[size] = '\0';
            words_[1] = std::uint64_t(size) << sizeShift | std::uint64_t(tag()) << tagShift;
        }
    }
    /// Extends the text by `count` bytes if there is room and returns their address, to fill at once; otherwise null.
    [[nodiscard]] char* extend(std::size_t count) noexcept {
        std::size_t const former = size();
        if (count > capacity() - former) [[unlikely]]
            return nullptr;
        if (isInline()) {
            words_[1] -= std::uint64_t(count) << tagShift;
            return reinterpret_cast<char*>(words_) + former;
        }
        words_[1] += std::uint64_t(count) << sizeShift;
        block()[former + count] = '\0';
        return block() + former;
    }
    /// Moves to a block for `capacity` bytes.
    void enlarge(std::size_t capacity);
    void swap(TextRep& other) noexcept {
        std::swap(words_[0], other.words_[0]);
        std::swap(words_[1], other.words_[1]);
    }

    friend bool operator==(TextRep const& a, TextRep const& b) noexcept {
        if (a.words_[0] == b.words_[0] && a.words_[1] == b.words_[1]) return true;
        return !(a.isInline() && b.isInline()) && a.view() == b.view();
    }
    /// Compares bytes as unsigned numbers; a prefix comes before the longer text.
    friend std::strong_ordering operator<=>(TextRep const& a, TextRep const& b) noexcept {
        if (!a.isInline() || !b.isInline()) [[unlikely]]
            return compareBytes(a.view(), b.view());
        if (a.words_[0] != b.words_[0]) return inMemoryOrder(a.words_[0]) <=> inMemoryOrder(b.words_[0]);
        // The tag is the lowest byte here and decreases with the size; inverted, it puts the shorter text first.
        return (inMemoryOrder(a.words_[1]) ^ 0xff) <=> (inMemoryOrder(b.words_[1]) ^ 0xff);
    }

private:
    static constexpr bool littleEndian = std::endian::native == std::endian::little;
    static constexpr int tagShift = littleEndian ? 56 : 0;
    static constexpr int sizeShift = littleEndian ? 0 : 8;
    static constexpr std::uint64_t sizeMask = (std::uint64_t(1) << 56) - 1;
    static constexpr unsigned heapTag = 0x80;

    /// Four block sizes per octave, from 16 bytes on; growth and allocators round to similar sizes anyway.
    [[nodiscard]] static constexpr std::size_t blockBytes(unsigned code) noexcept {
        return std::size_t(4 + code % 4) << (2 + code / 4);
    }
    /// The bytes of a word as a number whose order is their order in memory.
    [[nodiscard]] static std::uint64_t inMemoryOrder(std::uint64_t word) noexcept {
        return littleEndian ? __builtin_bswap64(word) : word;
    }
    template <class Word>
    [[nodiscard]] static std::uint64_t load(char const* from) noexcept {
        Word word;
        std::memcpy(&word, from, sizeof word);
        return word;
    }

    /// Most texts differ in their first eight bytes: compare these before the call.
    [[nodiscard]] static std::strong_ordering compareBytes(std::string_view a, std::string_view b) noexcept {
        if (a.size() >= 8 && b.size() >= 8) {
            std::uint64_t const first = load<std::uint64_t>(a.data());
            std::uint64_t const second = load<std::uint64_t>(b.data());
            if (first != second) return inMemoryOrder(first) <=> inMemoryOrder(second);
        }
        return a.compare(b) <=> 0;
    }

    [[nodiscard]] unsigned tag() const noexcept { return static_cast<unsigned char>(words_[1] >> tagShift); }
    /// Read as a pointer, not as a number: g++ 12 takes an array element cast to a pointer for the array's own address
    /// and assumes that its `strlen` is below sixteen.
    [[nodiscard]] char* block() const noexcept {
        char* block;
        static_assert(sizeof block == sizeof words_[0]);
        std::memcpy(&block, words_, sizeof block);
        return block;
    }
    void forget() noexcept {
        words_[0] = 0;
        words_[1] = std::uint64_t(inlineCapacity) << tagShift;  // NOLINT(clang-analyzer-unix.Malloc): another holds it
    }
    /// Stores the text. Requires: a new object.
    void take(char const* text, std::size_t size) {
        if (size <= inlineCapacity) [[likely]] {
            pack(text, size);
        } else {
            std::memcpy(makeRoom(size, size), text, size);
        }
    }
    /// Stores the first `size` bytes of two words inline.
    void keepInline(std::uint64_t first, std::uint64_t second, std::size_t size) noexcept {
        words_[0] = first & firstBytes[size][0];
        words_[1] = (second & firstBytes[size][1]) | std::uint64_t(inlineCapacity - size) << tagShift;
    }
    /// Stores the text inline, without the call that a copy of unknown length needs. Requires: a new object.
    void pack(char const* text, std::size_t size) noexcept {
        if (!littleEndian) {
            std::memcpy(words_, text, size);
        } else if (size > 8) {
            words_[0] = load<std::uint64_t>(text);
            words_[1] = load<std::uint64_t>(text + size - 8) >> (8 * (16 - size));
        } else if (size >= 4) {
            words_[0] = load<std::uint32_t>(text) | load<std::uint32_t>(text + size - 4) << (8 * (size - 4));
        } else if (size > 0) {
            std::size_t const middle = size / 2;
            words_[0] = load<unsigned char>(text) | load<unsigned char>(text + middle) << (8 * middle) |
                        load<unsigned char>(text + size - 1) << (8 * (size - 1));
        }
        words_[1] = (words_[1] & ~(std::uint64_t(0xff) << tagShift)) | std::uint64_t(inlineCapacity - size) << tagShift;
    }
    /// Allocates an uninitialized heap text of `size` bytes. Requires: no block is held.
    char* makeRoom(std::size_t size, std::size_t capacity);
    void release() noexcept;

    std::uint64_t words_[2] = {0, std::uint64_t(inlineCapacity) << tagShift};
};

static_assert(sizeof(TextRep) == 16 && sizeof(void*) == 8);

}  // namespace urString::impl
