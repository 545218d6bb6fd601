#include "index/PlainDecode.hpp"

#include <TalIec61850Parser/codec/Asn1Parser.hpp>
#include <optional>

namespace TalTest {
namespace {

using namespace TalIec61850Parser;

Bytes slice(Bytes const& octets, std::size_t start, std::size_t size) {
    auto const first = octets.begin() + static_cast<std::ptrdiff_t>(start);
    return {first, first + static_cast<std::ptrdiff_t>(size)};
}

/// A length of at most two octets after its first octet, and where the value starts.
struct Length {
    std::size_t length = 0;
    std::size_t start = 0;
};

std::optional<Length> shortLength(Bytes const& octets, std::size_t at) {
    if (at >= octets.size()) return std::nullopt;
    std::size_t const count = octets[at] < 0x80 ? 0 : octets[at] - 0x80U;
    if (count == 0) {
        if (octets[at] == 0x80) return std::nullopt;
        return Length{octets[at], at + 1};
    }
    if (count > 2 || at + count >= octets.size()) return std::nullopt;
    return Length{plainNumber(slice(octets, at + 1, count)), at + 1 + count};
}

std::optional<Bytes> contentOf(Bytes const& file, std::uint64_t position, std::uint8_t tag) {
    if (position >= file.size() || file[position] != tag) return std::nullopt;
    auto const length = shortLength(file, position + 1);
    if (!length || length->start + length->length > file.size()) return std::nullopt;
    return slice(file, length->start, length->length);
}

std::string trueOrFalse(Bytes const& value) {
    return value.empty() || value[0] == 0 ? "false" : "true";
}

std::string firstOctet(Bytes const& value) {
    return std::to_string(value.empty() ? 0 : int{value[0]});
}

void setField(GoosePdu& pdu, unsigned number, Bytes const& value) {
    switch (number) {
        case 0:
            pdu.gocbRef = Asn1Parser::bytesToString(value);
            break;
        case 1:
            pdu.timeAllowedToLive = std::to_string(plainNumber(prefix(value, 4)));
            break;
        case 2:
            pdu.datSet = Asn1Parser::bytesToString(value);
            break;
        case 3:
            pdu.goID = Asn1Parser::bytesToString(value);
            break;
        case 4:
            pdu.t = Asn1Parser::convertGooseTimestampToDateTime(value);
            break;
        case 5:
            pdu.stNum = firstOctet(value);
            break;
        case 6:
            pdu.sqNum = value.size() < 2 ? "0" : std::to_string(plainNumber(prefix(value, 2)));
            break;
        case 7:
            pdu.simulation = trueOrFalse(value);
            break;
        case 8:
            pdu.confRev = std::to_string(plainNumber(prefix(value, 4)));
            break;
        case 9:
            pdu.ndsCom = trueOrFalse(value);
            break;
        case 10:
            pdu.numDatSetEntries = firstOctet(value);
            break;
        case 11:
            if (!value.empty()) pdu.allData = value;
            break;
        default:
            break;
    }
}

void setField(ASDUData& asdu, unsigned number, Bytes const& value) {
    std::uint64_t const as = plainNumber(prefix(value, 4));
    std::size_t const size = value.size();
    if (number == 0) asdu.svID.assign(value.begin(), value.end());
    if (number == 1) asdu.datSet.assign(value.begin(), value.end());
    if (number == 2 && size == 2) asdu.smpCnt = static_cast<std::uint16_t>(as);
    if (number == 3 && size == 4) asdu.confRev = static_cast<std::uint32_t>(as);
    if (number == 4) asdu.refrTm = value;
    if (number == 5 && size == 1) asdu.smpSynch = static_cast<std::uint8_t>(as);
    if (number == 6 && size == 2) asdu.smpRate = static_cast<std::uint16_t>(as);
    if (number != 7) return;
    for (std::size_t at = 0; at + 8 <= size; at += 8) {
        auto const channel = static_cast<std::uint32_t>(plainNumber(slice(value, at, 4)));
        auto const quality = static_cast<std::uint32_t>(plainNumber(slice(value, at + 4, 4)));
        asdu.samples.push_back({static_cast<std::int32_t>(channel), quality});
    }
}

ASDUData expectedAsdu(Bytes const& content) {
    ASDUData asdu;
    for (std::size_t at = 0; at + 1 < content.size();) {
        std::uint8_t const tag = content[at];
        if (tag < 0x80 || tag > 0x9F) {
            ++at;
            continue;
        }
        auto const length = shortLength(content, at + 1);
        if (!length || length->start + length->length > content.size()) break;
        setField(asdu, tag - 0x80U, slice(content, length->start, length->length));
        at = length->start + length->length;
    }
    return asdu;
}

}  // namespace

std::uint64_t plainNumber(Bytes const& value) {
    std::uint64_t number = 0;
    for (std::uint8_t const octet : value) number = number * 256 + octet;
    return number;
}

std::vector<PlainElement> plainElements(Bytes const& level) {
    std::vector<PlainElement> elements;
    for (std::size_t at = 0; at + 2 <= level.size();) {
        std::uint8_t const tag = level[at++];
        std::size_t length = level[at++];
        if (length >= 0x80) {
            std::size_t const count = length - 0x80;
            if (count == 0 || count > 4 || at + count > level.size()) break;
            length = plainNumber(slice(level, at, count));
            at += count;
        }
        if (at + length > level.size()) break;
        elements.push_back({tag, slice(level, at, length)});
        at += length;
    }
    return elements;
}

std::map<std::uint8_t, Bytes> plainFields(Bytes const& level) {
    std::map<std::uint8_t, Bytes> fields;
    for (PlainElement const& element : plainElements(level)) fields[element.tag] = element.value;
    return fields;
}

std::vector<std::map<std::uint8_t, Bytes>> plainAsdus(Bytes const& octets, std::size_t at) {
    std::vector<std::map<std::uint8_t, Bytes>> asdus;
    auto const sequence = plainElements(slice(octets, at, octets.size() - at));
    if (sequence.empty() || sequence.front().tag != 0xA2) return asdus;
    for (PlainElement const& asdu : plainElements(sequence.front().value))
        asdus.push_back(plainFields(asdu.value));
    return asdus;
}

GoosePdu expectedGoosePdu(Bytes const& file, std::uint64_t position) {
    GoosePdu pdu;
    auto const found = contentOf(file, position, 0x61);
    if (!found) return pdu;
    Bytes const& content = *found;
    std::size_t at = 0;
    for (int elements = 0; elements < 50 && at + 1 < content.size(); ++elements) {
        std::uint8_t const tag = content[at];
        std::optional<Length> length = Length{content[at + 1], at + 2};
        if (tag == 0xAB) length = shortLength(content, at + 1);
        if (!length || length->start + length->length > content.size()) break;
        at = length->start + length->length;
        if (tag >= 0x80 && tag <= 0xBF)
            setField(pdu, tag % 32U, slice(content, length->start, length->length));
    }
    return pdu;
}

std::vector<ASDUData> expectedAsdus(Bytes const& file, std::uint64_t position) {
    std::vector<ASDUData> asdus;
    auto const content = contentOf(file, position, 0xA2);
    for (std::size_t at = 0; content && at + 1 < content->size() && asdus.size() < 50;) {
        if ((*content)[at] != 0x30) {
            ++at;
            continue;
        }
        auto const length = shortLength(*content, at + 1);
        if (!length || length->start + length->length > content->size()) break;
        at = length->start + length->length;
        asdus.push_back(expectedAsdu(slice(*content, length->start, length->length)));
    }
    return asdus;
}

}  // namespace TalTest
