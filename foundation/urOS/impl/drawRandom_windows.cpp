// The random device of the standard library.
#include "foundation/urOS/impl/drawRandom.h"

#include <algorithm>
#include <functional>
#include <random>

namespace urOS::impl {

void drawRandom(std::span<std::uint32_t> words) {
    std::random_device device;
    std::ranges::generate(words, std::ref(device));
}

}  // namespace urOS::impl
