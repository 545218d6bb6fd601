#include <TalIec61850Analysis/redundancy/CopyTally.hpp>
#include <TalIec61850Analysis/redundancy/RedundantSources.hpp>

namespace TalIec61850Analysis::detail {

void CopyTally::add(JudgedFrame const& frame) {
    for (std::size_t const way : {kWayA, kWayB}) {
        bool const isMissing = frame.missing == way && frame.isCounted;
        if (isMissing && !isMissing_.at(way)) {
            ++(way == kWayA ? counts_.missingRunsA : counts_.missingRunsB);
        }
        isMissing_.at(way) = isMissing;
    }
    if (!frame.isCounted) {
        return;
    }
    ++(frame.redundancy == Redundancy::hsr ? hsrFrames_ : prpFrames_);
    counts_.differs += frame.differs ? 1U : 0U;
    switch (frame.outcome) {
        case CopyOutcome::both:
            ++counts_.both;
            ++(frame.firstWay == kWayA ? counts_.firstA : counts_.firstB);
            differences_.add(frame.difference);
            if (!counts_.clockOffset) {
                counts_.clockOffset = frame.clockOffset;
            }
            break;
        case CopyOutcome::onlyA:
            ++counts_.onlyA;
            break;
        case CopyOutcome::onlyB:
            ++counts_.onlyB;
            break;
        case CopyOutcome::more:
            ++counts_.more;
            break;
        case CopyOutcome::wrongLan:
            ++counts_.wrongLan;
            break;
    }
}

CopyCounts CopyTally::result() {
    if (hsrFrames_ + prpFrames_ > 0) {
        counts_.redundancy = hsrFrames_ > prpFrames_ ? Redundancy::hsr : Redundancy::prp;
    }
    counts_.differences = differences_.result();
    return counts_;
}

}  // namespace TalIec61850Analysis::detail
