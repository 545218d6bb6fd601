// Pairs in recorded captures against what tshark tells of tags and trailers.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/redundancy/PairCopies.hpp>
#include <algorithm>
#include <cmath>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "index/Tshark.hpp"
#include "support/Captures.hpp"
#include "support/OwnCaptures.hpp"
#include "support/Process.hpp"

namespace TalTest::RecordedRedundancyTest {
namespace {

using namespace TalIec61850Analysis;

/// What tshark tells of pairs.
struct ToldPairs {
    std::uint64_t both = 0;
    std::uint64_t onlyA = 0;
    std::uint64_t onlyB = 0;
    std::uint64_t more = 0;
    std::vector<std::int64_t> differences;
};

std::int64_t nanosecondsIn(std::string const& time) {
    auto const point = time.find('.');
    std::string fraction = time.substr(point + 1);
    fraction.resize(9, '0');
    return std::stoll(time.substr(0, point)) * 1'000'000'000 + std::stoll(fraction);
}

ToldPairs toldBy(std::string const& tshark, std::string const& path) {
    std::vector<std::string> command = {tshark,
                                        "-n",
                                        "-r",
                                        path,
                                        "--enable-protocol",
                                        "prp",
                                        "-Y",
                                        "(goose || sv) && (hsr || prp.trailer.prp_lan)",
                                        "-T",
                                        "fields"};
    for (char const* field :
         {"eth.src", "hsr.sequence_nr", "hsr.laneid", "prp.trailer.prp_sequence_nr",
          "prp.trailer.prp_lan", "frame.time_epoch"}) {
        command.insert(command.end(), {"-e", field});
    }
    std::istringstream lines(run(command, {{"LC_ALL", "C"}}).out);
    std::map<std::pair<std::string, std::string>, std::map<char, std::vector<std::int64_t>>> frames;
    for (std::string line; std::getline(lines, line);) {
        std::vector<std::string> fields;
        std::istringstream parts(line);
        for (std::string part; std::getline(parts, part, '\t');) {
            fields.push_back(part);
        }
        bool const isHsr = !fields.at(1).empty();
        std::string const lane = fields.at(isHsr ? 2 : 4);
        char const way = lane == "1" || lane == "11" || lane == "0xb" ? 'B' : 'A';
        frames[{fields.at(0), fields.at(isHsr ? 1 : 3)}][way].push_back(
            nanosecondsIn(fields.at(5)));
    }
    ToldPairs told;
    for (auto& [key, ways] : frames) {
        std::vector<std::int64_t> const& a = ways['A'];
        std::vector<std::int64_t> const& b = ways['B'];
        if (a.size() > 1 || b.size() > 1) {
            ++told.more;
            continue;
        }
        told.onlyA += b.empty() ? 1U : 0U;
        told.onlyB += a.empty() ? 1U : 0U;
        if (!a.empty() && !b.empty()) {
            ++told.both;
            told.differences.push_back(b.front() - a.front());
        }
    }
    return told;
}

void expectAsTold(std::string const& path) {
    SCOPED_TRACE(path);
    ToldPairs told = toldBy(*tsharkProgram(), path);
    std::sort(told.differences.begin(), told.differences.end());
    auto const paired = pairCopies(indexCapture(path), {}, [](RedundancyFault const&) {});
    CopyCounts all;
    for (SourceRedundancy const& source : paired.sources) {
        all.both += source.counts.both;
        all.onlyA += source.counts.onlyA;
        all.onlyB += source.counts.onlyB;
        all.more += source.counts.more;
    }
    EXPECT_GT(all.frames(), 0U);
    EXPECT_EQ(all.both, told.both);
    EXPECT_EQ(all.onlyA, told.onlyA);
    EXPECT_EQ(all.onlyB, told.onlyB);
    EXPECT_EQ(all.more, told.more);
    if (paired.sources.size() == 1 && !told.differences.empty()) {
        auto const& differences = paired.sources.front().counts.differences;
        ASSERT_TRUE(differences);
        EXPECT_EQ(differences->min, told.differences.front());
        EXPECT_EQ(differences->p50, told.differences[(told.differences.size() - 1) / 2]);
        EXPECT_EQ(differences->max, told.differences.back());
    }
}

TEST(RecordedRedundancy, IsThatWhichTsharkTells) {
    if (!tsharkProgram()) GTEST_SKIP() << "no tshark on PATH";
    for (char const* const name :
         {"derived-goose-hsr-both-ring-directions.pcap", "derived-sv-prp-both-lans.pcap"}) {
        if (auto const path = capture(name)) {
            expectAsTold(*path);
        }
    }
}

TEST(RecordedRedundancy, OfOwnCapturesIsThatWhichTsharkTells) {
    if (!tsharkProgram()) GTEST_SKIP() << "no tshark on PATH";
    for (char const* const name : {"own-goose-prp-both-lans.pcap", "own-sv-prp-both-lans.pcap",
                                   "own-goose-hsr-both-ways.pcap", "own-sv-hsr-both-ways.pcap"}) {
        expectAsTold(ownCapture(name));
    }
}

TEST(RecordedRedundancy, IsNoneWithoutTagsOfGooseOrSv) {
    for (char const* const name :
         {"negative-hsr-ptp-supervision.pcap", "negative-prp-ptp-supervision.pcap",
          "goose-synthetic-vlan-signed-trailer.pcap"}) {
        if (auto const path = capture(name)) {
            auto const paired = pairCopies(indexCapture(*path), {}, [](RedundancyFault const&) {
                ADD_FAILURE() << "no trailer is there";
            });
            EXPECT_TRUE(paired.streams.empty()) << name;
        }
    }
}

}  // namespace
}  // namespace TalTest::RecordedRedundancyTest
