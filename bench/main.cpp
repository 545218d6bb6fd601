// Measures, and prints a table of ratios: tal-bench [--rounds N] [--quick] [WORD...]

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "bench/Machine.hpp"
#include "bench/Race.hpp"
#include "bench/Settings.hpp"
#include "bench/Subjects.hpp"
#include "bench/Table.hpp"
#include "bench/Workloads.hpp"

namespace {

using namespace TalBench;

/// What the command line asks for.
struct Request {
    Settings settings = {};
    std::vector<std::string_view> words = {};
    bool wantsHelp = false;
};

constexpr std::uint64_t quickDivisor = 10;

// In the order in which they are measured.
constexpr std::array<std::pair<std::string_view, void (*)(Settings const&)>, 14> subjects = {{
    {"index", measureIndexes},
    {"ahead", measureAhead},
    {"growth", measureGrowth},
    {"queries", measureQueries},
    {"decode", measureDecode},
    {"packets", measurePackets},
    {"files", measureFiles},
    {"traffic", measureTraffic},
    {"samples", measureSamples},
    {"check", measureChecks},
    {"scl", measureDescriptions},
    {"judge", measureJudge},
    {"memory", measureMemory},
    {"hostile", measureHostile},
}};

auto findSubject(std::string_view word) {
    return std::ranges::find(subjects, word, [](auto const& subject) { return subject.first; });
}

bool isKnown(std::string_view word) {
    return findSubject(word) != subjects.end() || findWorkload(word).has_value();
}

std::optional<int> parseRounds(std::string_view digits) {
    int rounds = 0;
    char const* const end = digits.data() + digits.size();
    auto const [stop, error] = std::from_chars(digits.data(), end, rounds);
    return error == std::errc{} && stop == end && rounds > 0 ? std::optional(rounds) : std::nullopt;
}

/// @return nullopt when the arguments make no sense
std::optional<Request> parse(std::vector<std::string_view> const& arguments) {
    Request request;
    for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
        if (*argument == "--help") {
            request.wantsHelp = true;
        } else if (*argument == "--quick") {
            request.settings.divisor = quickDivisor;
            request.settings.withPrograms = false;
            request.settings.countsRealTime = false;
            Race::countProcessorTime();
        } else if (*argument == "--rounds" && argument + 1 != arguments.end()) {
            auto const rounds = parseRounds(*++argument);
            if (!rounds) {
                return std::nullopt;
            }
            request.settings.rounds = *rounds;
        } else if (isKnown(*argument)) {
            request.words.push_back(*argument);
        } else {
            return std::nullopt;
        }
    }
    return request;
}

void printUsage(std::FILE* out) {
    fmt::print(
        out,
        "usage: bench [--rounds N] [--quick] [WORD...]\n"
        "  --rounds N  how often each is measured; 7 by default\n"
        "  --quick     a tenth of the frames, processor time, and no other programs: ratios that\n"
        "              can be trusted to some extent where the machine has other work\n"
        "Without a word everything is measured. A word is a subject,\n ");
    for (auto const& subject : subjects) {
        fmt::print(out, " {}", subject.first);
    }
    fmt::print(out, "\nor one workload that is to be indexed,\n ");
    for (auto const& workload : workloads()) {
        fmt::print(out, " {}", workload.name);
    }
    fmt::print(out, "\n");
}

void measure(Request const& request) {
    printMachine(request.settings);
    printTableHead();
    if (request.words.empty()) {
        for (auto const& subject : subjects) {
            subject.second(request.settings);
        }
    }
    for (std::string_view const word : request.words) {
        if (auto const* const subject = findSubject(word); subject != subjects.end()) {
            subject->second(request.settings);
        } else {
            measureIndex(word, request.settings);
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    auto const request = parse({argv + 1, argv + argc});
    if (!request) {
        printUsage(stderr);
        return 1;
    }
    if (request->wantsHelp) {
        printUsage(stdout);
        return 0;
    }
    try {
        measure(*request);
    } catch (std::exception const& error) {
        fmt::print(stderr, "bench: {}\n", error.what());
        return 1;
    }
    return 0;
}
