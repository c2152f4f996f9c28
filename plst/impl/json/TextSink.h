// Appends to a text in pieces, without the text's bookkeeping for each piece.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "foundation/urString/CString.h"

namespace nxPLST::impl {

/// Extends a text at its end. The text has its true size again after the sink is destroyed.
class TextSink {
public:
    explicit TextSink(urString::CString& text) : text_(text) { expose(text.size(), text.capacity()); }
    TextSink(TextSink const&) = delete;
    TextSink& operator=(TextSink const&) = delete;
    ~TextSink() {
        text_.resizeAndOverwrite(size(), [](char*, std::size_t size) { return size; });
    }

    [[nodiscard]] std::size_t size() const noexcept { return sizeAt(at_); }
    [[nodiscard]] std::size_t capacity() const noexcept { return sizeAt(end_); }
    void append(std::string_view piece) {
        char* const to = room(piece.size());
        at_ = to + piece.copy(to, piece.size());
    }
    void append(std::size_t count, char character) {
        std::fill_n(room(count), count, character);
        at_ += count;
    }

    /// The end of the text, with room for `bytes` bytes; those before `advanceTo` become part of the text.
    [[nodiscard]] char* room(std::size_t bytes) { return room(at_, bytes); }
    void advanceTo(char* at) noexcept { at_ = at; }
    /// The length of the text that ends at `at`.
    [[nodiscard]] std::size_t sizeAt(char const* at) const noexcept { return static_cast<std::size_t>(at - begin_); }
    /// The same, when the text was written up to `at` meanwhile.
    [[nodiscard]] char* room(char* at, std::size_t bytes) {
        if (bytes <= static_cast<std::size_t>(end_ - at)) [[likely]]
            return at;
        at_ = at;
        grow(bytes);
        return at_;
    }

private:
    static constexpr std::size_t firstRoom = 240;

    void grow(std::size_t bytes) { expose(size(), size() + std::max({bytes, size(), firstRoom})); }

    void expose(std::size_t size, std::size_t capacity) {
        text_.reserve(capacity);
        text_.resizeAndOverwrite(text_.capacity(), [](char*, std::size_t bytes) { return bytes; });
        begin_ = text_.data();
        at_ = begin_ + size;
        end_ = at_ + (text_.size() - size);
    }

    urString::CString& text_;
    char* begin_ = nullptr;
    char* at_ = nullptr;
    char* end_ = nullptr;
};

}  // namespace nxPLST::impl
