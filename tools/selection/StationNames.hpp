#pragma once

#include <TalIec61850Analysis/supervision/Finding.hpp>
#include <TalIec61850Scl/match/CheckStation.hpp>
#include <TalIec61850Scl/model/ControlBlock.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace TalIec61850Tools {

// The names by which results of comparing are asked for, and which other programs read.

/// match, missing, differs or unexpected.
[[nodiscard]] std::string_view toText(TalIec61850Scl::StationResult result);

/// mac, appId and so on.
[[nodiscard]] std::string_view toText(TalIec61850Scl::DifferenceKind kind);

/// controlBlock, data or iedName.
[[nodiscard]] std::string_view toText(TalIec61850Scl::SubscriptionSource source);

/// none, hsr, prp or rstp.
[[nodiscard]] std::string_view toText(TalIec61850Scl::RedundancyProtocol redundancy);

/// SmpPerPeriod, SmpPerSec or SecPerSmp.
[[nodiscard]] std::string_view toText(TalIec61850Scl::SampleRateUnit unit);

/// A basic type as descriptions write it, those of several lengths without one.
[[nodiscard]] std::string_view toText(TalIec61850Scl::BasicType type);

/// The names of those that are set, as the attributes of SmvOpts: refreshTime, sampleSynchronized.
[[nodiscard]] std::vector<std::string_view> namesOf(TalIec61850Scl::SmvOptions const& options);

/// The names of all results, in their order.
[[nodiscard]] std::vector<std::string> stationResultNames();

/// The result of a name; none where there is no such result.
[[nodiscard]] std::optional<TalIec61850Scl::StationResult> stationResultOf(std::string_view name);

/// How bad a result is: what is missing or differs is an error, what is unexpected a warning.
/// @return none for a match
[[nodiscard]] std::optional<TalIec61850Analysis::Severity> severityOf(
    TalIec61850Scl::StationResult result);

}  // namespace TalIec61850Tools
