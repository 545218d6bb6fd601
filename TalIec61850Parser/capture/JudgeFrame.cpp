#include <TalIec61850Parser/capture/JudgeFrame.hpp>
#include <TalIec61850Parser/frame/Admission.hpp>
#include <TalIec61850Parser/goose/GooseFrame.hpp>
#include <TalIec61850Parser/sv/SvFrame.hpp>

namespace TalIec61850Parser::detail {

namespace {

/// Nothing can reject a frame but a criterion, so without criteria there is nothing to walk for.
bool isComplete(Octets frame, wire::LinkLayer const& link) {
    return wire::readApplicationHeader(frame, link.payloadIndex).has_value();
}

bool judgeGoose(Octets frame, wire::LinkLayer const& link, Filter const& filter) {
    if (filter.gooseFilters.empty()) {
        return isComplete(frame, link);
    }
    Goose goose;
    return admitLinkLayer(link, goose, filter.gooseFilters) &&
           readGooseIdentity(frame, link.payloadIndex, goose, filter.gooseFilters);
}

/// Deliberate: true for a frame that is not wanted, false for one that is.
bool judgeSv(Octets frame, wire::LinkLayer const& link, Filter const& filter) {
    if (filter.svFilters.empty()) {
        return !isComplete(frame, link);
    }
    Sv sv;
    return admitLinkLayer(link, sv, filter.svFilters) &&
           !readSvIdentity(frame, link.payloadIndex, sv, filter.svFilters);
}

}  // namespace

bool judgeFrame(Octets frame, Filter const& filter) {
    auto const link = wire::decodeLinkLayer(frame, 0);
    if (!link) {
        return false;
    }
    switch (link->etherType) {
        case wire::kEtherTypeGoose:
            return !filter.parseGoose || judgeGoose(frame, *link, filter);
        case wire::kEtherTypeSv:
            return !filter.parseSv || judgeSv(frame, *link, filter);
        default:
            return false;
    }
}

}  // namespace TalIec61850Parser::detail
