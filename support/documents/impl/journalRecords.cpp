// Frames records, and finds where the complete ones end.
#include "support/documents/impl/journalRecords.h"

#define XXH_INLINE_ALL  // nothing of it is exported or linked
#include <xxhash.h>

#include <array>
#include <cstdint>

#include "foundation/urOS/MemoryIOStream.h"
#include "plst/packets.h"

namespace nxSupport::impl {
namespace {

constexpr std::string_view mark = "NXJ1";
constexpr std::size_t headSize = 4 + 8 + 8;

void appendNumber(urString::CString& bytes, std::uint64_t number) {
    for (int i = 0; i < 8; ++i) bytes.append(static_cast<char>(number >> (8 * i) & 0xFF));
}

std::uint64_t numberAt(std::string_view bytes) {
    std::uint64_t number = 0;
    for (int i = 7; i >= 0; --i) number = number << 8 | static_cast<unsigned char>(bytes[static_cast<std::size_t>(i)]);
    return number;
}

/// Bytes that are read where they are.
class ViewStream final : public urOS::IOStream {
public:
    explicit ViewStream(std::string_view bytes) noexcept : bytes_(bytes) {}

    urUtil::Error read(void* buffer, std::size_t count, std::size_t* done) override {
        std::size_t const taken = bytes_.copy(static_cast<char*>(buffer), count);
        bytes_.remove_prefix(taken);
        if (done) *done = taken;
        return {};
    }
    urUtil::Error write(void const*, std::size_t, std::size_t*) override { return {0, "is only read"}; }

private:
    std::string_view bytes_;
};

}  // namespace

bool appendRecord(urString::CString& bytes, ur::Reference<nxPLST::Item const> const& content) {
    urOS::MemoryIOStream stream;
    if (stream.open(urOS::openForWriting).isError() || !nxPLST::write(stream, content)) return false;
    urString::CString const packets = stream.contents();
    bytes.append(mark);
    appendNumber(bytes, packets.size());
    appendNumber(bytes, XXH3_64bits(packets.data(), packets.size()));
    bytes.append(packets.view());
    return true;
}

ur::Reference<nxPLST::Item> takeRecord(std::string_view& bytes) {
    if (bytes.size() < headSize || !bytes.starts_with(mark)) return nullptr;
    std::uint64_t const size = numberAt(bytes.substr(mark.size()));
    if (size > bytes.size() - headSize) return nullptr;
    std::string_view const packets = bytes.substr(headSize, static_cast<std::size_t>(size));
    if (XXH3_64bits(packets.data(), packets.size()) != numberAt(bytes.substr(mark.size() + 8))) return nullptr;
    ViewStream stream(packets);
    ur::Reference<nxPLST::Item> content;
    if (!nxPLST::read(stream, content)) return nullptr;
    bytes.remove_prefix(headSize + packets.size());
    return content;
}

}  // namespace nxSupport::impl
