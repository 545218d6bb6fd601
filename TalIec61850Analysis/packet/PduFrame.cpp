#include <TalIec61850Analysis/packet/PduFrame.hpp>
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

Octets takeTail(Octets frame, std::size_t pduEnd, FrameHeader& header) noexcept {
    std::size_t tailEnd = frame.size();
    if (header.prp && tailEnd - pduEnd >= wire::kPrpTrailerSize) {
        tailEnd -= wire::kPrpTrailerSize;
    } else {
        header.prp.reset();
    }
    return octetsBetween(frame, pduEnd, tailEnd);
}

void reportHeader(FrameHeader const& header, Octets frame, FaultSink sink) {
    if (header.reserved2) {
        return;
    }
    if (header.etherType && header.size < frame.size()) {
        sink({header.size - wire::kEtherTypeSize, FaultKind::wrongContent});
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
