// Elements and renderers: parseTag against the elements that the tests read, and every text or
// number that octets are rendered as, as far as it can be told otherwise.

#include <TalIec61850Parser/cli/MemoryInfo.hpp>
#include <TalIec61850Parser/codec/Asn1Parser.hpp>
#include <TalIec61850Parser/codec/BytesConverter.hpp>
#include <TalIec61850Parser/goose/GooseParser.hpp>
#include <TalIec61850Parser/sv/SvParser.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz/Check.hpp"
#include "index/PlainDecode.hpp"
#include "support/Bytes.hpp"

namespace {

using namespace TalIec61850Parser;
using namespace TalTest;
using TalFuzz::require;

bool isPrintable(Bytes const& octets) {
    return std::all_of(octets.begin(), octets.end(),
                       [](std::uint8_t octet) { return octet >= 0x20 && octet <= 0x7E; });
}

std::string hexDump(Bytes const& octets) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    if (octets.empty()) return {};
    std::string text(3 * octets.size() + 1, ' ');
    text.front() = '[';
    for (std::size_t i = 0; i < octets.size(); ++i) {
        text[3 * i + 1] = digits[octets[i] >> 4U];
        text[3 * i + 2] = digits[octets[i] & 0xFU];
    }
    text.back() = ']';
    return text;
}

/// The elements of a level up to the first that is not of definite length, which parseTag reads
/// and the tests' reader does not.
void requireElements(Bytes const& octets) {
    std::size_t position = 0;
    Asn1Tag tag;
    for (PlainElement const& element : plainElements(octets)) {
        std::size_t const begin = position;
        require(Asn1Parser::parseTag(octets, position, tag), "an element is read");
        require(tag.tag == element.tag && tag.value == element.value, "the element itself");
        require(tag.length == tag.value.size(), "its length");
        require(tag.totalLength == position - begin, "its size");
    }
    for (std::size_t last = position; position < octets.size(); last = position) {
        bool const isRead = Asn1Parser::parseTag(octets, position, tag);
        require(position <= octets.size() && position > last, "reading goes on, and not too far");
        if (!isRead) break;
    }
}

void requireNumbers(Bytes const& octets) {
    require(Asn1Parser::bytesToUint32(octets) == plainNumber(prefix(octets, 4)), "32 bits");
    std::uint64_t const two = octets.size() < 2 ? 0 : plainNumber(prefix(octets, 2));
    require(Asn1Parser::bytesToUint16(octets) == two, "16 bits");
    require(Asn1Parser::bytesToUint8(octets) == plainNumber(prefix(octets, 1)), "8 bits");
    auto const number = static_cast<std::uint32_t>(plainNumber(prefix(octets, 4)));
    auto const swapped = BytesConverter::convertUint32(number, false);
    require(BytesConverter::convertUint32(swapped, false) == number, "swapped twice");
    require(BytesConverter::convertUint32(number, true) == number, "the machine's own order");
}

void requireTexts(Bytes const& octets) {
    std::string const dump = hexDump(octets);
    require(Asn1Parser::formatBytes(octets) == dump, "a dump");
    std::string const rendered = Asn1Parser::bytesToString(octets);
    require(isPrintable(octets)
                ? std::equal(rendered.begin(), rendered.end(), octets.begin(), octets.end())
                : rendered == dump,
            "a text");
    std::string const time = Asn1Parser::convertGooseTimestampToDateTime(octets);
    require(!time.empty() && isPrintable(text(time)), "a time");
    require(time.starts_with("0x") || octets.size() == 8 || octets.size() == 6 ||
                octets.size() == 4 || (octets.empty() && time == "Empty timestamp"),
            "a time of few sizes");
    std::string const decimal = Asn1Parser::convertBytesToTimestamp(octets);
    require(!decimal.empty() && decimal.find_first_not_of("0123456789") == std::string::npos,
            "digits");
    if (octets.size() == 4 || octets.size() == 8)
        require(decimal == std::to_string(plainNumber(octets)), "a decimal number");
    std::string const reference = Asn1Parser::convertRefrTmToDateTime(octets);
    require((reference == "Invalid refrTm data") == (octets.size() < 8), "a reference time");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Bytes const octets(data, data + size);
    requireElements(octets);
    requireNumbers(octets);
    requireTexts(octets);
    GoosePdu pdu;
    static_cast<void>(GooseParser::_parseGoosePdu(octets, pdu));
    static_cast<void>(GooseParser::parseBooleanValues(octets));
    SvParser::_parseSampleDataWithQuality(octets, "");
    require(!cross::MemoryInfo::bytesToString(plainNumber(prefix(octets, 8))).empty(), "a size");
    return 0;
}
