// How streams are opened.
#pragma once

namespace urOS {

/// The purpose of an open stream: a sum of the first four.
enum OpenMode : int {
    openWrite = 1,
    openRead = 2,
    openAppend = 4,  ///< with `openWrite`: writes at the end; creates a missing file
    openNew = 8,     ///< creates a missing file, empties an existing one
    openForWriting = openWrite | openNew,
};

constexpr OpenMode operator|(OpenMode a, OpenMode b) noexcept {
    return static_cast<OpenMode>(static_cast<int>(a) | static_cast<int>(b));
}
/// Whether `mode` includes all of `part`.
constexpr bool includes(OpenMode mode, OpenMode part) noexcept { return (mode & part) == part; }

}  // namespace urOS
