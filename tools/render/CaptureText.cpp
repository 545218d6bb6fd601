#include "tools/render/CaptureText.hpp"

#include <fmt/format.h>

namespace TalIec61850Tools {

using TalIec61850Analysis::CaptureCheck;
using TalIec61850Analysis::CaptureDamage;
using TalIec61850Analysis::CaptureDamageKind;
using TalIec61850Analysis::CaptureFault;
using TalIec61850Analysis::CaptureFormat;
using TalIec61850Analysis::CaptureSurvey;

namespace {

constexpr char const* kNotCapture = "not a classic capture file";

/// What is at an offset.
char const* toText(CaptureDamageKind kind) {
    switch (kind) {
        case CaptureDamageKind::notCapture:
            return kNotCapture;
        case CaptureDamageKind::fileHeaderCut:
            return "a file header that is cut";
        case CaptureDamageKind::recordHeaderCut:
            return "a record header that is cut";
        case CaptureDamageKind::recordCut:
            return "a record that is cut";
        case CaptureDamageKind::fileShrank:
            return "the file became shorter while it was read, and ends";
        case CaptureDamageKind::blockLength:
            return "a block length that none can have";
        case CaptureDamageKind::byteOrder:
            return "a section without a byte order";
        case CaptureDamageKind::recordTooLong:
            return "a record longer than any frame";
        case CaptureDamageKind::blockLengthsDiffer:
            return "a block with two different lengths";
        case CaptureDamageKind::blockTooShort:
            return "a block too short for its type";
        case CaptureDamageKind::frameTooLong:
            return "a frame longer than its block";
        case CaptureDamageKind::unknownInterface:
            return "a block of an interface that is not described";
        case CaptureDamageKind::tooManyInterfaces:
            return "more interfaces than are kept";
        case CaptureDamageKind::unknownVersion:
            return "a section of an unknown version";
        case CaptureDamageKind::sectionCut:
            return "a section shorter than it says";
        case CaptureDamageKind::optionCut:
            return "an option that is cut";
        case CaptureDamageKind::timeResolution:
            return "an interface whose unit of time cannot be used";
        case CaptureDamageKind::timeOutOfRange:
            return "a time that cannot be told";
    }
    return "";
}

}  // namespace

std::optional<std::string> faultText(CaptureCheck const& check) {
    if (check.format == CaptureFormat::nextGeneration) {
        return "next-generation capture: convert it first, for example with editcap -F pcap";
    }
    if (!check.fault) {
        return std::nullopt;
    }
    switch (*check.fault) {
        case CaptureFault::refusedBySystem:
            return check.error.message();
        case CaptureFault::notRegularFile:
            return "not a regular file";
        case CaptureFault::notCapture:
            return kNotCapture;
    }
    return std::nullopt;
}

std::string damageText(CaptureDamage const& damage) {
    switch (damage.kind) {
        case CaptureDamageKind::notCapture:
            return kNotCapture;
        case CaptureDamageKind::fileHeaderCut:
            return "the file ends inside its header";
        case CaptureDamageKind::recordHeaderCut:
            return fmt::format("the file ends inside the header of the record at {}",
                               damage.fileOffset);
        case CaptureDamageKind::recordCut:
            return fmt::format(
                "the file ends inside the record at {}: {} of its {} octets are missing",
                damage.fileOffset, damage.missingSize, damage.claimedSize);
        default:
            return fmt::format("{} at {}", toText(damage.kind), damage.fileOffset);
    }
}

std::optional<std::string> faultText(CaptureSurvey const& survey) {
    if (survey.error) {
        return survey.error.message();
    }
    return survey.damage ? std::optional(damageText(*survey.damage)) : std::nullopt;
}

}  // namespace TalIec61850Tools
