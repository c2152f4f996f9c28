// Reads and writes packet files of items.
#pragma once

#include <cstdint>

#include "foundation/ur/Export.h"
#include "foundation/ur/Reference.h"
#include "foundation/urUtil/Error.h"
#include "plst/Path.h"

namespace urOS {
class IOStream;
}

namespace nxPLST {

/// The outcome of writing or reading a packet file.
struct PacketReport {
    int status = 0;              ///< one of `ioStatus`; 0 on success
    std::uint64_t position = 0;  ///< the bytes from the start of the file to its end, or to the fault
    urUtil::Error error;         ///< the stream's error, if it failed
};

/// Writes a packet file with `item`, or without packets for null. Items with several holders are written once. The
/// bytes depend on whether items have several holders, in the tree or elsewhere: equal trees may give different bytes.
/// False when the stream failed, or when an item contains itself or is of an unknown kind. Texts and keys end at their
/// first NUL.
[[nodiscard]] NX_API bool write(urOS::IOStream& stream, ur::Reference<Item const> item);
[[nodiscard]] NX_API bool write(urOS::IOStream& stream, ur::Reference<Item const> item, PacketReport& report);

/// Reads a file from `write`. False when the stream failed or its bytes are not a complete packet file; `item` is then
/// the part read completely, or null. A tree from an untrusted source may share items so often that no copy of it fits
/// into memory: see plst/Expansion.h. May consume bytes after the file, but never waits for them.
[[nodiscard]] NX_API bool read(urOS::IOStream& stream, ur::Reference<Item>& item);
[[nodiscard]] NX_API bool read(urOS::IOStream& stream, ur::Reference<Item>& item, PacketReport& report);

/// How many bytes of a file from `write` come before the item at `path`, for messages. Where the file only refers to an
/// item on the path, or lacks it, the bytes before that place. Takes no negative indexes.
[[nodiscard]] NX_API std::uint64_t packetPosition(urOS::IOStream& stream, Path const& path);

}  // namespace nxPLST
