#pragma once

#include <cstddef>

// What a program takes from the heap with `new`, the libraries it uses included. A program that
// compiles WatchedHeap.cpp in has its allocation operators replaced.

namespace TalTest {

/// Which allocations fail: one alone, or all from it on.
enum class Failing { once, fromThenOn };

/// Has an allocation fail: the `number`th from construction on, counted from 1; none for 0. Ends
/// with its life. For one thread.
class HeapFault {
public:
    HeapFault(std::size_t number, Failing failing);
    HeapFault(HeapFault const&) = delete;
    HeapFault& operator=(HeapFault const&) = delete;
    ~HeapFault();

    /// Whether an allocation has failed.
    [[nodiscard]] static bool wasHit();
};

/// How often memory has been taken.
[[nodiscard]] std::size_t heapAllocations();

/// How many pieces of memory have been taken and not given back.
[[nodiscard]] std::size_t liveAllocations();

}  // namespace TalTest
