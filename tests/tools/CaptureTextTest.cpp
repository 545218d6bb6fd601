#include <gtest/gtest.h>

#include "tools/render/CaptureText.hpp"

namespace TalIec61850Tools {
namespace {

using TalIec61850Analysis::CaptureCheck;
using TalIec61850Analysis::CaptureDamage;
using TalIec61850Analysis::CaptureDamageKind;
using TalIec61850Analysis::CaptureFault;
using TalIec61850Analysis::CaptureFormat;
using TalIec61850Analysis::CaptureSurvey;

std::string textOf(CaptureFault fault) {
    CaptureCheck check;
    check.fault = fault;
    return faultText(check).value();
}

TEST(CaptureText, SaysWhyAFileIsNotRead) {
    EXPECT_EQ(textOf(CaptureFault::notCapture), "not a classic capture file");
    EXPECT_EQ(textOf(CaptureFault::notRegularFile), "not a regular file");
    CaptureCheck check;
    check.format = CaptureFormat::classic;
    EXPECT_EQ(faultText(check), std::nullopt);
    check.format = CaptureFormat::nextGeneration;
    EXPECT_EQ(faultText(check),
              "next-generation capture: convert it first, for example with editcap -F pcap");
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
    EXPECT_EQ(damageText({.kind = CaptureDamageKind::notCapture}), "not a classic capture file");
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

TEST(CaptureText, SaysNothingOfAWholeCapture) {
    EXPECT_EQ(faultText(CaptureSurvey{}), std::nullopt);
    CaptureSurvey survey;
    survey.damage = CaptureDamage{.kind = CaptureDamageKind::fileHeaderCut};
    EXPECT_EQ(faultText(survey), "the file ends inside its header");
}

}  // namespace
}  // namespace TalIec61850Tools
