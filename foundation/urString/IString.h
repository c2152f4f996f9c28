// Wide text: Unicode characters, and their conversion from and to bytes.
#pragma once

#include <compare>
#include <concepts>
#include <cstdarg>
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>

#include "foundation/urString/CString.h"

namespace urString {

/// How bytes are decoded. Both decode well-formed UTF-8; they differ in other bytes.
///
/// `multibyte`, for names from the system (files, environment): a byte that belongs to no character becomes its own
/// character, U+DC80 to U+DCFF, and `asMultibyte` returns the same byte again, so that every file can be named. The
/// process's locale has no effect: a path names the same file whatever `setlocale` was called with. `utf8`, for text:
/// each ill-formed piece becomes one U+FFFD, and the output is always valid UTF-8.
enum class Encoding : int { multibyte = 0, utf8 = 1 };

/// `std::filesystem::path`. The concept spares every user of texts that large header.
template <class T>
concept FilePath = requires(T const& path) {
    requires std::same_as < decltype(path.native()), std::basic_string<typename T::value_type>
    const& > ;
    path.root_directory();
};

/// Text as Unicode characters, for file names and human-readable text.
///
/// Contains only characters: Unicode scalar values, and the substitutes for undecodable bytes that
/// `Encoding::multibyte` describes; other input becomes U+FFFD. NULs are ordinary characters where a length is given.
/// The order is by character number. Positions beyond the end mean the end, counts beyond it reach to it. A value:
/// different threads may use different copies.
class NX_API IString {
public:
    static constexpr std::size_t npos = std::u32string::npos;

    IString() noexcept = default;
    /// As `assign` for each of these types; null gives the empty text.
    IString(char const* text, Encoding encoding = Encoding::multibyte, bool* error = nullptr);
    IString(std::string_view text, Encoding encoding = Encoding::multibyte, bool* error = nullptr);
    IString(std::string const& text, Encoding encoding = Encoding::multibyte, bool* error = nullptr)
        : IString(std::string_view(text), encoding, error) {}
    IString(CString const& text, Encoding encoding = Encoding::multibyte, bool* error = nullptr)
        : IString(text.view(), encoding, error) {}
    /// The path's own bytes, or wide characters.
    template <FilePath Path>
    IString(Path const& path) : IString(std::basic_string_view<typename Path::value_type>(path.native())) {}
    IString(wchar_t const* text);
    explicit IString(std::wstring_view text);
    explicit IString(std::u32string_view text);

    /// The text that `printf` would print, as `CString::format`.
    [[gnu::format(printf, 1, 2)]] static IString format(char const* format, ...);
    [[gnu::format(printf, 1, 0)]] static IString vformat(char const* format, va_list arguments);

    /// Decodes `text`. `error`, if not null, receives whether any byte was not UTF-8.
    IString& assign(std::string_view text, Encoding encoding, bool* error = nullptr);
    IString& assign(char const* text, std::size_t size, Encoding encoding, bool* error = nullptr);
    /// Up to the terminating NUL; null gives the empty text.
    IString& assign(char const* text, Encoding encoding, bool* error = nullptr);
    IString& assign(std::wstring_view text);

    [[nodiscard]] CString asUTF8() const;
    /// The size of `asUTF8` including the terminating NUL.
    [[nodiscard]] std::size_t asUTF8StoreSize() const noexcept;
    [[nodiscard]] CString asMultibyte() const;
    /// In the platform's wide form: UTF-32, or UTF-16 where `wchar_t` has two bytes.
    [[nodiscard]] std::wstring asWide() const;
    /// As `asMultibyte`.
    explicit operator std::string() const { return asMultibyte(); }
    /// The same file, whatever bytes its name contains.
    template <FilePath Path>
    operator Path() const {
        if constexpr (sizeof(typename Path::value_type) == 1) {
            return Path(asMultibyte().view());
        } else {
            return Path(asWide());
        }
    }

    [[nodiscard]] std::size_t length() const noexcept { return text_.size(); }
    [[nodiscard]] std::size_t size() const noexcept { return text_.size(); }
    [[nodiscard]] bool empty() const noexcept { return text_.empty(); }
    [[nodiscard]] std::u32string_view view() const noexcept { return text_; }
    /// NUL at and beyond the end.
    [[nodiscard]] char32_t operator[](std::size_t position) const noexcept {
        return position < text_.size() ? text_[position] : U'\0';
    }

    IString& append(IString const& text);
    IString& append(char32_t character);
    IString& operator+=(IString const& text) { return append(text); }
    IString& operator+=(char32_t character) { return append(character); }
    void clear() noexcept { text_.clear(); }
    IString& erase(std::size_t position = 0, std::size_t count = npos);
    /// Replaces `count` characters by `text`.
    IString& replace(std::size_t position, std::size_t count, IString const& text);
    /// Replaces every `from`, left to right, not within inserted text; returns the number of replacements. An empty
    /// `from` is never found.
    std::size_t replace(IString const& from, IString const& to);

    /// The first position at or after `from`, or npos.
    [[nodiscard]] std::size_t find(IString const& text, std::size_t from = 0) const noexcept {
        return text_.find(text.text_, from);
    }
    [[nodiscard]] std::size_t find(char32_t character, std::size_t from = 0) const noexcept {
        return text_.find(character, from);
    }
    /// The last position at or before `from`, or npos.
    [[nodiscard]] std::size_t rfind(IString const& text, std::size_t from = npos) const noexcept {
        return text_.rfind(text.text_, from);
    }
    [[nodiscard]] std::size_t rfind(char32_t character, std::size_t from = npos) const noexcept {
        return text_.rfind(character, from);
    }
    [[nodiscard]] bool startsWith(IString const& text) const noexcept { return text_.starts_with(text.text_); }
    [[nodiscard]] bool endsWith(IString const& text) const noexcept { return text_.ends_with(text.text_); }
    [[nodiscard]] IString substr(std::size_t position, std::size_t count = npos) const;

    /// Negative, 0 or positive as this text comes before, equals or comes after the other.
    [[nodiscard]] int compare(IString const& other) const noexcept { return text_.compare(other.text_); }
    friend bool operator==(IString const& a, IString const& b) noexcept = default;
    template <FilePath Path>
    friend bool operator==(IString const& a, Path const& b) {
        return a == IString(b);
    }
    friend std::strong_ordering operator<=>(IString const& a, IString const& b) noexcept = default;

    friend IString operator+(IString a, IString const& b) { return std::move(a.append(b)); }
    /// Writes the text as UTF-8.
    friend NX_API std::ostream& operator<<(std::ostream& out, IString const& text);

private:
    std::u32string text_;
};

}  // namespace urString

template <>
struct std::hash<urString::IString> {
    std::size_t operator()(urString::IString const& text) const noexcept {
        return std::hash<std::u32string_view>()(text.view());
    }
};
