// Checks the expectations of a fuzzer.
#pragma once

#include <cstdio>
#include <cstdlib>

/// Ends the program if the expectation fails, so that the engine keeps the input.
inline void require(bool holds, char const* what) {
    if (holds) return;
    std::fprintf(stderr, "broken: %s\n", what);
    std::abort();
}
