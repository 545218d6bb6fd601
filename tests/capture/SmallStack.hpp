#pragma once

#include <pthread.h>

#include <functional>
#include <stdexcept>

namespace TalTest {

/// Runs `action` on a thread with a stack of 64 KiB, and waits for its end.
/// @throws std::runtime_error when there is no such thread to be had
inline void runOnSmallStack(std::function<void()> action) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, 64 * 1024);
    pthread_t thread;
    auto const run = [](void* argument) -> void* {
        (*static_cast<std::function<void()>*>(argument))();
        return nullptr;
    };
    int const error = pthread_create(&thread, &attributes, run, &action);
    pthread_attr_destroy(&attributes);
    if (error != 0) throw std::runtime_error("pthread_create");
    pthread_join(thread, nullptr);
}

}  // namespace TalTest
