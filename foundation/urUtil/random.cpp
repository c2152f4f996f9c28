// The process's random generator.
#include "foundation/urUtil/random.h"

#include <atomic>
#include <cmath>
#include <random>

namespace urUtil {

namespace {

std::uint64_t unpredictable() {
    std::random_device device;
    return std::uint64_t{device()} << 32 | device();
}

std::atomic<std::uint64_t>& state() {
    static std::atomic<std::uint64_t> state{unpredictable()};
    return state;
}

/// SplitMix64 (Steele, Lea, Flood 2014): its state only advances by a constant, so that threads can share it through
/// one atomic addition.
std::uint64_t nextBits() {
    constexpr std::uint64_t step = 0x9E3779B97F4A7C15U;
    std::uint64_t bits = state().fetch_add(step, std::memory_order_relaxed) + step;
    bits = (bits ^ bits >> 30) * 0xBF58476D1CE4E5B9U;
    bits = (bits ^ bits >> 27) * 0x94D049BB133111EBU;
    return bits ^ bits >> 31;
}

}  // namespace

double random() { return static_cast<double>(nextBits() >> 11) * 0x1p-53; }

double random(double x) { return random(0, x); }

double random(double a, double b) {
    double const value = std::lerp(a, b, random());
    return value == b ? std::nextafter(b, a) : value;
}

void seedRandom(std::uint64_t seed) { state() = seed; }

}  // namespace urUtil
