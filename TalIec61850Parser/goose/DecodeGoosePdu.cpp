// The operations of GooseParser that decode one packet in full.

#include <TalIec61850Parser/codec/BerValue.hpp>
#include <TalIec61850Parser/codec/BerWalk.hpp>
#include <TalIec61850Parser/codec/ReadElementContent.hpp>
#include <TalIec61850Parser/goose/GooseParser.hpp>
#include <TalIec61850Parser/wire/GooseTags.hpp>
#include <TalIec61850Parser/wire/ShortLength.hpp>
#include <optional>

namespace TalIec61850Parser {

namespace {

using wire::Octets;
using enum wire::GooseField;
namespace ber = wire::ber;

constexpr int kMaxFields = 50;

std::string toFlag(Octets value) { return detail::toUint8(value) != 0 ? "true" : "false"; }

/// Puts one context-specific field where its tag number says; higher numbers are passed over.
void takeField(std::uint8_t number, Octets value, GoosePdu& pdu) {
    switch (number) {
        case kGocbRef:
            pdu.gocbRef = detail::toText(value);
            break;
        case kTimeAllowedToLive:
            pdu.timeAllowedToLive = std::to_string(detail::toUint32(value));
            break;
        case kDatSet:
            pdu.datSet = detail::toText(value);
            break;
        case kGoID:
            pdu.goID = detail::toText(value);
            break;
        case kEventTime:
            pdu.t = detail::gooseTimeToDateTime(value);
            break;
        case kStNum:
            pdu.stNum = std::to_string(detail::toUint8(value));
            break;
        case kSqNum:
            pdu.sqNum = std::to_string(detail::toUint16(value));
            break;
        case kSimulation:
            pdu.simulation = toFlag(value);
            break;
        case kConfRev:
            pdu.confRev = std::to_string(detail::toUint32(value));
            break;
        case kNdsCom:
            pdu.ndsCom = toFlag(value);
            break;
        case kNumDatSetEntries:
            pdu.numDatSetEntries = std::to_string(detail::toUint8(value));
            break;
        case kAllData:
            if (!value.empty()) {
                pdu.allData.assign(value.begin(), value.end());
            }
            break;
        default:
            break;
    }
}

/// The length at `position`. Deliberate: only that of allData has a long form, any other length
/// octet is the length itself.
std::optional<wire::ShortLength> readFieldLength(std::uint8_t tag, Octets content,
                                                 std::size_t position) {
    return tag == wire::kAllDataTag ? wire::readShortLength(content, position)
                                    : wire::ShortLength{.length = content[position], .size = 1};
}

}  // namespace

GoosePdu GooseParser::parseGoosePDUFromFile(std::string const& fileName, std::uint64_t position) {
    GoosePdu pdu;
    if (auto const content = detail::readElementContent(fileName, position, wire::kGoosePdu)) {
        static_cast<void>(_parseGoosePdu(*content, pdu));  // the fields before damage stay
    }
    return pdu;
}

bool GooseParser::_parseGoosePdu(std::vector<std::uint8_t> const& content, GoosePdu& pdu) {
    std::size_t position = 0;
    for (int fields = 0; fields < kMaxFields; ++fields) {
        if (content.size() - position < 2) {
            return false;
        }
        std::uint8_t const tag = content[position];
        auto const length = readFieldLength(tag, content, position + 1);
        if (!length) {
            return false;
        }
        std::size_t const valueStart = position + 1 + length->size;
        if (content.size() - valueStart < length->length) {
            return false;
        }
        if (ber::isContext(tag)) {
            takeField(ber::tagNumber(tag), Octets(content).subspan(valueStart, length->length),
                      pdu);
        }
        position = valueStart + length->length;
    }
    return true;
}

std::vector<float> GooseParser::parseBooleanValues(std::vector<std::uint8_t> const& allData) {
    std::vector<float> values;
    _extractBooleanValues(allData, values);
    return values;
}

void GooseParser::_extractBooleanValues(std::vector<std::uint8_t> const& data,
                                        std::vector<float>& out) {
    static_cast<void>(detail::walkElements<detail::kUnlimited>(
        data, {}, [&](wire::BerElement const& element, std::size_t position, auto const&) {
            if (data[position + 1] == ber::kLongForm) {
                return detail::WalkStep::endLevel;  // no indefinite form here
            }
            if (element.tag == wire::kBoolean && element.value.size() == 1) {
                out.push_back(element.value.front() != 0 ? 1.0F : 0.0F);
            }
            // Deliberate: a structure in its usual, constructed form is passed over.
            return element.tag == wire::kPrimitiveStructure ? detail::WalkStep::descend
                                                            : detail::WalkStep::next;
        }));
}

}  // namespace TalIec61850Parser
