#include <TalIec61850Analysis/supervision/FindingJoiner.hpp>
#include <TalIec61850Analysis/supervision/SortFindings.hpp>
#include <algorithm>
#include <iterator>
#include <utility>

namespace TalIec61850Analysis::detail {

namespace {

void addTo(Finding& all, Finding const& other) {
    all.until = std::max(all.until, other.until);
    all.count += other.count;
    all.lost += other.lost;
    if (all.cause != other.cause) {
        all.cause = LossCause::unknown;
        all.witness = LossWitness::none;
        all.witnessFrames = 0;
    } else if (all.witness == other.witness) {
        all.witnessFrames += other.witnessFrames;
    }
}

/// Gaps that follow one another without a message that is in sequence, so many of them, are one.
constexpr std::size_t kGapsOfRun = 4;

/// Makes long runs of gaps of GOOSE messages one finding each.
/// @param findings  of one stream, in the order of time
void joinGapRuns(std::vector<Finding>& findings) {
    std::vector<std::size_t> run;
    std::vector<bool> isJoined(findings.size());
    auto const endRun = [&] {
        for (std::size_t i = 1; run.size() >= kGapsOfRun && i < run.size(); ++i) {
            addTo(findings[run.front()], findings[run[i]]);
            isJoined[run[i]] = true;
        }
        run.clear();
    };
    for (std::size_t i = 0; i < findings.size(); ++i) {
        Finding const& gap = findings[i];
        if (gap.kind != FindingKind::sqNumGap) {
            continue;
        }
        bool const goesOn = !run.empty() && gap.before && gap.before->time != kNoTime &&
                            gap.before->time == findings[run.back()].until;
        if (!goesOn) {
            endRun();
        }
        run.push_back(i);
    }
    endRun();
    std::size_t number = 0;
    std::erase_if(findings, [&](Finding const& /*finding*/) { return isJoined[number++]; });
}

}  // namespace

bool FindingJoiner::isIn(Second const& second, std::int64_t from) {
    if (second.findings.empty() || second.start == kNoTime || from == kNoTime) {
        return second.start == from && !second.findings.empty();
    }
    return from < second.start || from - second.start < kSecond;
}

bool FindingJoiner::isFlooded(FindingKind kind, std::int64_t from) const {
    auto const second = seconds_.find(kind);
    return second != seconds_.end() && isIn(second->second, from) &&
           (second->second.isJoined || second->second.findings.size() >= kMost);
}

void FindingJoiner::add(Finding finding) {
    Second& second = seconds_[finding.kind];
    if (!isIn(second, finding.from)) {
        flush(second);
        second.start = finding.from;
    }
    if (!second.isJoined && second.findings.size() < kMost) {
        second.findings.push_back(std::move(finding));
        return;
    }
    Finding& all = second.findings.front();
    if (!second.isJoined) {
        for (std::size_t i = 1; i < second.findings.size(); ++i) {
            addTo(all, second.findings[i]);
        }
        second.findings.resize(1);
        second.isJoined = true;
    }
    // Nobody looked at the cause of this one.
    finding.cause = all.cause;
    finding.witness = LossWitness::none;
    addTo(all, finding);
}

void FindingJoiner::flush(Second& second) {
    std::move(second.findings.begin(), second.findings.end(), std::back_inserter(all_));
    second.findings.clear();
    second.isJoined = false;
}

std::vector<Finding> FindingJoiner::take() {
    for (auto& [kind, second] : seconds_) {
        flush(second);
    }
    auto findings = sortedByTime(std::exchange(all_, {}));
    joinGapRuns(findings);
    return findings;
}

}  // namespace TalIec61850Analysis::detail
