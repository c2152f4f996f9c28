// What a fuzzer does about a broken promise.
#pragma once

#include <cstdio>
#include <cstdlib>

/// Ends the program, which makes the engine keep the input.
inline void require(bool holds, char const* what) {
    if (holds) return;
    std::fprintf(stderr, "broken: %s\n", what);
    std::abort();
}
