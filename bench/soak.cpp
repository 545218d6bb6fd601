// Indexes, asks, decodes and clears, over and over, and fails when memory grows or an answer is
// wrong: soak [--seconds N] [--frames N] [--rounds N]

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "bench/OwnMemory.hpp"
#include "bench/SoakRounds.hpp"

namespace {

using namespace TalBench;

/// All are to be reached, after the warm-up.
struct Goal {
    std::uint64_t seconds = 0;
    std::uint64_t frames = 0;
    std::uint64_t rounds = 1;
};

/// The most that was seen of each.
struct Levels {
    /// With a full store, and with an empty one.
    std::uint64_t fullResident = 0;
    std::uint64_t emptyResident = 0;
    std::uint64_t emptyHeap = 0;
    std::size_t descriptors = 0;
};

constexpr int warmUpRounds = 20;
constexpr double mebibyte = 1 << 20;

// What a level may exceed that of the warm-up by: the heap's pieces lie a little otherwise in each
// round, for what is asked is drawn by lot; and the heap counts as live what a thread keeps at hand
// for its next allocations, up to 64 sizes of seven pieces below 1 KiB.
constexpr std::uint64_t residentAllowance = std::uint64_t{4} << 20U;
constexpr std::uint64_t heapAllowance = std::uint64_t{256} << 10U;

std::optional<std::uint64_t> parseNumber(std::string_view digits) {
    std::uint64_t number = 0;
    char const* const end = digits.data() + digits.size();
    auto const [stop, error] = std::from_chars(digits.data(), end, number);
    return error == std::errc{} && stop == end ? std::optional(number) : std::nullopt;
}

std::optional<Goal> parse(std::vector<std::string_view> const& arguments) {
    Goal goal;
    for (std::size_t i = 0; i < arguments.size(); i += 2) {
        auto const number = i + 1 < arguments.size() ? parseNumber(arguments[i + 1]) : std::nullopt;
        std::uint64_t* const field = arguments[i] == "--seconds"  ? &goal.seconds
                                     : arguments[i] == "--frames" ? &goal.frames
                                     : arguments[i] == "--rounds" ? &goal.rounds
                                                                  : nullptr;
        if (field == nullptr || !number) {
            return std::nullopt;
        }
        *field = *number;
    }
    return goal;
}

/// Raises the levels to those of one round more.
void runRound(SoakRounds& rounds, Levels& levels) {
    rounds.run([&] { levels.fullResident = std::max(levels.fullResident, residentOctets()); });
    levels.emptyResident = std::max(levels.emptyResident, residentOctets());
    levels.emptyHeap = std::max(levels.emptyHeap, liveHeapOctets());
    levels.descriptors = std::max(levels.descriptors, openDescriptors());
}

void requireNoMore(std::uint64_t now, std::uint64_t before, std::uint64_t allowance,
                   std::string_view what) {
    if (now > before + allowance) {
        throw std::runtime_error(
            fmt::format("{} grew to {} from {} after the warm-up; {} more are allowed", what, now,
                        before, allowance));
    }
}

void requireFlat(Levels const& now, Levels const& warm) {
    requireNoMore(now.fullResident, warm.fullResident, residentAllowance,
                  "resident memory with a full store");
    requireNoMore(now.emptyResident, warm.emptyResident, residentAllowance,
                  "resident memory with an empty store");
    requireNoMore(now.emptyHeap, warm.emptyHeap, heapAllowance, "the heap with an empty store");
    requireNoMore(now.descriptors, warm.descriptors, 0, "the number of open files");
}

void print(std::string_view when, double seconds, SoakCounts const& counts, Levels const& levels) {
    fmt::print(
        "{}: {:.0f} s, {} rounds, {} frames, {} queries, {} decoded; at most resident "
        "{:.1f} MiB full, {:.1f} MiB empty, heap {} octets empty, {} open files\n",
        when, seconds, counts.rounds, counts.frames, counts.queries, counts.decoded,
        static_cast<double>(levels.fullResident) / mebibyte,
        static_cast<double>(levels.emptyResident) / mebibyte, levels.emptyHeap, levels.descriptors);
    std::fflush(stdout);
}

void soak(Goal const& goal) {
    constexpr double secondsPerLine = 60;
    auto const begin = std::chrono::steady_clock::now();
    auto const seconds = [&] {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    };
    SoakRounds rounds;
    Levels levels;
    for (int round = 0; round < warmUpRounds; ++round) {
        runRound(rounds, levels);
    }
    Levels const warm = levels;
    print("warm", seconds(), rounds.counts(), levels);
    double nextLine = seconds() + secondsPerLine;
    while (seconds() < static_cast<double>(goal.seconds) || rounds.counts().frames < goal.frames ||
           rounds.counts().rounds < warmUpRounds + goal.rounds) {
        runRound(rounds, levels);
        requireFlat(levels, warm);
        if (seconds() > nextLine) {
            nextLine += secondsPerLine;
            print("still flat", seconds(), rounds.counts(), levels);
        }
    }
    print("flat to the end", seconds(), rounds.counts(), levels);
}

}  // namespace

int main(int argc, char** argv) {
    auto const goal = parse({argv + 1, argv + argc});
    if (!goal) {
        fmt::print(stderr,
                   "usage: soak [--seconds N] [--frames N] [--rounds N]\n"
                   "  runs until each of them is reached\n");
        return 1;
    }
    try {
        soak(*goal);
    } catch (std::exception const& error) {
        std::fflush(stdout);
        fmt::print(stderr, "soak: {}\n", error.what());
        return 1;
    }
    return 0;
}
