#pragma once

#include <cstddef>

namespace TalTest {

/// Which allocations fail: one alone, or all from it on.
enum class Failing { once, fromThenOn };

/// Has an allocation of the program fail, those of the libraries it uses included: the `number`th
/// from construction on, counted from 1; none for 0. Ends with its life. A program that links this
/// has its allocation operators replaced.
class HeapFault {
public:
    HeapFault(std::size_t number, Failing failing);
    HeapFault(HeapFault const&) = delete;
    HeapFault& operator=(HeapFault const&) = delete;
    ~HeapFault();

    /// Whether an allocation has failed.
    [[nodiscard]] static bool wasHit();
};

/// How many pieces of memory are taken from the heap with `new` and not given back.
[[nodiscard]] std::size_t liveAllocations();

}  // namespace TalTest
