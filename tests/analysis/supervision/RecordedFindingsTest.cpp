// What is found in recorded captures is what the table of docs/supervision.md says, which was
// compared with tshark.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/supervision/SuperviseTraffic.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "analysis/supervision/FoundIn.hpp"
#include "support/Captures.hpp"

namespace TalTest::RecordedFindingsTest {
namespace {

using namespace TalIec61850Analysis;

constexpr std::string_view kHeading = "## What the recorded captures hold";
/// Capture, stream, finding, findings, met, and the words.
constexpr std::size_t kColumns = 6;

std::string trimmed(std::string_view text) {
    auto const first = text.find_first_not_of(' ');
    auto const last = text.find_last_not_of(' ');
    return first == std::string_view::npos ? std::string()
                                           : std::string(text.substr(first, last - first + 1));
}

std::vector<std::string> partsOf(std::string const& text, char separator) {
    std::vector<std::string> parts;
    std::size_t begin = 0;
    for (std::size_t end = 0; end != std::string::npos; begin = end + 1) {
        end = text.find(separator, begin);
        parts.push_back(trimmed(std::string_view(text).substr(begin, end - begin)));
    }
    return parts;
}

std::string withoutQuotes(std::string text) {
    std::erase(text, '`');
    return text;
}

/// The numbers of a cell, one for each stream: "3, 4", or "3 each".
std::vector<std::string> numbersOf(std::string const& cell, std::size_t streams) {
    constexpr std::string_view each = " each";
    auto const numbers =
        cell.ends_with(each)
            ? std::vector<std::string>(streams, cell.substr(0, cell.size() - each.size()))
            : partsOf(cell, ',');
    if (numbers.size() != streams) {
        throw std::runtime_error("not a number for each stream: " + cell);
    }
    return numbers;
}

/// A line for each stream and kind: "timeAhead of gcb1: 1, met 8".
std::string findingsLine(std::string const& kind, std::string const& stream,
                         std::string const& findings, std::string const& met) {
    return kind + " of " + stream + ": " + findings + ", met " + met;
}

/// The lines of each capture, sorted.
using FindingsByCapture = std::map<std::string, std::vector<std::string>>;

FindingsByCapture toldFindings() {
    std::ifstream document(std::string(TAL_DOCS) + "/supervision.md");
    FindingsByCapture told;
    bool isInSection = false;
    for (std::string line; std::getline(document, line);) {
        if (line.starts_with("## ")) {
            isInSection = line == kHeading;
        }
        if (!isInSection || !line.starts_with("| `")) {
            continue;
        }
        // Before the first | and after the last one, there is nothing.
        auto const cells = partsOf(line, '|');
        if (cells.size() != kColumns + 2) {
            throw std::runtime_error("not a row of the table: " + line);
        }
        std::vector<std::string>& lines = told[withoutQuotes(cells[1])];
        if (cells[3] == "none") {
            continue;
        }
        auto const streams = partsOf(withoutQuotes(cells[2]), ',');
        auto const findings = numbersOf(cells[4], streams.size());
        auto const met = numbersOf(cells[5], streams.size());
        for (std::size_t i = 0; i < streams.size(); ++i) {
            lines.push_back(findingsLine(withoutQuotes(cells[3]), streams[i], findings[i], met[i]));
        }
    }
    for (auto& [capture, lines] : told) {
        std::sort(lines.begin(), lines.end());
    }
    return told;
}

std::vector<std::string> findingsOf(std::string const& path) {
    struct Counts {
        std::uint64_t findings = 0;
        std::uint64_t met = 0;
    };
    TrafficIndex const index = indexCapture(path);
    std::map<std::pair<std::string, std::string>, Counts> counts;
    SupervisionOptions options;
    options.withSamples = true;
    superviseTraffic(index, options, [&](Finding const& finding) {
        std::string const stream =
            finding.stream ? index.streams()[*finding.stream].key.name : std::string("-");
        Counts& count = counts[{kindName(finding.kind), stream}];
        ++count.findings;
        count.met += finding.count;
    });
    std::vector<std::string> lines;
    for (auto const& [of, count] : counts) {
        lines.push_back(findingsLine(of.first, of.second, std::to_string(count.findings),
                                     std::to_string(count.met)));
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

TEST(RecordedFindings, AreThoseOfTheTable) {
    auto const told = toldFindings();
    ASSERT_FALSE(told.empty());
    std::size_t compared = 0;
    for (auto const& [name, lines] : told) {
        for (std::string const& path : recorded({name})) {
            EXPECT_EQ(findingsOf(path), lines) << name;
            ++compared;
        }
    }
    if (compared == 0) GTEST_SKIP() << "no recorded captures";
}

TEST(RecordedFindings, HaveARowForEachCapture) {
    auto const told = toldFindings();
    for (std::string const& path : recordedCapturePaths()) {
        EXPECT_TRUE(told.contains(std::filesystem::path(path).filename().string())) << path;
    }
}

}  // namespace
}  // namespace TalTest::RecordedFindingsTest
