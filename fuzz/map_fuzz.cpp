// Makes generated calls on maps with small blocks and on the standard map.
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "foundation/ur/tests/MapPlay.h"

namespace {

template <std::uint32_t blockSize, std::uint32_t fanOut>
void play(std::uint8_t const* data, std::size_t size) {
    std::size_t used = 0;
    ur::test::MapPlay<blockSize, fanOut> both([&]() -> unsigned { return used < size ? data[used++] : 0; }, 100);
    while (used < size) {
        std::string difference = both.step();
        if (difference.empty()) difference = both.audit();
        if (difference.empty()) continue;
        std::fprintf(stderr, "%s\n", difference.c_str());
        std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    if (size == 0) return 0;
    switch (data[0] % 3) {
        case 0: play<2, 3>(data + 1, size - 1); break;
        case 1: play<3, 4>(data + 1, size - 1); break;
        default: play<4, 3>(data + 1, size - 1);
    }
    return 0;
}
