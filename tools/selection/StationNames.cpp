#include "tools/selection/StationNames.hpp"

#include <algorithm>
#include <array>
#include <cstddef>

namespace TalIec61850Tools {

using TalIec61850Analysis::Severity;
using TalIec61850Scl::BasicType;
using TalIec61850Scl::DifferenceKind;
using TalIec61850Scl::RedundancyProtocol;
using TalIec61850Scl::SampleRateUnit;
using TalIec61850Scl::SmvOptions;
using TalIec61850Scl::StationResult;
using TalIec61850Scl::SubscriptionSource;

namespace {

// In the order of their enumerators.
constexpr std::array<std::string_view, 4> kResults = {"match", "missing", "differs", "unexpected"};
static_assert(kResults.size() == static_cast<std::size_t>(StationResult::unexpected) + 1);

constexpr std::array<std::string_view, 15> kDifferences = {
    "mac",        "appId",   "vlanId", "vlanPriority", "gocbRef",
    "goID",       "svID",    "datSet", "confRev",      "memberCount",
    "memberType", "smpRate", "noASDU", "options",      "maxTime"};
static_assert(kDifferences.size() == static_cast<std::size_t>(DifferenceKind::maxTime) + 1);

constexpr std::array<std::string_view, 3> kSources = {"controlBlock", "data", "iedName"};
static_assert(kSources.size() == static_cast<std::size_t>(SubscriptionSource::iedName) + 1);

constexpr std::array<std::string_view, 4> kRedundancies = {"none", "hsr", "prp", "rstp"};
static_assert(kRedundancies.size() == static_cast<std::size_t>(RedundancyProtocol::rstp) + 1);

constexpr std::array<std::string_view, 3> kRateUnits = {"SmpPerPeriod", "SmpPerSec", "SecPerSmp"};
static_assert(kRateUnits.size() == static_cast<std::size_t>(SampleRateUnit::secondsPerSample) + 1);

constexpr std::array<std::string_view, 28> kBasicTypes = {
    "unknown",   "BOOLEAN", "INT8",     "INT16",   "INT24",   "INT32",      "INT64",
    "INT128",    "INT8U",   "INT16U",   "INT24U",  "INT32U",  "FLOAT32",    "FLOAT64",
    "Enum",      "Dbpos",   "Tcmd",     "Check",   "Quality", "Timestamp",  "EntryTime",
    "VisString", "ObjRef",  "Currency", "Unicode", "Octet",   "bit string", "Struct"};
static_assert(kBasicTypes.size() == static_cast<std::size_t>(BasicType::structure) + 1);

template <typename Value, std::size_t Size>
std::string_view nameIn(std::array<std::string_view, Size> const& names, Value value) {
    return names.at(static_cast<std::size_t>(value));
}

}  // namespace

std::string_view toText(StationResult result) { return nameIn(kResults, result); }
std::string_view toText(DifferenceKind kind) { return nameIn(kDifferences, kind); }
std::string_view toText(SubscriptionSource source) { return nameIn(kSources, source); }
std::string_view toText(RedundancyProtocol redundancy) { return nameIn(kRedundancies, redundancy); }
std::string_view toText(SampleRateUnit unit) { return nameIn(kRateUnits, unit); }
std::string_view toText(BasicType type) { return nameIn(kBasicTypes, type); }

std::vector<std::string_view> namesOf(SmvOptions const& options) {
    std::vector<std::string_view> names;
    auto const add = [&](bool isSet, std::string_view name) {
        if (isSet) {
            names.push_back(name);
        }
    };
    add(options.refreshTime, "refreshTime");
    add(options.sampleSynchronized, "sampleSynchronized");
    add(options.sampleRate, "sampleRate");
    add(options.dataSet, "dataSet");
    add(options.security, "security");
    add(options.timestamp, "timestamp");
    add(options.synchSourceId, "synchSourceId");
    return names;
}

std::vector<std::string> stationResultNames() { return {kResults.begin(), kResults.end()}; }

std::optional<StationResult> stationResultOf(std::string_view name) {
    auto const* const found = std::find(kResults.begin(), kResults.end(), name);
    return found == kResults.end()
               ? std::nullopt
               : std::optional(static_cast<StationResult>(found - kResults.begin()));
}

std::optional<Severity> severityOf(StationResult result) {
    switch (result) {
        case StationResult::missing:
        case StationResult::differs:
            return Severity::error;
        case StationResult::unexpected:
            return Severity::warning;
        case StationResult::match:
            break;
    }
    return std::nullopt;
}

}  // namespace TalIec61850Tools
