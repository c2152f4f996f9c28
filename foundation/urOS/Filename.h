// File names and their parts.
#pragma once

#include <compare>
#include <concepts>
#include <utility>

#include "foundation/ur/Export.h"
#include "foundation/urString/IString.h"

namespace urOS {

/// A path as text. Nothing here accesses the file system or resolves "." or "..".
class NX_API Filename {
public:
    Filename() noexcept = default;
    Filename(urString::IString path) noexcept : path_(std::move(path)) {}
    /// Literals, standard strings and `std::filesystem::path`, as an IString takes them.
    template <class Path>
    requires(!std::same_as<Path, Filename> && std::convertible_to<Path const&, urString::IString>)
        Filename(Path const& path)
        : path_(path) {}

    /// `name` inside `folder`, with one separator between them. Returns `name` unchanged if it is absolute or `folder`
    /// is empty.
    static Filename join(urString::IString const& folder, urString::IString const& name);

    [[nodiscard]] bool empty() const noexcept { return path_.empty(); }
    [[nodiscard]] bool isAbsolute() const noexcept;
    /// The part after the last separator.
    [[nodiscard]] urString::IString basename() const;
    /// The part before the last separator: empty without one, the separator itself for a file in the root.
    [[nodiscard]] Filename directory() const;
    /// The part after the last dot of the base name; empty without one. A leading dot (hidden file) does not count.
    [[nodiscard]] urString::IString extension() const;

    [[nodiscard]] urString::IString const& text() const noexcept { return path_; }
    operator urString::IString const&() const noexcept { return path_; }
    /// As `IString` gives it.
    template <urString::FilePath Path>
    operator Path() const {
        return path_;
    }
    [[nodiscard]] urString::CString asUTF8() const { return path_.asUTF8(); }
    /// The path in the system's bytes.
    [[nodiscard]] urString::CString asMultibyte() const { return path_.asMultibyte(); }

    friend bool operator==(Filename const& a, Filename const& b) noexcept = default;
    friend std::strong_ordering operator<=>(Filename const& a, Filename const& b) noexcept = default;

private:
    urString::IString path_;
};

}  // namespace urOS
