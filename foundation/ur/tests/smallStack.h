// Running work on a stack as small as the smallest that the library must do with.
#pragma once

#include <gtest/gtest.h>
#include <pthread.h>

#include <cstddef>
#include <functional>

namespace test {

/// What the library must do with; walks that keep their own stacks do with it under the sanitizers, too.
inline constexpr std::size_t leastStack = 512 * 1024;

/// More than such a stack has room for, at any size of a frame.
inline constexpr int manyLevels = 100000;

// Under AddressSanitizer every frame is several times as large.
#if defined(__SANITIZE_ADDRESS__)
inline constexpr std::size_t smallStack = 2048 * 1024;
#else
inline constexpr std::size_t smallStack = leastStack;
#endif

// ThreadSanitizer keeps its state of a thread, 785 KiB with g++ 12, on that thread's stack.
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
