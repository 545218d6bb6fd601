#include <TalIec61850Analysis/supervision/FindingValues.hpp>
#include <TalIec61850Analysis/supervision/RedundancyFindings.hpp>

namespace TalIec61850Analysis::detail {

namespace {

FindingKind findingKindOf(RedundancyFaultKind kind) {
    switch (kind) {
        case RedundancyFaultKind::copyMissing:
            return FindingKind::copyMissing;
        case RedundancyFaultKind::copyDiffers:
            return FindingKind::copyDiffers;
        case RedundancyFaultKind::copyExtra:
            return FindingKind::copyExtra;
        case RedundancyFaultKind::wrongLan:
            return FindingKind::wrongLan;
        case RedundancyFaultKind::trailerInvalid:
            break;
    }
    return FindingKind::trailerInvalid;
}

FindingValue wayText(char lane) { return OctetString{static_cast<std::uint8_t>(lane)}; }

}  // namespace

Finding findingOf(TrafficIndex const& index, RedundancyFault const& fault) {
    Finding finding;
    finding.kind = findingKindOf(fault.kind);
    finding.protocol = index.streams()[fault.stream].key.protocol;
    finding.from = fault.from;
    finding.until = fault.until;
    finding.count = fault.count;
    finding.place = FindingPlace{.packet = fault.packet, .time = fault.from};
    if (fault.other) {
        finding.before = FindingPlace{.packet = *fault.other};
    }
    char const otherLane = fault.lane == 'A' ? 'B' : 'A';
    switch (fault.kind) {
        case RedundancyFaultKind::copyMissing:
            finding.expected = wayText(fault.lane);
            finding.found = wayText(otherLane);
            finding.cause = LossCause::network;
            finding.witness = LossWitness::otherCopy;
            finding.witnessFrames = fault.count;
            break;
        case RedundancyFaultKind::wrongLan:
            finding.expected = wayText(otherLane);
            finding.found = wayText(fault.lane);
            break;
        case RedundancyFaultKind::copyDiffers:
        case RedundancyFaultKind::copyExtra:
            finding.found = wayText(fault.lane);
            break;
        case RedundancyFaultKind::trailerInvalid:
            finding.expected = numberOf(fault.fittingSize);
            finding.found = numberOf(fault.claimedSize);
            break;
    }
    return finding;
}

}  // namespace TalIec61850Analysis::detail
