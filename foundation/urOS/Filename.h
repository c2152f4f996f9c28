// The name of a file and its pieces.
#pragma once

#include <compare>
#include <utility>

#include "foundation/ur/Export.h"
#include "foundation/urString/IString.h"

namespace urOS {

/// A path as text. Nothing here asks the file system, nothing resolves "." or "..".
class NX_API Filename {
public:
    Filename() noexcept = default;
    Filename(urString::IString path) noexcept : path_(std::move(path)) {}

    /// `name` inside `folder`, with one separator between them. An absolute name, and one in the empty folder, stays
    /// as it is.
    static Filename join(urString::IString const& folder, urString::IString const& name);

    [[nodiscard]] bool empty() const noexcept { return path_.empty(); }
    [[nodiscard]] bool isAbsolute() const noexcept;
    /// What follows the last separator.
    [[nodiscard]] urString::IString basename() const;
    /// What precedes the last separator: empty without one, the separator itself for a file in the root.
    [[nodiscard]] Filename directory() const;
    /// What follows the last dot of the base name; empty without one. The dot that hides a file does not count.
    [[nodiscard]] urString::IString extension() const;

    [[nodiscard]] urString::IString const& text() const noexcept { return path_; }
    operator urString::IString const&() const noexcept { return path_; }
    [[nodiscard]] urString::CString asUTF8() const { return path_.asUTF8(); }
    /// The bytes that the system knows the file by.
    [[nodiscard]] urString::CString asMultibyte() const { return path_.asMultibyte(); }

    friend bool operator==(Filename const& a, Filename const& b) noexcept = default;
    friend std::strong_ordering operator<=>(Filename const& a, Filename const& b) noexcept = default;

private:
    urString::IString path_;
};

}  // namespace urOS
