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
    return sortedByTime(std::exchange(all_, {}));
}

}  // namespace TalIec61850Analysis::detail
