#include <TalIec61850Analysis/packet/LinkStart.hpp>
#include <TalIec61850Analysis/packet/RedundancyFit.hpp>
#include <TalIec61850Parser/wire/BerReader.hpp>
#include <TalIec61850Parser/wire/Ethernet.hpp>
#include <TalIec61850Parser/wire/GooseTags.hpp>
#include <TalIec61850Parser/wire/SvTags.hpp>
#include <algorithm>
#include <cstring>

namespace TalIec61850Analysis {

namespace wire = TalIec61850Parser::wire;

std::size_t lsduOffsetOf(FrameHeader const& header, std::uint16_t linkType) noexcept {
    return linkStartOf(linkType).size +
           header.vlanTags.size() * (wire::kVlanTagSize + wire::kEtherTypeSize);
}

std::size_t pduEndOf(Octets frame, FrameHeader const& header) noexcept {
    bool const isKnown = header.isGoose() || header.isSv();
    if (!isKnown || header.size >= frame.size()) {
        return header.size;
    }
    auto const pdu = wire::readBerHeader(frame.subspan(header.size));
    bool const isPdu = pdu.form == wire::BerForm::readable &&
                       pdu.tag == (header.isGoose() ? wire::kGoosePdu : wire::kSavPdu);
    return isPdu ? header.size + pdu.size + pdu.length : header.size;
}

std::optional<PlacedTrailer> findPrpTrailer(Octets frame, std::size_t pduEnd,
                                            FrameHeader const& header,
                                            FrameOrigin const& origin) noexcept {
    if (origin.originalSize > frame.size() || !header.etherType) {
        return std::nullopt;
    }
    return findPrpTrailer(frame, pduEnd, lsduOffsetOf(header, origin.linkType),
                          header.hsr.has_value());
}

std::optional<PlacedTrailer> searchPrpTrailer(Octets frame, std::size_t pduEnd,
                                              std::size_t lsduOffset, bool hasHsr) noexcept {
    // The library searches for octets faster forwards than backwards: the last that is found
    // counts.
    std::optional<PlacedTrailer> found;
    constexpr std::uint8_t kSuffixStart = wire::kPrpSuffix >> 8U;
    std::uint8_t const* const end = frame.data() + frame.size();
    std::uint8_t const* at = frame.data() + pduEnd + wire::kPrpTrailerSize - wire::kEtherTypeSize;
    while (at < end) {
        at = static_cast<std::uint8_t const*>(
            std::memchr(at, kSuffixStart, static_cast<std::size_t>(end - at)));
        if (at == nullptr || end - at < std::ptrdiff_t{wire::kEtherTypeSize}) {
            break;
        }
        auto const suffixEnd = static_cast<std::size_t>(at - frame.data()) + wire::kEtherTypeSize;
        if (auto const trailer = prpTrailerBefore(frame, suffixEnd, lsduOffset, hasHsr)) {
            found = trailer;
        }
        ++at;
    }
    return found;
}

std::optional<PrpTrailer> misfitTrailer(Octets frame, std::size_t pduEnd) noexcept {
    constexpr std::size_t kMostPadding = 64;
    constexpr std::uint8_t kLans = 0xA;
    std::size_t const least = pduEnd + wire::kPrpTrailerSize;
    if (least > frame.size()) {
        return std::nullopt;
    }
    std::size_t end = frame.size();
    std::size_t const last = std::max(least, end - std::min(end, kMostPadding));
    while (end > last && frame[end - 1] == 0) {
        --end;
    }
    auto const tag = wire::readPrpTrailer(frame.first(end));
    if (!tag || tag->path >> 1U != kLans >> 1U) {
        return std::nullopt;
    }
    return PrpTrailer{.sequence = tag->sequence, .lanId = tag->path, .lsduSize = tag->lsduSize};
}

}  // namespace TalIec61850Analysis
