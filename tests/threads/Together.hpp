#pragma once

#include <atomic>
#include <cstddef>
#include <exception>
#include <functional>
#include <thread>
#include <vector>

namespace TalTest {

/// Runs `action(0)` ... `action(count - 1)` at once, each on a thread of its own, and waits for
/// all. None begins before all are there.
/// @throws what an action throws
inline void together(std::size_t count, std::function<void(std::size_t)> const& action) {
    std::atomic<std::size_t> missing = count;
    std::vector<std::exception_ptr> failures(count);
    std::vector<std::thread> threads;
    threads.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        threads.emplace_back([&, i] {
            --missing;
            while (missing != 0) std::this_thread::yield();
            try {
                action(i);
            } catch (...) {
                failures[i] = std::current_exception();
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (std::exception_ptr const& failure : failures)
        if (failure) std::rethrow_exception(failure);
}

}  // namespace TalTest
