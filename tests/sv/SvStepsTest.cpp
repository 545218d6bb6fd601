// What the walk over a savPdu does with each element, and so on what its conclusions depend.

#include <gtest/gtest.h>

#include <TalIec61850Parser/codec/BerWalk.hpp>
#include <TalIec61850Parser/sv/SvFrame.hpp>
#include <cstdint>
#include <optional>
#include <set>
#include <string>

#include "codec/StepTaken.hpp"
#include "support/Ber.hpp"
#include "support/Bytes.hpp"

namespace TalTest::SvStepsTest {
namespace {

using namespace TalIec61850Parser;
using namespace TalIec61850Parser::detail;

bool walk(Bytes const& data, WalkLevel const& level, WalkTrace& trace) {
    Sv sv;
    Package package;
    SvFilters const none;
    return walkSavPdu(data, level,
                      {.record = sv, .filters = none, .package = package, .trace = &trace});
}

std::string stepAt(WalkLevel const& level, std::uint8_t tag) {
    return stepTaken(
        tag, [&](Bytes const& data, WalkTrace& trace) { EXPECT_TRUE(walk(data, level, trace)); });
}

/// Of the tags whose meaning does not depend on where they stand.
std::string stepOfStructure(unsigned tag) {
    bool const isStructure = tag == 0x60 || tag == 0x30 || (tag >= 0xA0 && tag <= 0xBF);
    return isStructure ? "descend" : "skip";
}

TEST(SvSteps, OutsideOfAnAsduDependOnItsNumberOfAsdus) {
    for (std::int64_t const depth : {1, 2, 3}) {
        for (unsigned tag = 0; tag < 256; ++tag) {
            EXPECT_EQ(stepAt({.depth = depth}, static_cast<std::uint8_t>(tag)),
                      tag == 0x80 ? "next" : stepOfStructure(tag))
                << tag;
        }
    }
}

TEST(SvSteps, InAnAsduDependOnIdentityAndRate) {
    std::set<unsigned> const identifying = {0x80, 0x83, 0x86};  // svID, confRev, smpRate
    for (std::int64_t const depth : {1, 3, 4}) {
        for (unsigned tag = 0; tag < 256; ++tag) {
            EXPECT_EQ(stepAt({.depth = depth, .inAsdu = true}, static_cast<std::uint8_t>(tag)),
                      identifying.contains(tag) ? "next" : stepOfStructure(tag))
                << tag;
        }
    }
}

TEST(SvSteps, InAnAsduReadTheSampleCountAgain) {
    Bytes const data = concat({ber(0x80, "MU"), ber(0x82, {1, 2}), ber(0x87, {3})});
    for (bool const inAsdu : {true, false}) {
        WalkTrace trace;
        trace.begin(data);
        EXPECT_TRUE(walk(data, {.depth = 3, .inAsdu = inAsdu}, trace));
        EXPECT_EQ(lookedAt(trace), "XXXXXX..XX.");
        EXPECT_EQ(text(trace.number()), inAsdu ? "6+2" : "0+0");
    }
}

TEST(SvSteps, DescendIntoNoField) {
    Bytes const fields = concat({ber(0x80, "X"), ber(0x83, {0, 0, 0, 9})});
    for (unsigned tag = 0x81; tag <= 0x9F; ++tag) {
        if (tag == 0x83) continue;
        Sv sv;
        Package package;
        Bytes const data = concat({ber(0x80, "MU"), ber(static_cast<std::uint8_t>(tag), fields)});
        SvFilters const none;
        EXPECT_TRUE(walkSavPdu(data, {.depth = 3, .inAsdu = true},
                               {.record = sv, .filters = none, .package = package}));
        EXPECT_EQ(sv.svID, "MU") << tag;
        EXPECT_EQ(sv.confRev, std::nullopt) << tag;
    }
}

}  // namespace
}  // namespace TalTest::SvStepsTest
