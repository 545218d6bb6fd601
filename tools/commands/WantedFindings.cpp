#include "tools/commands/WantedFindings.hpp"

#include <algorithm>
#include <chrono>

namespace TalIec61850Tools {

using TalIec61850Analysis::Finding;
using TalIec61850Analysis::Severity;
using TalIec61850Analysis::SupervisionOptions;
using TalIec61850Analysis::TrafficIndex;
using TalIec61850Analysis::TrafficStream;

void SeverityCounts::add(Severity severity) {
    ++(severity == Severity::error ? errors : severity == Severity::warning ? warnings : notes);
}

SupervisionOptions WantedFindings::supervision() const {
    SupervisionOptions options;
    if (options_.jitter) {
        options.jitter = options_.jitter->count();
    }
    options.withSamples = options_.withSamples;
    options.jobs = options_.common.jobs;
    return options;
}

bool WantedFindings::isWatched(TrafficIndex const& index, TrafficStream const& stream) const {
    if (!criteria_.admitKey(stream.key)) {
        return false;
    }
    return std::any_of(stream.parts.begin(), stream.parts.end(), [&](auto const& part) {
        return std::any_of(part.changes.begin(), part.changes.end(), [&](auto const& change) {
            return criteria_.admitAttributes(index.attributes(part, change));
        });
    });
}

bool WantedFindings::isWanted(Finding const& finding) const {
    if (!options_.admit(finding) || (!finding.stream && areStreamsSelected())) {
        return false;
    }
    if (finding.from == TalIec61850Analysis::kNoTime) {
        return options_.window.isEmpty();
    }
    CaptureTime const time{std::chrono::nanoseconds(finding.from)};
    return (!window_.from || time >= *window_.from) && (!window_.to || time <= *window_.to);
}

}  // namespace TalIec61850Tools
