#include "bench/OwnMemory.hpp"

#include <malloc.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

namespace TalBench {

std::uint64_t residentOctets() {
    std::ifstream status("/proc/self/statm");
    std::uint64_t allPages = 0;
    std::uint64_t residentPages = 0;
    status >> allPages >> residentPages;
    return residentPages * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
}

std::uint64_t peakResidentOctets() {
    // Not what getrusage tells: that begins with what the program took that started this one.
    constexpr std::string_view peak = "VmHWM:";
    constexpr std::uint64_t octetsPerKibibyte = 1024;
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.starts_with(peak)) {
            return std::stoull(line.substr(peak.size())) * octetsPerKibibyte;
        }
    }
    throw std::runtime_error("/proc/self/status tells no VmHWM");
}

std::uint64_t liveHeapOctets() {
    auto const heap = ::mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

std::size_t openDescriptors() {
    std::filesystem::directory_iterator const all("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

}  // namespace TalBench
