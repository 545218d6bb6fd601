#include "tools/inspect/ElementReader.hpp"

#include <TalIec61850Parser/codec/Asn1Parser.hpp>
#include <utility>

namespace TalIec61850Tools {

namespace {

using TalIec61850Parser::Asn1Parser;
using TalIec61850Parser::Asn1Tag;

constexpr std::uint8_t kTagNumberMask = 0x1F;
constexpr std::uint8_t kLongForm = 0x80;
constexpr std::uint8_t kMaxLengthOctets = 4;

}  // namespace

std::optional<Element> ElementReader::next() {
    OctetString const& octets = level_.octets;
    std::size_t const start = position_;
    if (start == octets.size()) {
        return std::nullopt;
    }
    if ((octets[start] & kTagNumberMask) == kTagNumberMask) {
        return rest(start, FaultKind::longIdentifier);
    }
    if (start + 1 < octets.size() && octets[start + 1] == kLongForm) {
        return rest(start, FaultKind::indefiniteLength);
    }
    Asn1Tag tag;
    if (!Asn1Parser::parseTag(octets, position_, tag)) {
        return cutElement(start, position_);
    }
    return Element{.offset = level_.offset + start,
                   .tag = tag.tag,
                   .value = {.octets = std::move(tag.value),
                             .offset = offset() - tag.length,
                             .claimedEnd = offset()},
                   .fault = {}};
}

Element ElementReader::cutElement(std::size_t start, std::size_t stopped) {
    OctetString const& octets = level_.octets;
    std::size_t const end = level_.offset + octets.size();
    auto const fault = [&](std::size_t elementEnd) {
        return elementEnd > level_.claimedEnd ? FaultKind::pastParent : FaultKind::pastCapture;
    };
    if (octets.size() - start < 2) {
        return rest(start, fault(end + 1));
    }
    std::uint8_t const first = octets[start + 1];
    std::size_t const lengthOctets = first < kLongForm ? 0U : first - kLongForm;
    if (lengthOctets > kMaxLengthOctets) {
        return rest(start, FaultKind::longLength);
    }
    if (octets.size() - start - 2 < lengthOctets) {
        return rest(start, fault(end + 1));
    }
    // parseTag stopped where the value begins.
    std::size_t length = first;
    if (lengthOctets > 0) {
        length = Asn1Parser::bytesToUint32({octets.begin() + static_cast<std::ptrdiff_t>(start) + 2,
                                            octets.begin() + static_cast<std::ptrdiff_t>(stopped)});
    }
    Element element{
        .offset = level_.offset + start,
        .tag = octets[start],
        .value = {.octets = {octets.begin() + static_cast<std::ptrdiff_t>(stopped), octets.end()},
                  .offset = level_.offset + stopped,
                  .claimedEnd = level_.offset + stopped + length},
        .fault = {}};
    element.fault = fault(element.value.claimedEnd);
    position_ = octets.size();
    return element;
}

Element ElementReader::rest(std::size_t start, FaultKind fault) {
    OctetString const& octets = level_.octets;
    position_ = octets.size();
    return {.offset = level_.offset + start,
            .tag = {},
            .value = {.octets = {octets.begin() + static_cast<std::ptrdiff_t>(start), octets.end()},
                      .offset = level_.offset + start,
                      .claimedEnd = level_.claimedEnd},
            .fault = fault};
}

RawElement toRaw(Element&& element) {
    return {.offset = element.offset,
            .tag = element.tag,
            .octets = std::move(element.value.octets),
            .fault = element.fault};
}

}  // namespace TalIec61850Tools
