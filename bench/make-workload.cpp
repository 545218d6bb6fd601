// Writes the capture of one workload: make-workload NAME FILE [FRAMES]

#include <fmt/format.h>

#include <charconv>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <optional>
#include <string_view>

#include "bench/Workloads.hpp"

namespace {

std::optional<std::uint64_t> parseCount(std::string_view digits) {
    std::uint64_t count = 0;
    char const* const end = digits.data() + digits.size();
    auto const [stop, error] = std::from_chars(digits.data(), end, count);
    return error == std::errc{} && stop == end ? std::optional(count) : std::nullopt;
}

int usage() {
    fmt::print(stderr, "usage: make-workload NAME FILE [FRAMES]\nNAME is one of");
    for (auto const& workload : TalBench::workloads()) {
        fmt::print(stderr, " {}", workload.name);
    }
    fmt::print(stderr, "\n");
    return 1;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3 || argc > 4) {
        return usage();
    }
    auto workload = TalBench::findWorkload(argv[1]);
    auto const frames = argc == 4 ? parseCount(argv[3]) : std::optional<std::uint64_t>(0);
    if (!workload || !frames) {
        return usage();
    }
    workload->frames = argc == 4 ? *frames : workload->frames;
    try {
        auto const wanted = TalBench::writeCapture(*workload, argv[2]);
        fmt::print("{}: {} frames, {} to be indexed, {} octets\n", argv[2], workload->frames,
                   wanted, std::filesystem::file_size(argv[2]));
    } catch (std::exception const& error) {
        fmt::print(stderr, "make-workload: {}\n", error.what());
        return 1;
    }
    return 0;
}
