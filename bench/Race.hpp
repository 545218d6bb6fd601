#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace TalBench {

/// What one contender took, in nanoseconds per unit of its work, round by round.
using Rounds = std::vector<double>;

/// What each of the given rounds of `one` is of the same round of `other`, as far as both have any.
[[nodiscard]] Rounds ratios(Rounds const& one, Rounds const& other);

/// The middle one, or the mean of the two in the middle.
/// @param rounds  not empty
[[nodiscard]] double median(Rounds rounds);

/// Contenders that are measured in turns: the first round of each, then the second of each, and so
/// on. What disturbs the machine for a while so disturbs all of them, and their ratios little.
///
/// Each is a benchmark of Google Benchmark's, in real time.
class Race {
public:
    using Body = std::function<void(benchmark::State&)>;

    /// @param name  shown while it runs; letters, digits and hyphens
    explicit Race(std::string name);
    Race(Race const&) = delete;
    Race& operator=(Race const&) = delete;
    /// Forgets the benchmarks, so that there can be one race at a time only.
    ~Race();

    /// Adds one that takes long enough to be measured in a single iteration.
    /// @param contender  its name, of letters, digits and hyphens
    /// @param units      of work in an iteration, such as frames
    /// @param maxRounds  after which it is left out
    void add(std::string const& contender, std::uint64_t units, Body body,
             int maxRounds = std::numeric_limits<int>::max());

    /// Adds one of nanoseconds or microseconds, repeated in each round until it can be measured.
    void addShort(std::string const& contender, Body body);

    /// From now on all races measure the processor's time of this thread, which other work on the
    /// machine changes little, instead of the time that passes.
    static void countProcessorTime();

    /// Runs all rounds.
    /// @return by contender
    /// @throws std::runtime_error when a contender says that it failed
    [[nodiscard]] std::map<std::string, Rounds, std::less<>> run(int rounds);

private:
    struct Contender {
        std::string name;
        std::uint64_t units;
        int maxRounds;
    };

    [[nodiscard]] std::string fullName(std::string_view contender) const;

    std::string name_;
    std::vector<Contender> contenders_;
};

}  // namespace TalBench
