// What the walk over a goosePdu does with each element, and so on what its conclusions depend.

#include <gtest/gtest.h>

#include <TalIec61850Parser/codec/BerWalk.hpp>
#include <TalIec61850Parser/goose/GooseFrame.hpp>
#include <cstdint>
#include <set>
#include <string>

#include "codec/StepTaken.hpp"
#include "support/Bytes.hpp"

namespace TalTest::GooseStepsTest {
namespace {

using namespace TalIec61850Parser;
using namespace TalIec61850Parser::detail;

std::string stepAt(std::int64_t depth, std::uint8_t tag) {
    return stepTaken(tag, [&](Bytes const& data, WalkTrace& trace) {
        Goose goose;
        Package package;
        GooseFilters const none;
        EXPECT_TRUE(
            walkGoosePdu(data, {.depth = depth},
                         {.record = goose, .filters = none, .package = package, .trace = &trace}));
    });
}

/// Of the tags whose meaning does not depend on the depth.
std::string stepOfStructure(unsigned tag) {
    bool const isStructure = tag == 0x61 || tag == 0x30 || (tag >= 0xA0 && tag <= 0xBF);
    return isStructure ? "descend" : "skip";
}

bool isContextPrimitive(unsigned tag) { return tag >= 0x80 && tag <= 0x9F; }

TEST(GooseSteps, OutsideOfThePduDependOnStructuresAlone) {
    for (unsigned tag = 0; tag < 256; ++tag)
        EXPECT_EQ(stepAt(1, static_cast<std::uint8_t>(tag)), stepOfStructure(tag)) << tag;
}

TEST(GooseSteps, AmongFieldsDependOnThoseThatIdentify) {
    // gocbRef, datSet, goID, simulation, confRev.
    std::set<unsigned> const identity = {0x80, 0x82, 0x83, 0x87, 0x88};
    for (unsigned tag = 0; tag < 256; ++tag) {
        std::string const expected = identity.contains(tag) ? "next"
                                     : tag == 0x8B          ? "descend"
                                                            : stepOfStructure(tag);
        EXPECT_EQ(stepAt(2, static_cast<std::uint8_t>(tag)), expected) << tag;
    }
}

TEST(GooseSteps, InsideOfDataDependOnNoValue) {
    for (std::int64_t const depth : {3, 4, 50}) {
        for (unsigned tag = 0; tag < 256; ++tag) {
            std::string const expected = tag == 0x81 || tag == 0x82 ? "descend"
                                         : isContextPrimitive(tag)  ? "skip"
                                                                    : stepOfStructure(tag);
            EXPECT_EQ(stepAt(depth, static_cast<std::uint8_t>(tag)), expected) << tag;
        }
    }
}

}  // namespace
}  // namespace TalTest::GooseStepsTest
