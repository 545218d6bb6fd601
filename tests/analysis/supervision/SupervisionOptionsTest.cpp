// What supervision looks at, and on how many threads: what is found does not depend on it.

#include <gtest/gtest.h>

#include <optional>
#include <system_error>

#include "analysis/supervision/FoundIn.hpp"
#include "support/TempFile.hpp"

namespace TalTest::SupervisionOptionsTest {
namespace {

using namespace TalIec61850Analysis;

constexpr std::int64_t kMs = 1'000'000;

/// Several streams, each with faults of its own, and some of all.
FaultyStation wideStation() {
    FaultyStation station;
    for (std::size_t unit = 0; unit < 5; ++unit) {
        std::string const number = std::to_string(unit + 1);
        std::size_t const stream = station.add({.svID = "MU0" + number,
                                                .source = "02:00:00:00:00:0" + number,
                                                .start = static_cast<std::int64_t>(unit) * 40'000});
        station.drop(stream, 1000 + 100 * unit, unit + 1).repeat(stream, 2000, 20'000);
    }
    for (std::size_t relay = 0; relay < 3; ++relay) {
        std::string const number = std::to_string(relay + 1);
        std::size_t const stream = station.add({.gocbRef = "R" + number + "/LLN0$GO$gcb",
                                                .source = "02:00:00:00:00:1" + number,
                                                .firstMessage = 10,
                                                .states = {5, 6},
                                                .start = static_cast<std::int64_t>(relay) * kMs});
        station.drop(stream, 8);
    }
    station.dropBetween(700 * kMs, 720 * kMs);
    return station;
}

TEST(SupervisionJobs, FindTheSameHoweverMany) {
    auto const captures = wideStation().captures();
    SupervisionOptions one{.withSamples = true};
    std::vector<Finding> expected;
    auto const figures = summariesIn(captures, one, &expected);
    EXPECT_GE(expected.size(), 15U);
    EXPECT_EQ(figures.size(), 8U);
    for (std::size_t const jobs : {2U, 3U, 16U, 0U}) {
        SupervisionOptions const several{.withSamples = true, .jobs = jobs};
        std::vector<Finding> found;
        EXPECT_EQ(summariesIn(captures, several, &found), figures) << jobs;
        EXPECT_EQ(found, expected) << jobs;
        EXPECT_EQ(findingsIn(captures, several), expected) << jobs;
    }
}

TEST(WatchedStreams, AreToldAsIfAllWere) {
    auto station = wideStation();
    auto const captures = station.captures();
    auto const all = findingsIn(captures);
    SupervisionOptions const options{
        .watches = [](StreamKey const& key) { return key.name == "MU02"; }};
    std::vector<Finding> expected;
    for (Finding const& finding : all) {
        bool const isOf =
            finding.stream && finding.place &&
            station.frameAt(finding.place->file, finding.place->fileOffset)->stream == 1;
        if (isOf) {
            expected.push_back(finding);
        }
    }
    ASSERT_GE(expected.size(), 3U);
    std::vector<Finding> found = findingsIn(captures, options);
    std::erase_if(found, [](Finding const& finding) { return !finding.stream; });
    EXPECT_EQ(found, expected);
    EXPECT_EQ(summariesIn(captures, options).size(), 1U);
}

TEST(WatchedStreams, MayBeNone) {
    auto const captures = wideStation().captures();
    SupervisionOptions const options{.watches = [](StreamKey const&) { return false; }};
    EXPECT_EQ(findingsIn(captures, options).size(), 0U);
    EXPECT_EQ(summariesIn(captures, options).size(), 0U);
}

TEST(Supervision, TellsThatACaptureCannotBeReadAgain) {
    auto station = wideStation();
    std::optional<TempFile> file(station.captures().front());
    TrafficIndex const index = TalIec61850Analysis::indexCapture(file->path());
    file.reset();
    for (std::size_t const jobs : {1U, 4U}) {
        SupervisionOptions const options{.jobs = jobs};
        EXPECT_THROW(superviseTraffic(index, options, [](Finding const&) {}), std::system_error);
    }
}

}  // namespace
}  // namespace TalTest::SupervisionOptionsTest
