// The tokens of a JSON text, and what is wrong with one that is none.
#pragma once

#include <string_view>

namespace nxPLST::impl {

/// Steps through a text token by token, up to the first byte at which no JSON text could go on.
///
/// The functions stand on the first byte of what they pass. They are false at a fault, which `reason` then tells
/// and `at` points to.
class JsonScanner {
public:
    explicit JsonScanner(std::string_view text) noexcept : at(text.data()), end_(at + text.size()) {}

    bool passSpace() noexcept;
    /// `contents` is what stands between the quotes, escapes as they are.
    bool passText(std::string_view& contents) noexcept;
    bool passNumber(bool& isInteger) noexcept;
    bool passWord(std::string_view word) noexcept;

    [[nodiscard]] bool atEnd() const noexcept { return at == end_; }
    /// NUL at the end.
    [[nodiscard]] char next() const noexcept { return atEnd() ? '\0' : *at; }
    /// Records a fault at the current place, or at another.
    bool fail(char const* why) noexcept;
    bool fail(char const* why, char const* place) noexcept;

    char const* at;
    char const* reason = nullptr;

private:
    bool passComment() noexcept;
    bool passEscape() noexcept;
    bool passUtf8() noexcept;
    bool passDigits() noexcept;
    bool checkRange(char const* first, bool isInteger) noexcept;

    char const* end_;
};

}  // namespace nxPLST::impl
