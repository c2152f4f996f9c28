// Makes generated calls on a manager and on the plain model of it.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "krcache/tests/CacheModel.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::size_t used = 0;
    urKRCache::test::CacheModel model([&] {
        std::uint32_t drawn = 0;
        std::size_t const part = std::min(sizeof drawn, size - used);
        std::memcpy(&drawn, data + used, part);
        used += part;
        return drawn;
    });
    while (used < size) {
        std::string const difference = model.step();
        if (difference.empty()) continue;
        std::fprintf(stderr, "%s\n", difference.c_str());
        std::abort();
    }
    return 0;
}
