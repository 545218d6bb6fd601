#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>

#include "bench/HostileInput.hpp"
#include "bench/MemoryProbe.hpp"
#include "bench/Race.hpp"
#include "bench/Subjects.hpp"
#include "bench/Table.hpp"
#include "support/TempFile.hpp"

namespace TalBench {

namespace {

/// An input in a directory of its own.
struct Written {
    explicit Written(HostileInput const& from) : input(from), path(directory.file("input")) {
        input.write(path);
        for (auto const& file : std::filesystem::directory_iterator(directory.path())) {
            octets += file.file_size();
        }
    }

    HostileInput input;
    TalTest::TempDir directory = {};
    std::string path;
    std::uint64_t octets = input.extraOctets;
};

Race::Body body(Written const& written) {
    return [&written](benchmark::State& state) {
        for (auto _ : state) {
            try {
                written.input.use(written.path);
            } catch (std::exception const& error) {
                state.SkipWithError(error.what());
                return;
            }
        }
    };
}

/// Of what the process grows by, what is due to the input.
double memoryPerOctet(Written const& written) {
    // Pages of the program and the library that are used for the first time, and the reader's
    // block.
    constexpr double everUsed = 512 * 1024;
    double const grown = peakOfHostile(written.input.name, written.path);
    return std::max(grown - everUsed, 0.0) / static_cast<double>(written.octets);
}

/// The median over the rounds of what an input's octet takes, against one of the ordinary capture.
bool measureTime(Written const& ordinary, Written const& written, int rounds) {
    HostileInput const& input = written.input;
    Race race("hostile");
    race.add("ordinary", ordinary.octets, body(ordinary), input.maxRounds);
    race.add(input.name, written.octets * input.repeats, body(written), input.maxRounds);
    auto taken = race.run(rounds);
    return printBound(fmt::format("{}: time", input.name), taken[input.name], taken["ordinary"],
                      input.limits ? std::optional(input.limits->time) : std::nullopt);
}

/// The same of memory, which is not measured where it has no limit: that can take minutes.
bool measurePeak(double ordinaryMemory, Written const& written) {
    if (!written.input.limits) {
        return true;
    }
    double const memory = memoryPerOctet(written);
    return printBound(fmt::format("{}: memory", written.input.name), memory / ordinaryMemory,
                      fmt::format("{:.2f} octets/octet", memory), written.input.limits->memory);
}

}  // namespace

void measureHostile(Settings const& settings) {
    Written const ordinary(ordinaryInput());
    double const ordinaryMemory = memoryPerOctet(ordinary);
    int exceeded = 0;
    for (HostileInput const& input : hostileInputs()) {
        if (settings.divisor > 1 && input.maxRounds == 1) {
            continue;  // so long that it is left out of a trial
        }
        Written const written(input);
        exceeded += measureTime(ordinary, written, settings.rounds) ? 0 : 1;
        exceeded += measurePeak(ordinaryMemory, written) ? 0 : 1;
    }
    if (exceeded != 0) {
        throw std::runtime_error(fmt::format("{} limits of hostile inputs are exceeded", exceeded));
    }
}

}  // namespace TalBench
