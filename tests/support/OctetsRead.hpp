#pragma once

#include <cstdint>
#include <fstream>
#include <string>

namespace TalTest {

/// Octets that this thread has read from files so far.
[[nodiscard]] inline std::uint64_t octetsReadHere() {
    std::ifstream status("/proc/thread-self/io");
    std::string name;
    std::uint64_t count = 0;
    while (status >> name >> count && name != "rchar:") {
    }
    return count;
}

}  // namespace TalTest
