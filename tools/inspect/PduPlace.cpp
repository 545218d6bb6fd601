#include "tools/inspect/PduPlace.hpp"

#include <algorithm>

namespace TalIec61850Tools {

std::span<std::uint8_t const> readablePart(std::span<std::uint8_t const> frame) {
    return frame.first(std::min(frame.size(), kMaxFrameSize));
}

void reportUnread(std::span<std::uint8_t const> frame, FieldReader& fields) {
    if (frame.size() > kMaxFrameSize) {
        fields.report(kMaxFrameSize, FaultKind::tooLong);
    }
}

std::optional<Element> elementAt(std::span<std::uint8_t const> frame, std::size_t offset,
                                 std::uint8_t tag) {
    if (offset >= frame.size() || frame[offset] != tag) {
        return std::nullopt;
    }
    auto element =
        ElementReader({.octets = octetsBetween(frame, offset, frame.size()), .offset = offset})
            .next();
    return element && element->tag ? std::move(element) : std::nullopt;
}

std::size_t endOf(Element const& element) {
    return element.value.offset + element.value.octets.size();
}

OctetString octetsBetween(std::span<std::uint8_t const> frame, std::size_t begin, std::size_t end) {
    if (end <= begin) {
        return {};
    }
    auto const part = frame.subspan(begin, end - begin);
    return {part.begin(), part.end()};
}

OctetString takeTail(std::span<std::uint8_t const> frame, std::size_t pduEnd, FrameHeader& header) {
    std::size_t tailEnd = frame.size();
    if (header.prp && tailEnd - pduEnd >= kPrpTrailerSize) {
        tailEnd -= kPrpTrailerSize;
    } else {
        header.prp.reset();
    }
    return octetsBetween(frame, pduEnd, tailEnd);
}

void reportHeader(FrameHeader const& header, std::span<std::uint8_t const> frame,
                  FieldReader& fields) {
    if (header.reserved2) {
        return;
    }
    if (header.etherType && header.size < frame.size()) {
        fields.report(header.size - 2, FaultKind::wrongContent);
    } else {
        fields.report(frame.size(), FaultKind::headerCut);
    }
}

}  // namespace TalIec61850Tools
