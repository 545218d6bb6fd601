#include "tools/render/CaptureText.hpp"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <TalIec61850Analysis/packet/FrameHeader.hpp>
#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <iterator>

#include "tools/output/Plural.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::CaptureCheck;
using TalIec61850Analysis::CaptureDamage;
using TalIec61850Analysis::CaptureDamageKind;
using TalIec61850Analysis::CaptureFault;
using TalIec61850Analysis::CaptureSummary;
using TalIec61850Analysis::CaptureSurvey;

namespace {

constexpr char const* kNotCapture = "not a capture file";

/// What is at an offset.
char const* wordsFor(CaptureDamageKind kind) {
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

std::string faultText(std::error_code const& error) {
    return error == std::error_code(ESTALE, std::generic_category())
               ? "the file was changed while it was read"
               : error.message();
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
            return fmt::format("{} at {}", wordsFor(damage.kind), damage.fileOffset);
    }
}

std::optional<std::string> faultText(CaptureSurvey const& survey) {
    if (survey.error) {
        return survey.error.message();
    }
    return survey.damage ? std::optional(damageText(*survey.damage)) : std::nullopt;
}

std::optional<std::string> moreDamageText(CaptureSummary const& summary, std::size_t told) {
    std::uint64_t const more =
        summary.damageCount - std::min<std::uint64_t>(summary.damageCount, told);
    return more == 0 ? std::nullopt : std::optional("and " + plural(more, "more damaged place"));
}

std::vector<std::string> damageTexts(CaptureSummary const& summary) {
    constexpr std::size_t most = 5;
    std::size_t const told = std::min(summary.damages.size(), most);
    std::vector<std::string> texts;
    std::transform(summary.damages.begin(),
                   summary.damages.begin() + static_cast<std::ptrdiff_t>(told),
                   std::back_inserter(texts), damageText);
    if (auto more = moreDamageText(summary, told)) {
        texts.push_back(*std::move(more));
    }
    return texts;
}

std::optional<std::string> linkTypeNote(CaptureSummary const& summary) {
    std::vector<std::string> parts;
    std::uint64_t frames = 0;
    for (auto const& [type, count] : summary.linkTypes) {
        if (!TalIec61850Analysis::isReadable(type)) {
            parts.push_back(fmt::format("{} of link type {}", plural(count, "frame"), type));
            frames += count;
        }
    }
    if (parts.empty()) {
        return std::nullopt;
    }
    return fmt::format("{} {} not looked into", fmt::join(parts, ", "), frames == 1 ? "is" : "are");
}

}  // namespace TalIec61850Tools
