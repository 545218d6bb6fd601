#pragma once

#include <optional>
#include <string>

#include "tools/selection/CaptureTime.hpp"

namespace TalIec61850Tools {

/// What a walk over a capture's record headers tells, which the index does not.
struct CaptureSurvey {
    /// The time of the first record, whatever is in it.
    std::optional<CaptureTime> begin;
    /// What is wrong with the file, for people.
    std::optional<std::string> damage;
};

/// Walks the record headers of a capture to its end. A file that cannot be read is damaged.
/// @param path  a file that checkCapture found no fault with
[[nodiscard]] CaptureSurvey surveyCapture(std::string const& path);

}  // namespace TalIec61850Tools
