// What packet contexts report when they stop.
#pragma once

#include "foundation/ur/Export.h"

/// The state of a packet context: `ok` until the first fault, which stays. From then on nothing is read or written.
enum class ioStatus : int {
    ok = 0,
    streamFailed = 1,         ///< the stream below reported an error
    noContext = 2,            ///< there was no context to work with
    notAPacketFile = 3,       ///< the input does not begin with the file mark
    unknownVersion = 4,       ///< the file mark is of a version that this library does not read
    truncated = 5,            ///< the input ends before the file's end mark
    malformed = 6,            ///< bytes that mean nothing where they stand, or a value of another kind than asked for
    unresolvedReference = 7,  ///< a reference to an object that is not complete, or that nobody defined
    unknownType = 8,          ///< a packet to be written has a type that the registry does not support
    tooDeep = 9,              ///< packets nested deeper than their types' own recursion may go
    cycle = 10,               ///< an object to be written is inside itself
    misuse = 11,              ///< calls in an order that makes no file
};

/// One line for people, without a final stop. `status` is what `getStatus` gave.
NX_API char const* ioStatusText(int status) noexcept;
