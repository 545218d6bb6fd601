#include <TalIec61850Analysis/packet/PduFrame.hpp>
#include <TalIec61850Analysis/packet/RedundancyFit.hpp>
#include <TalIec61850Parser/wire/Ethernet.hpp>
#include <algorithm>

namespace TalIec61850Analysis {

namespace wire = TalIec61850Parser::wire;

Octets readablePart(Octets frame) noexcept {
    return frame.first(std::min(frame.size(), kMaxFrameSize));
}

std::optional<ElementView> elementAt(Octets frame, std::size_t offset, std::uint8_t tag) noexcept {
    if (offset >= frame.size() || frame[offset] != tag) {
        return std::nullopt;
    }
    auto const element = Elements(frame.subspan(offset), offset).begin();
    return element->tag ? std::optional(*element) : std::nullopt;
}

Octets octetsBetween(Octets frame, std::size_t start, std::size_t end) noexcept {
    return end <= start ? Octets() : frame.subspan(start, end - start);
}

Octets takeTail(Octets frame, std::size_t pduEnd, FrameOrigin const& origin,
                FrameHeader& header) noexcept {
    header.prp.reset();
    std::size_t tailEnd = frame.size();
    if (auto const found = findPrpTrailer(frame, pduEnd, header, origin)) {
        header.prp = found->trailer;
        tailEnd = found->offset;
    }
    return octetsBetween(frame, pduEnd, tailEnd);
}

void reportHeader(FrameHeader const& header, Octets frame, FrameOrigin const& origin,
                  FaultSink sink) {
    std::size_t const lsduOffset = lsduOffsetOf(header, origin.linkType);
    if (header.hsr && !hsrSizeFits(lsduOffset, header.hsr->lsduSize, pduEndOf(frame, header),
                                   std::max(frame.size(), origin.originalSize))) {
        sink({lsduOffset - wire::kEtherTypeSize, FaultKind::wrongLength});
    }
    if (header.reserved2) {
        return;
    }
    if (header.etherType && header.size < frame.size()) {
        bool const isTag = wire::isVlanTpid(*header.etherType);
        sink({header.size - wire::kEtherTypeSize,
              isTag ? FaultKind::tooDeep : FaultKind::wrongContent});
    } else {
        sink({frame.size(), FaultKind::headerCut});
    }
}

void reportUnread(Octets frame, FaultSink sink) {
    if (frame.size() > kMaxFrameSize) {
        sink({kMaxFrameSize, FaultKind::tooLong});
    }
}

}  // namespace TalIec61850Analysis
