#pragma once

#include <TalIec61850Analysis/file/CaptureCheck.hpp>
#include <TalIec61850Analysis/file/CaptureDamage.hpp>
#include <TalIec61850Analysis/file/CaptureSurvey.hpp>
#include <TalIec61850Analysis/traffic/CaptureSummary.hpp>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace TalIec61850Tools {

/// Why a file is not taken.
/// @return none for one that is
[[nodiscard]] std::optional<std::string> faultText(TalIec61850Analysis::CaptureCheck const& check);

/// What is wrong with a capture.
[[nodiscard]] std::string damageText(TalIec61850Analysis::CaptureDamage const& damage);

/// What is wrong with a capture, or why it cannot be read to its end.
/// @return none for a whole one
[[nodiscard]] std::optional<std::string> faultText(
    TalIec61850Analysis::CaptureSurvey const& survey);

/// What is wrong with a capture, one text for each of the first five places, and one for how many
/// more there are.
/// @return empty for a whole one
[[nodiscard]] std::vector<std::string> damageTexts(
    TalIec61850Analysis::CaptureSummary const& summary);

/// How many damaged places there are besides those that are told: "and 3 more damaged places".
/// @return none for none
[[nodiscard]] std::optional<std::string> moreDamageText(
    TalIec61850Analysis::CaptureSummary const& summary, std::size_t told);

/// Which frames are not looked into, as their link type is not known: "5 frames of link type 105
/// are not looked into".
/// @return none where all are looked into
[[nodiscard]] std::optional<std::string> linkTypeNote(
    TalIec61850Analysis::CaptureSummary const& summary);

}  // namespace TalIec61850Tools
