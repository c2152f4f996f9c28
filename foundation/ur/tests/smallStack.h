// Runs work on the smallest stack that the library supports.
#pragma once

#include <gtest/gtest.h>
#include <pthread.h>

#include <cstddef>
#include <functional>

namespace test {

/// The smallest supported stack; walks that keep their own stacks fit into it even under the sanitizers.
inline constexpr std::size_t leastStack = 512 * 1024;

/// Deeper than such a stack allows, at any frame size.
inline constexpr int manyLevels = 100000;

// Under AddressSanitizer every frame is several times as large.
#if defined(__SANITIZE_ADDRESS__)
inline constexpr std::size_t smallStack = 2048 * 1024;
#else
inline constexpr std::size_t smallStack = leastStack;
#endif

// ThreadSanitizer keeps its per-thread state, 785 KiB with g++ 12, on that thread's stack.
#if defined(__SANITIZE_THREAD__)
inline constexpr std::size_t takenStack = 800 * 1024;
#else
inline constexpr std::size_t takenStack = 0;
#endif

inline void onSmallStack(std::function<void()> work, std::size_t stack = smallStack) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, stack + takenStack);
    pthread_t thread;
    auto const run = [](void* self) -> void* {
        (*static_cast<std::function<void()>*>(self))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, run, &work), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

}  // namespace test
