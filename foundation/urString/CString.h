// 8-bit text that owns its bytes.
#pragma once

#include <concepts>
#include <cstdarg>
#include <functional>
#include <iosfwd>
#include <string>

#include "foundation/urString/TextRep.h"

namespace urString {

class CString;

/// A type that can be compared with a CString without conversion.
template <class T>
concept ForeignText = std::convertible_to<T const&, std::string_view> && !std::same_as<T, CString>;

/// The framework's text: any bytes with a length, followed by a NUL; UTF-8 where the bytes are text.
///
/// Sixteen bytes; holds up to fifteen bytes of text inline, so that it fits into items and dictionary entries. Order
/// and equality compare bytes as unsigned numbers; a prefix comes before the longer text. Positions beyond the end mean
/// the end, counts beyond it reach to it. Arguments may be part of the changed text. A moved-from text is empty. A
/// value: different threads may use different copies.
class NX_API CString {
public:
    using value_type = char;
    using size_type = std::size_t;
    using iterator = char*;
    using const_iterator = char const*;
    static constexpr std::size_t npos = std::string_view::npos;

    constexpr CString() noexcept = default;
    /// Up to the terminating NUL; null gives the empty text.
    CString(char const* text) : rep_(text, text ? std::strlen(text) : 0) {}
    CString(char const* text, std::size_t size) : rep_(text, size) {}
    CString(std::size_t count, char character);
    CString(std::string_view text) : rep_(text.data(), text.size()) {}
    CString(std::string const& text) : rep_(text.data(), text.size()) {}
    CString(CString const&) = default;
    CString(CString&&) noexcept = default;
    CString& operator=(CString const&) = default;
    CString& operator=(CString&&) noexcept = default;

    /// The text, if `readable` bytes can be read from its start, at least its size: with sixteen of them, a short text
    /// is copied in one step.
    [[nodiscard]] static CString ofReadable(std::string_view text, std::size_t readable) { return {text, readable}; }
    /// The text that `printf` would print; empty when the format is invalid. Numbers have a decimal point, whatever the
    /// process's locale is.
    [[gnu::format(printf, 1, 2)]] static CString format(char const* format, ...);
    [[gnu::format(printf, 1, 0)]] static CString vformat(char const* format, va_list arguments);

    [[nodiscard]] char const* c_str() const noexcept { return rep_.data(); }
    [[nodiscard]] char const* data() const noexcept { return rep_.data(); }
    /// Valid until the text changes its size or moves; do not overwrite the NUL after it.
    [[nodiscard]] char* data() noexcept { return rep_.data(); }
    [[nodiscard]] std::size_t size() const noexcept { return rep_.size(); }
    [[nodiscard]] std::size_t length() const noexcept { return rep_.size(); }
    [[nodiscard]] bool empty() const noexcept { return rep_.size() == 0; }
    [[nodiscard]] std::size_t capacity() const noexcept { return rep_.capacity(); }
    [[nodiscard]] std::string_view view() const noexcept { return rep_.view(); }
    operator std::string_view() const noexcept { return rep_.view(); }
    operator std::string() const { return std::string(rep_.view()); }

    [[nodiscard]] iterator begin() noexcept { return data(); }
    [[nodiscard]] iterator end() noexcept { return data() + size(); }
    [[nodiscard]] const_iterator begin() const noexcept { return data(); }
    [[nodiscard]] const_iterator end() const noexcept { return data() + size(); }
    /// NUL at and beyond the end.
    [[nodiscard]] char operator[](std::size_t position) const noexcept {
        return position < size() ? data()[position] : '\0';
    }

    CString& assign(std::string_view text);
    CString& assign(char const* text) { return assign(orEmpty(text)); }
    CString& assign(char const* text, std::size_t size) { return assign(std::string_view(text, size)); }
    CString& append(std::string_view text) {
        char* const end = rep_.extend(text.size());
        if (!end) [[unlikely]]
            return appendGrowing(text);
        if (!text.empty()) std::memcpy(end, text.data(), text.size());
        return *this;
    }
    CString& append(char const* text) { return append(orEmpty(text)); }
    CString& append(char const* text, std::size_t size) { return append(std::string_view(text, size)); }
    CString& append(char character) {
        char* const end = rep_.extend(1);
        if (!end) [[unlikely]]
            return appendGrowing({&character, 1});
        *end = character;
        return *this;
    }
    CString& append(std::size_t count, char character);
    CString& operator+=(std::string_view text) { return append(text); }
    CString& operator+=(char const* text) { return append(text); }
    CString& operator+=(char character) { return append(character); }

    void clear() noexcept { rep_.setSize(0); }
    CString& erase(std::size_t position = 0, std::size_t count = npos) { return replace(position, count, {}); }
    /// Replaces `count` bytes by `text`.
    CString& replace(std::size_t position, std::size_t count, std::string_view text);
    /// Replaces every `from`, left to right, not within inserted text; returns the number of replacements. An empty
    /// `from` is never found.
    std::size_t replace(std::string_view from, std::string_view to);
    void reserve(std::size_t capacity);
    void resize(std::size_t size, char fill = '\0');
    /// Calls `write(char* bytes, std::size_t size)` to fill a text of `size` bytes, which first hold the former text
    /// and then undefined bytes. `write` returns the final size, at most `size`.
    template <class Write>
    void resizeAndOverwrite(std::size_t size, Write write) {
        reserve(size);
        rep_.setSize(size);
        rep_.setSize(write(rep_.data(), size));
    }
    /// Changes only the letters a to z, in every locale.
    CString& toUpperCase() noexcept;
    CString& toLowerCase() noexcept;

    /// The first position at or after `from`, or npos.
    [[nodiscard]] std::size_t find(std::string_view text, std::size_t from = 0) const noexcept {
        return view().find(text, from);
    }
    [[nodiscard]] std::size_t find(char character, std::size_t from = 0) const noexcept {
        return view().find(character, from);
    }
    /// The last position at or before `from`, or npos.
    [[nodiscard]] std::size_t rfind(std::string_view text, std::size_t from = npos) const noexcept {
        return view().rfind(text, from);
    }
    [[nodiscard]] std::size_t rfind(char character, std::size_t from = npos) const noexcept {
        return view().rfind(character, from);
    }
    [[nodiscard]] bool startsWith(std::string_view text) const noexcept { return view().starts_with(text); }
    [[nodiscard]] bool endsWith(std::string_view text) const noexcept { return view().ends_with(text); }
    [[nodiscard]] CString substr(std::size_t position, std::size_t count = npos) const;

    /// Negative, 0 or positive as this text comes before, equals or comes after the other.
    [[nodiscard]] int compare(CString const& other) const noexcept { return toInt(rep_ <=> other.rep_); }
    template <ForeignText Text>
    [[nodiscard]] int compare(Text const& other) const noexcept {
        return view().compare(other);
    }
    friend bool operator==(CString const& a, CString const& b) noexcept { return a.rep_ == b.rep_; }
    friend std::strong_ordering operator<=>(CString const& a, CString const& b) noexcept { return a.rep_ <=> b.rep_; }
    template <ForeignText Text>
    friend bool operator==(CString const& a, Text const& b) noexcept {
        return a.view() == b;
    }
    template <ForeignText Text>
    friend std::strong_ordering operator<=>(CString const& a, Text const& b) noexcept {
        return a.view().compare(b) <=> 0;
    }

    friend CString operator+(CString a, std::string_view b) { return std::move(a.append(b)); }
    friend NX_API std::ostream& operator<<(std::ostream& out, CString const& text);

private:
    CString(std::string_view text, std::size_t readable) : rep_(text.data(), text.size(), readable) {}

    [[nodiscard]] static std::string_view orEmpty(char const* text) noexcept {
        return text ? std::string_view(text) : std::string_view();
    }
    [[nodiscard]] static int toInt(std::strong_ordering order) noexcept {
        return std::is_gt(order) - std::is_lt(order);
    }
    CString& appendGrowing(std::string_view text);

    impl::TextRep rep_;
};

static_assert(sizeof(CString) == 16);

/// The bytes of a text of any type, without a copy; empty for a null pointer.
template <ForeignText Text>
[[nodiscard]] std::string_view viewOf(Text const& text) noexcept {
    if constexpr (std::convertible_to<Text const&, char const*>) {
        char const* const bytes = text;
        return bytes ? std::string_view(bytes) : std::string_view();
    } else {
        return text;
    }
}

/// The order of texts as a function object; looks up by any text type without copying.
struct less {
    using is_transparent = void;

    template <std::same_as<CString> Text>
    [[nodiscard]] bool operator()(Text const& a, Text const& b) const noexcept {
        return a < b;
    }
    [[nodiscard]] bool operator()(CString const& a, std::string_view b) const noexcept { return a.view() < b; }
    [[nodiscard]] bool operator()(std::string_view a, CString const& b) const noexcept { return a < b.view(); }
};

}  // namespace urString

namespace ur {

template <class T>
struct less;

template <>
struct less<urString::CString> : urString::less {};

}  // namespace ur

template <>
struct std::hash<urString::CString> {
    std::size_t operator()(urString::CString const& text) const noexcept {
        return std::hash<std::string_view>()(text.view());
    }
};
