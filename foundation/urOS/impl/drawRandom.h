// Random words from the system.
#pragma once

#include <cstdint>
#include <span>

namespace urOS::impl {

/// Fills at most 64 words with random bits that nobody can predict.
void drawRandom(std::span<std::uint32_t> words);

}  // namespace urOS::impl
