#pragma once

#include <cstddef>

namespace TalTest {

/// How often the program, the libraries it uses included, has taken memory from the heap with
/// `new`. A program that links this has its allocation operators replaced.
[[nodiscard]] std::size_t heapAllocations();

}  // namespace TalTest
