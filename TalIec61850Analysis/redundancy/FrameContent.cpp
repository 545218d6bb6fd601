#include <TalIec61850Analysis/packet/LinkStart.hpp>
#include <TalIec61850Analysis/packet/RedundancyFit.hpp>
#include <TalIec61850Analysis/redundancy/FrameContent.hpp>
#include <TalIec61850Analysis/traffic/JoinedHash.hpp>
#include <TalIec61850Parser/wire/Ethernet.hpp>
#include <algorithm>

namespace TalIec61850Analysis::detail {

namespace wire = TalIec61850Parser::wire;

FrameContent::FrameContent(RecordView const& view, Redundancy redundancy) : isKnown_(true) {
    Octets const frame = view.frame.first(std::min(view.frame.size(), kMaxFrameSize));
    std::uint16_t const linkType = view.record.linkType;
    FrameOrigin const origin{.linkType = linkType, .originalSize = view.record.originalSize};
    FrameHeader const header = readFrameStart(frame, linkType);
    std::size_t const lsduOffset = lsduOffsetOf(header, linkType);
    std::size_t const pduEnd = std::min(pduEndOf(frame, header), frame.size());
    isCooked_ = cookedLayoutOf(linkType) != nullptr;
    if (origin.originalSize > frame.size()) {
        cutSize_ = static_cast<std::uint32_t>(frame.size());
    }
    JoinedHash hash;
    std::size_t start = 0;
    if (isCooked_) {
        // What a cooked header says besides is of the interface.
        start = std::min(linkStartOf(linkType).size, frame.size());
        hash.add(header.source ? Octets(*header.source) : Octets());
    }
    if (redundancy == Redundancy::hsr && header.hsr) {
        std::size_t const tag = lsduOffset - wire::kEtherTypeSize;
        if (tag > start) {
            hash.add(frame.subspan(start, tag - start));
        }
        hash.add(header.hsr->lsduSize);
        start = lsduOffset + wire::kHsrTagSize;
    }
    std::size_t end = frame.size();
    if (redundancy == Redundancy::prp) {
        auto const trailer = findPrpTrailer(frame, pduEnd, header, origin);
        end = trailer ? trailer->offset : end;
    }
    while (end > pduEnd && frame[end - 1] == 0) {
        --end;
    }
    hash.add(frame.subspan(start, end - std::min(start, end)));
    hash_ = hash.result();
}

bool FrameContent::isComparedWith(FrameContent const& other) const {
    return isKnown_ && other.isKnown_ && isCooked_ == other.isCooked_ && cutSize_ == other.cutSize_;
}

bool FrameContent::isSameAs(FrameContent const& other) const {
    return isComparedWith(other) && hash_ == other.hash_;
}

bool FrameContent::differsFrom(FrameContent const& other) const {
    return isComparedWith(other) && hash_ != other.hash_;
}

}  // namespace TalIec61850Analysis::detail
