#pragma once

#include <TalIec61850Analysis/pictures/Envelope.hpp>
#include <TalIec61850Analysis/pictures/Waveform.hpp>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace TalIec61850Tools {

/// Tells the page what columns have, those of the finest level: least and largest values, and
/// columns without any.
/// @param octets  to which the numbers are appended, packed
/// @return a list of at most one segment
[[nodiscard]] nlohmann::ordered_json envelopeSegments(
    std::string& octets, TalIec61850Analysis::Envelopes const& envelopes);

/// Tells the page the rows of a waveform. Those on one course of times are a segment.
/// @param octets  to which the numbers are appended, packed
/// @return a list of segments; not set where there are too many for a waveform to look at
[[nodiscard]] std::optional<nlohmann::ordered_json> waveformSegments(
    std::string& octets, TalIec61850Analysis::Waveform const& waveform);

}  // namespace TalIec61850Tools
