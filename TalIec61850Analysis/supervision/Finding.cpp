#include <TalIec61850Analysis/supervision/Finding.hpp>

namespace TalIec61850Analysis {

Severity severityOf(FindingKind kind) noexcept {
    switch (kind) {
        case FindingKind::sampleGap:
        case FindingKind::repeated:
        case FindingKind::late:
        case FindingKind::replay:
        case FindingKind::sqNumGap:
        case FindingKind::stateGap:
        case FindingKind::stateStartMissing:
        case FindingKind::twoPublishers:
        case FindingKind::changedWithoutState:
        case FindingKind::expired:
        case FindingKind::silent:
        case FindingKind::copyMissing:
        case FindingKind::copyDiffers:
        case FindingKind::copyExtra:
        case FindingKind::wrongLan:
            return Severity::error;
        case FindingKind::counterRestart:
        case FindingKind::timeWithoutState:
        case FindingKind::timeAllowedtoLiveZero:
        case FindingKind::jitter:
        case FindingKind::confRevChanged:
        case FindingKind::dataSetChanged:
        case FindingKind::rateChanged:
        case FindingKind::grandmasterChanged:
        case FindingKind::simulationBegan:
        case FindingKind::simulationEnded:
        case FindingKind::simulationContradicts:
        case FindingKind::needsCommissioning:
        case FindingKind::entriesDiffer:
        case FindingKind::synchLost:
        case FindingKind::clockFailure:
        case FindingKind::clockNotSynchronized:
        case FindingKind::qualityChanged:
        case FindingKind::trailerInvalid:
        case FindingKind::captureGap:
        case FindingKind::captureDropped:
        case FindingKind::clockStep:
            return Severity::warning;
        case FindingKind::stateWithoutChange:
        case FindingKind::timeUnchanged:
        case FindingKind::timeAllowedtoLiveChanged:
        case FindingKind::timeAhead:
        case FindingKind::synchRegained:
        case FindingKind::recordsCut:
        case FindingKind::fileEndsInRecord:
        case FindingKind::unreadable:
            break;
    }
    return Severity::note;
}

Severity Finding::severity() const noexcept {
    if (kind == FindingKind::qualityChanged) {
        auto const* const now = std::get_if<std::int64_t>(&found);
        bool const isBad = now != nullptr && *now != 0;
        return protocol == StreamProtocol::sv && isBad ? Severity::warning : Severity::note;
    }
    return severityOf(kind);
}

}  // namespace TalIec61850Analysis
