// The system's entropy: one call, where std::random_device asks the processor for its features each time.
#include "foundation/urOS/impl/drawRandom.h"

#include <unistd.h>

#include <algorithm>
#include <functional>
#include <random>

namespace urOS::impl {

void drawRandom(std::span<std::uint32_t> words) {
    if (::getentropy(words.data(), words.size_bytes()) == 0) return;
    std::random_device device;
    std::ranges::generate(words, std::ref(device));
}

}  // namespace urOS::impl
