// Every number, text and time that octets are rendered as, as far as it can be told otherwise.

#include <TalIec61850Parser/cli/MemoryInfo.hpp>
#include <TalIec61850Parser/codec/Asn1Parser.hpp>
#include <TalIec61850Parser/codec/BytesConverter.hpp>
#include <TalIec61850Parser/sv/SvParser.hpp>
#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

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

void requireNumbers(Bytes const& octets) {
    require(Asn1Parser::bytesToUint32(octets) == plainNumber(prefix(octets, 4)), "32 bits");
    std::uint64_t const two = octets.size() < 2 ? 0 : plainNumber(prefix(octets, 2));
    require(Asn1Parser::bytesToUint16(octets) == two, "16 bits");
    require(Asn1Parser::bytesToUint8(octets) == plainNumber(prefix(octets, 1)), "8 bits");
}

/// Numbers of any width, out of the first octets: in the machine's order they stay, in the other
/// they are reversed, twice they are what they were.
template <typename Integer>
void requireConversion(Bytes const& octets, Integer (*convert)(Integer, bool)) {
    Integer number{};
    std::copy_n(octets.begin(), std::min(octets.size(), sizeof number),
                reinterpret_cast<std::uint8_t*>(&number));
    bool const isLittle = BytesConverter::_isSystemLittleEndian();
    Integer const other = convert(number, !isLittle);
    auto const as = [](Integer value) {
        return std::bit_cast<std::array<char, sizeof value>>(value);
    };
    auto const forward = as(number);
    auto const backward = as(other);
    require(convert(number, isLittle) == number, "a number in the machine's order");
    require(std::equal(forward.begin(), forward.end(), backward.rbegin()), "one in the other");
    require(convert(other, !isLittle) == number, "one that was reversed twice");
}

void requireConversions(Bytes const& octets) {
    requireConversion(octets, BytesConverter::convertUint16);
    requireConversion(octets, BytesConverter::convertInt16);
    requireConversion(octets, BytesConverter::convertUint32);
    requireConversion(octets, BytesConverter::convertInt32);
    requireConversion(octets, BytesConverter::convertUint64);
    requireConversion(octets, BytesConverter::convertInt64);
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
    requireNumbers(octets);
    requireConversions(octets);
    requireTexts(octets);
    SvParser::_parseSampleDataWithQuality(octets, "");
    require(!cross::MemoryInfo::bytesToString(plainNumber(prefix(octets, 8))).empty(), "a size");
    return 0;
}
