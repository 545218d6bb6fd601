#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/file/CaptureDamage.hpp>
#include <TalIec61850Analysis/time/CaptureTime.hpp>
#include <optional>
#include <string>
#include <system_error>

namespace TalIec61850Analysis {

/// What a walk over a capture's record headers tells.
struct CaptureSurvey {
    /// The time of the first record in the file that has one, whatever is in it; it need not be the
    /// earliest.
    std::optional<CaptureTime> start;
    /// The latest time of a record that is there whole, wherever it is in the file.
    std::optional<CaptureTime> latest;
    /// The damage that ends the file.
    std::optional<CaptureDamage> damage;
    /// What the operating system says where the file cannot be opened, or be read to its end. What
    /// was found before that is in `start` and `latest`.
    std::error_code error;
};

/// Walks the record headers of a capture to its end. What the operating system refuses is
/// told, not thrown.
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT CaptureSurvey surveyCapture(std::string const& path);

}  // namespace TalIec61850Analysis
