#include <TalIec61850Parser/codec/Asn1Parser.hpp>
#include <TalIec61850Parser/codec/BerValue.hpp>
#include <TalIec61850Parser/wire/BerReader.hpp>

namespace TalIec61850Parser {

bool Asn1Parser::parseTag(std::vector<std::uint8_t> const& data, std::size_t& position,
                          Asn1Tag& tag) {
    wire::BerElement element{.tag = tag.tag, .headerSize = 0, .value = {}};
    bool const isWhole = wire::readElement(data, position, element);
    tag.tag = element.tag;
    if (!isWhole) {
        return false;
    }
    tag.length = static_cast<std::uint32_t>(element.value.size());
    tag.value.assign(element.value.begin(), element.value.end());
    tag.totalLength = tag.length + std::uint32_t{element.headerSize};  // 32-bit sum
    return true;
}

std::uint32_t Asn1Parser::bytesToUint32(std::vector<std::uint8_t> const& bytes) {
    return detail::toUint32(bytes);
}

std::uint16_t Asn1Parser::bytesToUint16(std::vector<std::uint8_t> const& bytes) {
    return detail::toUint16(bytes);
}

std::uint8_t Asn1Parser::bytesToUint8(std::vector<std::uint8_t> const& bytes) {
    return detail::toUint8(bytes);
}

std::string Asn1Parser::formatBytes(std::vector<std::uint8_t> const& bytes) {
    return detail::toHexDump(bytes);
}

std::string Asn1Parser::bytesToString(std::vector<std::uint8_t> const& bytes) {
    return detail::toText(bytes);
}

std::string Asn1Parser::convertGooseTimestampToDateTime(std::vector<std::uint8_t> const& bytes) {
    return detail::gooseTimeToDateTime(bytes);
}

std::string Asn1Parser::convertBytesToTimestamp(std::vector<std::uint8_t> const& bytes) {
    return detail::timestampToDecimal(bytes);
}

std::string Asn1Parser::convertRefrTmToDateTime(std::vector<std::uint8_t> const& bytes) {
    return detail::referenceTimeToDateTime(bytes);
}

}  // namespace TalIec61850Parser
