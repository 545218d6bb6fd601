#pragma once

#include <TalIec61850Analysis/file/CaptureCheck.hpp>
#include <TalIec61850Analysis/file/CaptureDamage.hpp>
#include <TalIec61850Analysis/file/CaptureSurvey.hpp>
#include <optional>
#include <string>

namespace TalIec61850Tools {

/// Why a file is not taken. Next-generation captures are not, as they cannot be indexed.
/// @return none for one that is
[[nodiscard]] std::optional<std::string> faultText(TalIec61850Analysis::CaptureCheck const& check);

/// What is wrong with a capture.
[[nodiscard]] std::string damageText(TalIec61850Analysis::CaptureDamage const& damage);

/// What is wrong with a capture, or why it cannot be read to its end.
/// @return none for a whole one
[[nodiscard]] std::optional<std::string> faultText(
    TalIec61850Analysis::CaptureSurvey const& survey);

}  // namespace TalIec61850Tools
