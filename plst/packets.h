// Items in files of packets.
#pragma once

#include <cstdint>

#include "foundation/ur/Export.h"
#include "foundation/ur/Reference.h"
#include "foundation/urUtil/Error.h"
#include "plst/Item.h"

namespace urOS {
class IOStream;
}

namespace nxPLST {

/// How the writing or reading of a packet file went.
struct PacketReport {
    int status = 0;              ///< one of `ioStatus`; 0 when all went well
    std::uint64_t position = 0;  ///< bytes into the file at the end, or where the fault was found
    urUtil::Error error;         ///< what the stream said, if it failed
};

/// Writes a file of packets that holds `item`, or no packet for null. Items with several holders are written once.
/// Whether an item has several holders, in the tree or elsewhere, shows in the bytes: equal trees may give different
/// ones. False when the stream failed, or when an item is inside itself or of no known kind. Texts and keys are cut at
/// their first NUL.
[[nodiscard]] NX_API bool write(urOS::IOStream& stream, ur::Reference<Item const> item);
[[nodiscard]] NX_API bool write(urOS::IOStream& stream, ur::Reference<Item const> item, PacketReport& report);

/// Reads what `write` has written. False when the stream failed or its bytes are no complete packet file; `item` is
/// then what had been read whole, or null. A tree of unknown origin may share items so often that no copy of it fits
/// into memory: plst/Expansion.h tells. May take what follows the file from the stream, but never waits for it.
[[nodiscard]] NX_API bool read(urOS::IOStream& stream, ur::Reference<Item>& item);
[[nodiscard]] NX_API bool read(urOS::IOStream& stream, ur::Reference<Item>& item, PacketReport& report);

}  // namespace nxPLST
