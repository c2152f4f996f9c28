// The states that packet contexts report.
#pragma once

#include "foundation/ur/Export.h"

/// The state of a packet context: `ok` until the first fault, which stays. After it, nothing is read or written.
enum class ioStatus : int {
    ok = 0,
    streamFailed = 1,         ///< the stream reported an error
    noContext = 2,            ///< there is no context
    notAPacketFile = 3,       ///< the input does not begin with the file mark
    unknownVersion = 4,       ///< this library cannot read the version in the file mark
    truncated = 5,            ///< the input ends before the file's end mark
    malformed = 6,            ///< invalid bytes, or a value of another kind than requested
    unresolvedReference = 7,  ///< a reference to an object that is incomplete or not defined
    unknownType = 8,          ///< the registry does not support the type of a packet to write
    tooDeep = 9,              ///< packets nest deeper than recursive reading allows
    cycle = 10,               ///< an object to write contains itself
    misuse = 11,              ///< calls in an invalid order
};

/// A one-line message without a final period. `status` is a result of `getStatus`.
NX_API char const* ioStatusText(int status) noexcept;
