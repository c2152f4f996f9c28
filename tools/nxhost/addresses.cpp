// The address ranges that the registries reserve.
#include "tools/nxhost/addresses.h"

#include <netinet/in.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace nxhost {
namespace {

struct Range {
    std::uint32_t first;
    unsigned bits;
};

constexpr std::uint32_t dotted(std::uint32_t a, std::uint32_t b, std::uint32_t c) { return a << 24 | b << 16 | c << 8; }

constexpr Range setAside[] = {
    {dotted(0, 0, 0), 8},        // this host
    {dotted(10, 0, 0), 8},       // private
    {dotted(100, 64, 0), 10},    // shared by a provider's customers
    {dotted(127, 0, 0), 8},      // loopback
    {dotted(169, 254, 0), 16},   // link-local
    {dotted(172, 16, 0), 12},    // private
    {dotted(192, 0, 0), 24},     // protocols
    {dotted(192, 0, 2), 24},     // documentation
    {dotted(192, 88, 99), 24},   // relays
    {dotted(192, 168, 0), 16},   // private
    {dotted(198, 18, 0), 15},    // benchmarks
    {dotted(198, 51, 100), 24},  // documentation
    {dotted(203, 0, 113), 24},   // documentation
    {dotted(224, 0, 0), 3},      // multicast, reserved, broadcast
};

bool isPublic4(std::uint32_t address) noexcept {
    return std::ranges::none_of(setAside,
                                [=](Range const& range) { return (address ^ range.first) >> (32 - range.bits) == 0; });
}

using Bytes = std::uint8_t[16];

std::uint32_t wordAt(Bytes const& bytes, int at) noexcept {
    return std::uint32_t{bytes[at]} << 24 | std::uint32_t{bytes[at + 1]} << 16 | std::uint32_t{bytes[at + 2]} << 8 |
           bytes[at + 3];
}

bool startsWith(Bytes const& bytes, std::initializer_list<std::uint8_t> beginning) noexcept {
    return std::equal(beginning.begin(), beginning.end(), bytes);
}

bool isPublic6(Bytes const& bytes) noexcept {
    // Ranges that embed a 4-byte address: mapped, translated, and tunnelled.
    if (startsWith(bytes, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF})) return isPublic4(wordAt(bytes, 12));
    if (startsWith(bytes, {0, 0x64, 0xFF, 0x9B, 0, 0, 0, 0, 0, 0, 0, 0})) return isPublic4(wordAt(bytes, 12));
    if (startsWith(bytes, {0x20, 0x02})) return isPublic4(wordAt(bytes, 2));
    bool const isProtocol = startsWith(bytes, {0x20, 0x01}) && bytes[2] < 2;
    bool const isDocumentation = startsWith(bytes, {0x20, 0x01, 0x0D, 0xB8}) || startsWith(bytes, {0x3F, 0xFF});
    constexpr unsigned globalUnicast = 1;  // the first three bits
    return bytes[0] >> 5 == globalUnicast && !isProtocol && !isDocumentation;
}

}  // namespace

bool isPublic(sockaddr const* address) noexcept {
    if (address->sa_family == AF_INET) {
        sockaddr_in four = {};
        std::memcpy(&four, address, sizeof four);
        return isPublic4(ntohl(four.sin_addr.s_addr));
    }
    if (address->sa_family != AF_INET6) return false;
    sockaddr_in6 six = {};
    std::memcpy(&six, address, sizeof six);
    return isPublic6(six.sin6_addr.s6_addr);
}

}  // namespace nxhost
