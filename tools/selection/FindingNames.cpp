#include "tools/selection/FindingNames.hpp"

#include <algorithm>
#include <array>
#include <cstddef>

namespace TalIec61850Tools {

using TalIec61850Analysis::FindingKind;
using TalIec61850Analysis::LossCause;
using TalIec61850Analysis::LossWitness;
using TalIec61850Analysis::Severity;

namespace {

// In the order of their enumerators.
constexpr std::array<std::string_view, 44> kKinds = {"sampleGap",
                                                     "repeated",
                                                     "late",
                                                     "counterRestart",
                                                     "replay",
                                                     "sqNumGap",
                                                     "stateGap",
                                                     "stateStartMissing",
                                                     "twoPublishers",
                                                     "changedWithoutState",
                                                     "stateWithoutChange",
                                                     "timeWithoutState",
                                                     "timeUnchanged",
                                                     "expired",
                                                     "timeAllowedtoLiveZero",
                                                     "timeAllowedtoLiveChanged",
                                                     "silent",
                                                     "jitter",
                                                     "timeAhead",
                                                     "confRevChanged",
                                                     "dataSetChanged",
                                                     "rateChanged",
                                                     "grandmasterChanged",
                                                     "simulationBegan",
                                                     "simulationEnded",
                                                     "simulationContradicts",
                                                     "needsCommissioning",
                                                     "entriesDiffer",
                                                     "synchLost",
                                                     "synchRegained",
                                                     "clockFailure",
                                                     "clockNotSynchronized",
                                                     "qualityChanged",
                                                     "copyMissing",
                                                     "copyDiffers",
                                                     "copyExtra",
                                                     "wrongLan",
                                                     "trailerInvalid",
                                                     "captureGap",
                                                     "captureDropped",
                                                     "clockStep",
                                                     "recordsCut",
                                                     "fileEndsInRecord",
                                                     "unreadable"};
static_assert(kKinds.size() == static_cast<std::size_t>(FindingKind::unreadable) + 1);

constexpr std::array<std::string_view, 3> kSeverities = {"note", "warning", "error"};
constexpr std::array<std::string_view, 5> kCauses = {"none", "unknown", "capture", "network",
                                                     "publisher"};
constexpr std::array<std::string_view, 7> kWitnesses = {
    "none",          "dropCounts",      "otherStreamsLost", "otherStreamsRanOn",
    "redundancyGap", "redundancyRanOn", "otherCopy"};
static_assert(kWitnesses.size() == static_cast<std::size_t>(LossWitness::otherCopy) + 1);

template <typename Value, std::size_t Size>
std::optional<Value> valueCalled(std::array<std::string_view, Size> const& names,
                                 std::string_view name) {
    auto const* const found = std::find(names.begin(), names.end(), name);
    return found == names.end() ? std::nullopt
                                : std::optional(static_cast<Value>(found - names.begin()));
}

template <typename Value, std::size_t Size>
std::string_view nameAt(std::array<std::string_view, Size> const& names, Value value) {
    return names.at(static_cast<std::size_t>(value));
}

}  // namespace

std::string_view toText(FindingKind kind) { return nameAt(kKinds, kind); }
std::string_view toText(Severity severity) { return nameAt(kSeverities, severity); }
std::string_view toText(LossCause cause) { return nameAt(kCauses, cause); }
std::string_view toText(LossWitness witness) { return nameAt(kWitnesses, witness); }

std::vector<std::string> findingKindNames() { return {kKinds.begin(), kKinds.end()}; }
std::vector<std::string> severityNames() { return {kSeverities.begin(), kSeverities.end()}; }

std::optional<FindingKind> findingKindOf(std::string_view name) {
    return valueCalled<FindingKind>(kKinds, name);
}
std::optional<Severity> severityOf(std::string_view name) {
    return valueCalled<Severity>(kSeverities, name);
}

}  // namespace TalIec61850Tools
