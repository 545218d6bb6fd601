#include "bench/Race.hpp"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <stdexcept>
#include <utility>

namespace TalBench {

namespace {

constexpr double secondsForShort = 0.05;
constexpr double nanosecondsPerSecond = 1e9;

bool countsProcessorTime = false;

/// Keeps what one benchmark took.
class OneTime : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(Context const& /*context*/) override { return true; }

    void ReportRuns(std::vector<Run> const& runs) override {
        for (Run const& run : runs) {
            if (run.error_occurred) {
                throw std::runtime_error(run.benchmark_name() + ": " + run.error_message);
            }
            double const all =
                countsProcessorTime ? run.cpu_accumulated_time : run.real_accumulated_time;
            seconds_ = all / static_cast<double>(run.iterations);
        }
    }

    [[nodiscard]] double nanoseconds() const { return seconds_ * nanosecondsPerSecond; }

private:
    double seconds_ = 0;
};

double measure(std::string const& fullName) {
    OneTime reporter;
    if (benchmark::RunSpecifiedBenchmarks(&reporter, "^" + fullName + "/") != 1) {
        throw std::runtime_error("no benchmark, or several, of the name " + fullName);
    }
    return reporter.nanoseconds();
}

/// Says on a terminal what is being done.
void show(std::string const& text) {
    if (::isatty(STDERR_FILENO) != 0) {
        fmt::print(stderr, "\r\033[K{}", text);
        std::fflush(stderr);
    }
}

}  // namespace

Rounds ratios(Rounds const& one, Rounds const& other) {
    Rounds out;
    for (std::size_t round = 0; round < std::min(one.size(), other.size()); ++round) {
        out.push_back(one[round] / other[round]);
    }
    return out;
}

double median(Rounds rounds) {
    std::ranges::sort(rounds);
    return (rounds[(rounds.size() - 1) / 2] + rounds[rounds.size() / 2]) / 2;
}

Race::Race(std::string name) : name_(std::move(name)) {}

Race::~Race() { benchmark::ClearRegisteredBenchmarks(); }

void Race::add(std::string const& contender, std::uint64_t units, Body body, int maxRounds) {
    benchmark::RegisterBenchmark(fullName(contender).c_str(), std::move(body))
        ->Iterations(1)
        ->UseRealTime();
    contenders_.push_back({contender, units, maxRounds});
}

void Race::addShort(std::string const& contender, Body body) {
    benchmark::RegisterBenchmark(fullName(contender).c_str(), std::move(body))
        ->MinTime(secondsForShort)
        ->UseRealTime();
    contenders_.push_back({contender, 1, std::numeric_limits<int>::max()});
}

void Race::countProcessorTime() { countsProcessorTime = true; }

std::map<std::string, Rounds, std::less<>> Race::run(int rounds) {
    std::map<std::string, Rounds, std::less<>> taken;
    for (int round = 0; round < rounds; ++round) {
        for (auto const& [contender, units, maxRounds] : contenders_) {
            if (round < maxRounds) {
                show(fmt::format("{}, round {} of {}: {}", name_, round + 1, rounds, contender));
                double const nanoseconds = measure(fullName(contender));
                taken[contender].push_back(nanoseconds / static_cast<double>(units));
            }
        }
    }
    show("");
    return taken;
}

std::string Race::fullName(std::string_view contender) const {
    return fmt::format("{}/{}", name_, contender);
}

}  // namespace TalBench
