// Elements one by one: what parseTag reads, and the booleans of all levels, as the tests read them;
// and the fields of a goosePdu.

#include <TalIec61850Parser/codec/Asn1Parser.hpp>
#include <TalIec61850Parser/goose/GooseParser.hpp>
#include <cstddef>
#include <cstdint>

#include "fuzz/Check.hpp"
#include "fuzz/DecodedPacket.hpp"
#include "index/PlainDecode.hpp"
#include "support/Bytes.hpp"

namespace {

using namespace TalIec61850Parser;
using namespace TalTest;
using TalFuzz::require;

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

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Bytes const octets(data, data + size);
    requireElements(octets);
    require(GooseParser::parseBooleanValues(octets) == TalFuzz::plainBooleans(octets),
            "the booleans");
    GoosePdu pdu;
    bool const hasMany = octets.size() >= std::size_t{2} * 50;  // fields of two octets, at least
    require(hasMany || !GooseParser::_parseGoosePdu(octets, pdu), "fields to the end");
    return 0;
}
