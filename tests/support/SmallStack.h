// Small stack: runs a function in a thread whose stack has no room for recursion by depth.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <pthread.h>

/// 256 KiB: ten thousand calls within each other would have 26 bytes each. The sanitizers widen every frame and get
/// four times as much.
#if defined(__SANITIZE_ADDRESS__)
#define SSTR_WIDE_FRAMES
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(memory_sanitizer)
#define SSTR_WIDE_FRAMES
#endif
#endif
#ifdef SSTR_WIDE_FRAMES
constexpr std::size_t kSmallStack = std::size_t(1024) * 1024;
#else
constexpr std::size_t kSmallStack = std::size_t(256) * 1024;
#endif

/// Ends when the work has ended. A fatal failure in it ends the work alone: the test goes on behind it.
inline void runOnSmallStack(const std::function<void()>& work)
{
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, kSmallStack), 0);
    pthread_t thread;
    const auto start = [](void* function) -> void* {
        (*static_cast<const std::function<void()>*>(function))();
        return nullptr;
    };
    const int problem = pthread_create(&thread, &attributes, start, const_cast<void*>(static_cast<const void*>(&work)));
    pthread_attr_destroy(&attributes);
    ASSERT_EQ(problem, 0);
    ASSERT_EQ(pthread_join(thread, nullptr), 0);
}
