// Makes random calls on a manager and on a plain model of it, with an audit after each call.
#include <cstdlib>
#include <random>

#include "krcache/tests/CacheModel.h"

namespace urKRCache::test {
namespace {

// NX_CACHE_STEPS sets the number of steps; NX_CACHE_SEED repeats a run.
unsigned fromEnvironment(char const* name, unsigned otherwise) {
    char const* const text = std::getenv(name);
    return text ? static_cast<unsigned>(std::strtoul(text, nullptr, 10)) : otherwise;
}

TEST(CacheModel, AgreesWithTheManagerAfterEveryStep) {
    unsigned const seed = fromEnvironment("NX_CACHE_SEED", 1), steps = fromEnvironment("NX_CACHE_STEPS", 40'000);
    constexpr unsigned stepsPerPlay = 2000;
    for (unsigned play = 0; play * stepsPerPlay < steps; ++play) {
        std::mt19937 random(seed + play);
        CacheModel model([&] { return static_cast<unsigned>(random()); });
        for (unsigned step = 0; step < stepsPerPlay; ++step) {
            ASSERT_EQ(model.step(), "") << "seed " << seed + play << ", step " << step;
        }
    }
}

}  // namespace
}  // namespace urKRCache::test
