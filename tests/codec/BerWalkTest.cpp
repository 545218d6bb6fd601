// The walk that GOOSE and SV share, below their meaning.

#include <gtest/gtest.h>

#include <TalIec61850Parser/codec/BerWalk.hpp>
#include <cstdint>
#include <string>
#include <vector>

#include "support/Ber.hpp"
#include "support/Bytes.hpp"

namespace TalTest::BerWalkTest {
namespace {

using TalIec61850Parser::detail::BerElement;
using TalIec61850Parser::detail::walkElements;
using TalIec61850Parser::detail::WalkLevel;
using TalIec61850Parser::detail::WalkStep;

/// Every element shown, as depth:tag@position, descending into all that is constructed.
std::vector<std::string> visited(Bytes const& data) {
    std::vector<std::string> seen;
    EXPECT_TRUE(walkElements(
        data, {}, [&](BerElement const& element, std::size_t position, WalkLevel const& level) {
            seen.push_back(std::to_string(level.depth) + ":" + std::to_string(element.tag) + "@" +
                           std::to_string(position));
            return (element.tag & 0x20U) != 0 ? WalkStep::descend : WalkStep::next;
        }));
    return seen;
}

using Visits = std::vector<std::string>;

TEST(BerWalk, GoesDepthFirstAndComesBackToEveryLevel) {
    Bytes const data =
        concat({ber(0x30, concat({ber(0x30, ber(0x01, "a")), ber(0x02, "bc")})), ber(0x03, "d")});
    EXPECT_EQ(visited(data), (Visits{"1:48@0", "2:48@2", "3:1@4", "2:2@7", "1:3@11"}));
}

TEST(BerWalk, EndsADamagedLevelAndGoesOnAboveIt) {
    Bytes const damaged = {0x01, 0x7F};
    Bytes const data = concat({ber(0x30, damaged), ber(0x03, "d")});
    EXPECT_EQ(visited(data), (Visits{"1:48@0", "1:3@4"}));
}

TEST(BerWalk, LooksAtFiftyElementsOfEachLevel) {
    Bytes flat;
    for (int i = 0; i < 60; ++i) {
        flat = concat({flat, ber(0x04, "")});
    }
    EXPECT_EQ(visited(flat).size(), 50U);
    EXPECT_EQ(visited(concat({ber(0x30, flat), ber(0x30, flat)})).size(), 2U + 2U * 50U);
}

TEST(BerWalk, DescendsIntoTheFiftiethElementAndNotIntoTheNext) {
    Bytes data;
    for (int i = 0; i < 51; ++i) {
        data = concat({data, ber(0x30, ber(0x04, ""))});
    }
    EXPECT_EQ(visited(data).size(), 100U);
}

TEST(BerWalk, StopsEverywhereOnceTheHandlerRejects) {
    Bytes const data = concat({ber(0x30, concat({ber(0x01, "a"), ber(0x02, "b")})), ber(0x03, "")});
    int shown = 0;
    bool const accepted =
        walkElements(data, {}, [&](BerElement const& element, std::size_t, WalkLevel const&) {
            ++shown;
            return element.tag == 0x01 ? WalkStep::reject : WalkStep::descend;
        });
    EXPECT_FALSE(accepted);
    EXPECT_EQ(shown, 2);
}

TEST(BerWalk, HandsAFlagDownToTheLevelsBelowAndNotUp) {
    Bytes const data =
        concat({ber(0x30, concat({ber(0x31, ber(0x04, "x")), ber(0x04, "y")})), ber(0x04, "z")});
    std::vector<bool> flags;
    EXPECT_TRUE(
        walkElements(data, {}, [&](BerElement const& element, std::size_t, WalkLevel& level) {
            if (element.tag == 0x31) {
                level.inAsdu = true;
            }
            if (element.tag == 0x04) {
                flags.push_back(level.inAsdu);
            }
            return (element.tag & 0x20U) != 0 ? WalkStep::descend : WalkStep::next;
        }));
    EXPECT_EQ(flags, (std::vector<bool>{true, true, false}));
}

TEST(BerWalk, KeepsManyUnfinishedLevels) {
    constexpr std::size_t levels = 5000;
    Bytes data = ber(0x04, "");
    for (std::size_t i = 0; i < levels; ++i) {
        data = concat({ber(0x30, data), ber(0x05, "")});
    }
    auto const seen = visited(data);
    EXPECT_EQ(seen.size(), 2 * levels + 1);
    EXPECT_EQ(seen.back().substr(0, 4), "1:5@");
    EXPECT_EQ(seen[levels].substr(0, 7), "5001:4@");
}

}  // namespace
}  // namespace TalTest::BerWalkTest
