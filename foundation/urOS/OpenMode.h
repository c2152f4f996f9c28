// How streams are opened.
#pragma once

namespace urOS {

/// What an open stream is for: a sum of the first four.
enum OpenMode : int {
    openWrite = 1,
    openRead = 2,
    openAppend = 4,  ///< with `openWrite`: everything goes to the end; a missing file is created
    openNew = 8,     ///< a missing file is created, an existing one emptied
    openForWriting = openWrite | openNew,
};

constexpr OpenMode operator|(OpenMode a, OpenMode b) noexcept {
    return static_cast<OpenMode>(static_cast<int>(a) | static_cast<int>(b));
}
/// Whether `mode` includes all of `part`.
constexpr bool includes(OpenMode mode, OpenMode part) noexcept { return (mode & part) == part; }

}  // namespace urOS
