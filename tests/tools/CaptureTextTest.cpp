#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

#include "tools/render/CaptureText.hpp"

namespace TalIec61850Tools::CaptureTextTest {
namespace {

using TalIec61850Analysis::CaptureCheck;
using TalIec61850Analysis::CaptureDamage;
using TalIec61850Analysis::CaptureDamageKind;
using TalIec61850Analysis::CaptureFault;
using TalIec61850Analysis::CaptureFormat;
using TalIec61850Analysis::CaptureSummary;
using TalIec61850Analysis::CaptureSurvey;

std::string textOf(CaptureFault fault) {
    CaptureCheck check;
    check.fault = fault;
    return faultText(check).value();
}

TEST(CaptureText, SaysWhyAFileIsNotRead) {
    EXPECT_EQ(textOf(CaptureFault::notCapture), "not a capture file");
    EXPECT_EQ(textOf(CaptureFault::notRegularFile), "not a regular file");
    CaptureCheck check;
    check.format = CaptureFormat::classic;
    EXPECT_EQ(faultText(check), std::nullopt);
    check.format = CaptureFormat::nextGeneration;
    EXPECT_EQ(faultText(check), std::nullopt);
}

TEST(CaptureText, SaysWhatTheSystemSays) {
    CaptureCheck check;
    check.fault = CaptureFault::refusedBySystem;
    check.error = std::make_error_code(std::errc::permission_denied);
    EXPECT_EQ(faultText(check), "Permission denied");
    CaptureSurvey survey;
    survey.damage = CaptureDamage{};
    survey.error = std::make_error_code(std::errc::io_error);
    EXPECT_EQ(faultText(survey), "Input/output error");
}

TEST(CaptureText, SaysWhatIsDamagedAndWhere) {
    EXPECT_EQ(damageText({.kind = CaptureDamageKind::notCapture}), "not a capture file");
    EXPECT_EQ(damageText({.kind = CaptureDamageKind::fileHeaderCut}),
              "the file ends inside its header");
    EXPECT_EQ(damageText({.kind = CaptureDamageKind::recordHeaderCut, .fileOffset = 5'000'000'000}),
              "the file ends inside the header of the record at 5000000000");
    EXPECT_EQ(damageText({.kind = CaptureDamageKind::recordCut,
                          .fileOffset = 24,
                          .claimedSize = 4'294'967'295,
                          .missingSize = 7}),
              "the file ends inside the record at 24: 7 of its 4294967295 octets are missing");
    EXPECT_EQ(damageText({.kind = CaptureDamageKind::blockLength, .fileOffset = 28}),
              "a block length that none can have at 28");
    EXPECT_EQ(damageText({.kind = CaptureDamageKind::fileShrank, .fileOffset = 100}),
              "the file became shorter while it was read, and ends at 100");
}

/// A capture with so many blocks of two lengths, of which a hundred are kept.
CaptureSummary damagedAt(std::size_t places) {
    CaptureSummary summary;
    summary.damageCount = places;
    for (std::uint64_t i = 0; i < std::min<std::size_t>(places, 100); ++i) {
        summary.damages.push_back(
            {.kind = CaptureDamageKind::blockLengthsDiffer, .fileOffset = 100 * i});
    }
    return summary;
}

TEST(CaptureText, SaysFiveDamagesAndHowManyMore) {
    using Texts = std::vector<std::string>;
    std::string const text = "a block with two different lengths at ";
    EXPECT_EQ(damageTexts(damagedAt(0)), Texts{});
    EXPECT_EQ(damageTexts(damagedAt(2)), (Texts{text + "0", text + "100"}));
    Texts const five = {text + "0", text + "100", text + "200", text + "300", text + "400"};
    EXPECT_EQ(damageTexts(damagedAt(5)), five);
    for (auto const& [places, more] :
         {std::pair(6U, "and 1 more damaged place"), std::pair(7U, "and 2 more damaged places"),
          std::pair(4711U, "and 4706 more damaged places")}) {
        Texts expected = five;
        expected.emplace_back(more);
        EXPECT_EQ(damageTexts(damagedAt(places)), expected);
    }
    EXPECT_EQ(moreDamageText(damagedAt(1), 1), std::nullopt);
    EXPECT_EQ(moreDamageText(damagedAt(0), 1), std::nullopt);
    EXPECT_EQ(moreDamageText(damagedAt(3), 1), "and 2 more damaged places");
}

TEST(CaptureText, SaysWhichFramesAreNotLookedInto) {
    CaptureSummary summary;
    EXPECT_EQ(linkTypeNote(summary), std::nullopt);
    summary.linkTypes = {{1, 10}, {113, 20}, {276, 30}};
    EXPECT_EQ(linkTypeNote(summary), std::nullopt);
    summary.linkTypes[105] = 5;
    EXPECT_EQ(linkTypeNote(summary), "5 frames of link type 105 are not looked into");
    summary.linkTypes[250] = 1;
    EXPECT_EQ(linkTypeNote(summary),
              "5 frames of link type 105, 1 frame of link type 250 are not looked into");
    summary.linkTypes = {{0, 1}};
    EXPECT_EQ(linkTypeNote(summary), "1 frame of link type 0 is not looked into");
}

TEST(CaptureText, SaysNothingOfAWholeCapture) {
    EXPECT_EQ(faultText(CaptureSurvey{}), std::nullopt);
    CaptureSurvey survey;
    survey.damage = CaptureDamage{.kind = CaptureDamageKind::fileHeaderCut};
    EXPECT_EQ(faultText(survey), "the file ends inside its header");
}

}  // namespace
}  // namespace TalIec61850Tools::CaptureTextTest
