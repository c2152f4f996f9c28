// Reads any bytes as a packet file. They must be refused, or read into a tree that survives writing and reading.
#include <cstddef>
#include <cstdint>

#include "foundation/urOS/MemoryIOStream.h"
#include "fuzz/require.h"
#include "plst/packets.h"

namespace {

bool readFrom(urOS::MemoryIOStream& stream, ur::Reference<nxPLST::Item>& item) {
    require(stream.open(urOS::openRead).ok(), "a memory stream opens");
    return nxPLST::read(stream, item);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
    urOS::MemoryIOStream given;
    require(given.open(urOS::openForWriting).ok() && given.write(bytes, size).ok(), "a memory stream takes the bytes");
    ur::Reference<nxPLST::Item> item;
    if (!readFrom(given, item) || !item) return 0;

    urOS::MemoryIOStream written;
    require(written.open(urOS::openForWriting).ok() && nxPLST::write(written, item), "what was read can be written");
    ur::Reference<nxPLST::Item> again;
    require(readFrom(written, again) && again, "what was written can be read");
    require(again->congruent(*item), "it has the same structure");
    return 0;
}
