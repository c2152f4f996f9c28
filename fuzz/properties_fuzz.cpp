// Makes generated calls on properties and on the plain model of them.
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "support/properties/tests/PropertyPlay.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::size_t used = 0;
    nxSupport::test::PropertyPlay both([&]() -> unsigned { return used < size ? data[used++] : 0; });
    while (used < size) {
        std::string const difference = both.step();
        if (difference.empty()) continue;
        std::fprintf(stderr, "%s\n", difference.c_str());
        std::abort();
    }
    return 0;
}
