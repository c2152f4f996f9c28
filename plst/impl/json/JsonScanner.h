// Scans JSON tokens and describes invalid ones.
#pragma once

#include <string_view>

namespace nxPLST::impl {

/// Scans a text token by token, up to the first byte at which no valid JSON could continue.
///
/// The functions start at the first byte of the token. They return false at a fault; `reason` then describes it and
/// `at` points to it.
class JsonScanner {
public:
    explicit JsonScanner(std::string_view text) noexcept : at(text.data()), end_(at + text.size()) {}

    bool passSpace() noexcept;
    bool passText() noexcept;
    bool passNumber() noexcept;
    bool passWord(std::string_view word) noexcept;

    [[nodiscard]] bool atEnd() const noexcept { return at == end_; }
    /// NUL at the end.
    [[nodiscard]] char next() const noexcept { return atEnd() ? '\0' : *at; }
    /// Records a fault at the current position, or at another.
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
