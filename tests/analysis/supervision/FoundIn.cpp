#include "analysis/supervision/FoundIn.hpp"

#include <TalIec61850Analysis/redundancy/AlignClocks.hpp>
#include <array>
#include <cstddef>

#include "support/TempFile.hpp"

namespace TalTest {
namespace {

using namespace TalIec61850Analysis;

constexpr std::array<char const*, 44> kKinds = {"sampleGap",
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

constexpr std::array<char const*, 5> kCauses = {"", "", " capture", " network", " publisher"};

StationFrame const* frameOf(std::optional<FindingPlace> const& place,
                            FaultyStation const& station) {
    return place ? station.frameAt(place->file, place->fileOffset) : nullptr;
}

/// Captures as files, while this is there.
struct WrittenCaptures {
    explicit WrittenCaptures(std::vector<Bytes> const& captures) {
        std::vector<std::string> paths;
        for (Bytes const& capture : captures) {
            paths.push_back(
                directory.write("capture" + std::to_string(paths.size()) + ".pcap", capture));
        }
        index = indexCaptures(paths);
        alignClocks(index);
    }

    TempDir directory;
    TrafficIndex index;
};

}  // namespace

std::string kindName(FindingKind kind) { return kKinds.at(static_cast<std::size_t>(kind)); }

std::string lineOf(Finding const& finding, FaultyStation const& station) {
    std::string line = kindName(finding.kind);
    StationFrame const* const at = frameOf(finding.place, station);
    StationFrame const* const before = frameOf(finding.before, station);
    if (StationFrame const* const any = at != nullptr ? at : before; any != nullptr) {
        line += " " + station.name(any->stream);
    }
    line += at != nullptr ? " #" + std::to_string(at->number) : (finding.place ? "" : " end");
    if (at != nullptr && finding.from != FaultyStation::timeOf(*at)) {
        line += " !time";
    }
    bool const isNext = at != nullptr && before != nullptr && before->number + 1 == at->number;
    if (before != nullptr && !isNext) {
        line += " after #" + std::to_string(before->number);
    }
    if (finding.lost > 0) {
        line += " lost " + std::to_string(finding.lost);
    }
    if (finding.count > 1) {
        line += " count " + std::to_string(finding.count);
    }
    line += kCauses.at(static_cast<std::size_t>(finding.cause));
    return line;
}

std::vector<Finding> findingsIn(std::vector<Bytes> const& captures,
                                SupervisionOptions const& options) {
    WrittenCaptures const written(captures);
    std::vector<Finding> findings;
    superviseTraffic(written.index, options,
                     [&](Finding const& finding) { findings.push_back(finding); });
    return findings;
}

std::vector<StreamSummary> summariesIn(std::vector<Bytes> const& captures,
                                       SupervisionOptions const& options,
                                       std::vector<Finding>* findings) {
    WrittenCaptures const written(captures);
    std::vector<Finding> found;
    std::vector<StreamSummary> summaries;
    superviseTraffic(
        written.index, options, [&](Finding const& finding) { found.push_back(finding); },
        [&](StreamSummary const& summary) { summaries.push_back(summary); });
    if (findings != nullptr) {
        *findings = found;
    }
    return summaries;
}

std::vector<std::string> foundIn(std::vector<Bytes> const& captures, FaultyStation const& station,
                                 SupervisionOptions const& options) {
    auto const findings = findingsIn(captures, options);
    std::vector<std::string> lines;
    lines.reserve(findings.size());
    for (Finding const& finding : findings) {
        lines.push_back(lineOf(finding, station));
    }
    return lines;
}

std::vector<std::string> foundIn(FaultyStation& station, SupervisionOptions const& options) {
    auto const captures = station.captures();
    return foundIn(captures, station, options);
}

}  // namespace TalTest
