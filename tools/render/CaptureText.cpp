#include "tools/render/CaptureText.hpp"

#include <fmt/format.h>

namespace TalIec61850Tools {

using TalIec61850Analysis::CaptureCheck;
using TalIec61850Analysis::CaptureDamage;
using TalIec61850Analysis::CaptureDamageKind;
using TalIec61850Analysis::CaptureFault;
using TalIec61850Analysis::CaptureSurvey;

namespace {

constexpr char const* kNotCapture = "not a classic capture file";

}  // namespace

std::string faultText(CaptureCheck const& check) {
    switch (check.fault.value()) {
        case CaptureFault::refusedBySystem:
            return check.error.message();
        case CaptureFault::notRegularFile:
            return "not a regular file";
        case CaptureFault::notCapture:
            return kNotCapture;
        case CaptureFault::nextGeneration:
            return "next-generation capture: convert it first, for example with editcap -F pcap";
    }
    return {};
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
    }
    return {};
}

std::optional<std::string> faultText(CaptureSurvey const& survey) {
    if (survey.error) {
        return survey.error.message();
    }
    return survey.damage ? std::optional(damageText(*survey.damage)) : std::nullopt;
}

}  // namespace TalIec61850Tools
