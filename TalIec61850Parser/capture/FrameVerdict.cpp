#include <TalIec61850Parser/capture/ApplicationHeader.hpp>
#include <TalIec61850Parser/capture/EthernetDecoder.hpp>
#include <TalIec61850Parser/capture/FrameVerdict.hpp>
#include <TalIec61850Parser/capture/LinkLayerFilter.hpp>
#include <TalIec61850Parser/goose/GooseFrame.hpp>
#include <TalIec61850Parser/sv/SvFrame.hpp>

namespace TalIec61850Parser::detail {

namespace {

/// Nothing can reject a frame but a criterion, so without criteria there is nothing to walk for.
bool isComplete(Octets frame, LinkLayer const& link) {
    return readApplicationHeader(frame, link.payloadPosition).has_value();
}

bool judgeGoose(Octets frame, LinkLayer const& link, Filter const& filter) {
    if (filter.gooseFilters.empty()) {
        return isComplete(frame, link);
    }
    Goose goose;
    return takeLinkLayer(link.header, goose, filter.gooseFilters) &&
           readGooseIdentity(frame, link.payloadPosition, goose, filter);
}

/// Deliberate: true for a frame that is not wanted, false for one that is.
bool judgeSv(Octets frame, LinkLayer const& link, Filter const& filter) {
    if (filter.svFilters.empty()) {
        return !isComplete(frame, link);
    }
    Sv sv;
    return takeLinkLayer(link.header, sv, filter.svFilters) &&
           !readSvIdentity(frame, link.payloadPosition, sv, filter);
}

}  // namespace

bool judgeFrame(Octets frame, Filter const& filter) {
    auto const link = decodeLinkLayer(frame, 0);
    if (!link) {
        return false;
    }
    switch (link->header.etherType) {
        case wire::kEtherTypeGoose:
            return !filter.parseGoose || judgeGoose(frame, *link, filter);
        case wire::kEtherTypeSv:
            return !filter.parseSv || judgeSv(frame, *link, filter);
        default:
            return false;
    }
}

}  // namespace TalIec61850Parser::detail
