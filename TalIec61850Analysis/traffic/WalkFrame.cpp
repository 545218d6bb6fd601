#include <TalIec61850Analysis/packet/FieldFilter.hpp>
#include <TalIec61850Analysis/packet/PduFrame.hpp>
#include <TalIec61850Analysis/packet/Reading.hpp>
#include <TalIec61850Analysis/packet/RedundancyFit.hpp>
#include <TalIec61850Analysis/traffic/WalkFrame.hpp>
#include <TalIec61850Parser/wire/Ethernet.hpp>
#include <TalIec61850Parser/wire/GooseTags.hpp>
#include <TalIec61850Parser/wire/SvTags.hpp>
#include <algorithm>
#include <limits>
#include <string>
#include <variant>

namespace TalIec61850Analysis::detail {

namespace {

namespace wire = TalIec61850Parser::wire;
using wire::ber::primitive;

constexpr KnownFields kWalkedGoose = {.primitiveEnd = wire::kNumDatSetEntries + 1,
                                      .constructed = wire::kAllDataTag};
constexpr KnownFields kWalkedAsdu = {.primitiveEnd = wire::kGmIdentity + 1};

Readable<std::uint64_t> numberOf(ReadableView<std::uint64_t> const& number) {
    return toOwned(number);
}

/// A number that is sent as an INTEGER, and has no sign.
Readable<std::uint64_t> numberOf(IntegerView const& integer) {
    if (auto const* const octets = std::get_if<Octets>(&integer)) {
        return toOwned(*octets);
    }
    if (auto const* const number = std::get_if<std::int64_t>(&integer)) {
        return static_cast<std::uint64_t>(*number);
    }
    return std::get<std::uint64_t>(integer);
}

CounterPlace placeOf(ElementView const& element) {
    return {.offset = static_cast<std::uint32_t>(element.valueOffset),
            .size = static_cast<std::uint32_t>(element.octets.size())};
}

class FrameWalker {
public:
    FrameWalker(Octets frame, FrameOrigin const& origin, FrameWalk& walk)
        : frame_(frame),
          readable_(readablePart(frame)),
          origin_(origin),
          isSnapped_(origin.originalSize > frame.size()),
          walk_(walk) {}

    void run() {
        walk_.header = readFrameStart(readable_, origin_.linkType);
        FrameHeader const& header = walk_.header;
        walk_.lsduOffset = lsduOffsetOf(header, origin_.linkType);
        walk_.pduEnd = header.size;
        walk_.pduOffset = header.size;
        walk_.protocol.reset();
        walk_.unread.reset();
        walk_.isCut = false;
        walk_.packets.clear();
        if (header.isGoose() || header.isSv()) {
            walk_.protocol = header.isGoose() ? StreamProtocol::goose : StreamProtocol::sv;
            walk_.unread = walkPdu();
        }
    }

private:
    void pass(std::size_t start, std::size_t end) {
        std::fill(walk_.mask.begin() + static_cast<std::ptrdiff_t>(start),
                  walk_.mask.begin() + static_cast<std::ptrdiff_t>(end), std::uint8_t{0});
    }
    /// Nothing depends on the value of an element. Where it has no tag, its octets are what was to
    /// be an identifier and a length.
    void passValue(ElementView const& element) {
        if (element.tag) {
            pass(element.valueOffset, element.end());
        }
    }

    std::optional<UnreadReason> walkPdu() {
        FrameHeader const& header = walk_.header;
        walk_.mask.assign(frame_.size(), 0xFF);
        if (header.hsr) {
            // Only their sizes are known: path, size and sequence number are read of each packet.
            pass(walk_.lsduOffset, walk_.lsduOffset + wire::kHsrTagSize);
        }
        if (!header.reserved2) {
            return isSnapped_ ? UnreadReason::cut : UnreadReason::headerCut;
        }
        bool const isGoose = *walk_.protocol == StreamProtocol::goose;
        auto const pdu =
            elementAt(readable_, header.size, isGoose ? wire::kGoosePdu : wire::kSavPdu);
        if (!pdu) {
            bool const isMissing =
                isSnapped_ && isStartOf(isGoose ? wire::kGoosePdu : wire::kSavPdu);
            return isMissing ? UnreadReason::cut : UnreadReason::noPdu;
        }
        walk_.pduEnd = pdu->claimedEnd;
        pass(pdu->end(), frame_.size());
        if (pdu->fault) {
            if (!isSnapped_) {
                return UnreadReason::pduPastFrame;
            }
            walk_.isCut = true;
        }
        return isGoose ? walkGoose(*pdu) : walkSv(*pdu);
    }

    /// Whether the octets after the header end within identifier and length of such a PDU.
    [[nodiscard]] bool isStartOf(std::uint8_t tag) const {
        auto const pdu = wire::readBerHeader(readable_.subspan(walk_.header.size));
        return pdu.form == wire::BerForm::cut && (pdu.tag == tag || pdu.tag == 0);
    }

    [[nodiscard]] StreamAttributes firstAttributes() const {
        StreamAttributes attributes;
        attributes.isCut = walk_.isCut;
        attributes.simulatedBit = walk_.header.simulated();
        return attributes;
    }

    /// What runs past a capture that is cut is no damage.
    [[nodiscard]] bool isDamage(ElementView const& element) const {
        return element.fault && !(walk_.isCut && element.fault == FaultKind::pastCapture);
    }

    std::optional<UnreadReason> walkGoose(ElementView const& pdu) {
        WalkedPacket packet;
        packet.attributes = firstAttributes();
        bool hasName = false;
        FieldFilter filter(kWalkedGoose);
        for (ElementView const& element : pdu.members()) {
            packet.isDamaged = packet.isDamaged || isDamage(element);
            if (!filter.takes(element)) {
                passValue(element);
                continue;
            }
            StreamAttributes& attributes = packet.attributes;
            switch (*element.tag) {
                case primitive(wire::kGocbRef):
                    packet.name = readText(element.octets).value;
                    hasName = true;
                    break;
                case primitive(wire::kDatSet):
                    attributes.datSet = readText(element.octets).value;
                    break;
                case primitive(wire::kGoID):
                    attributes.goID = readText(element.octets).value;
                    break;
                case primitive(wire::kConfRev):
                    attributes.confRev = numberOf(readCounter(element.octets).value);
                    break;
                case primitive(wire::kSimulation):
                    attributes.simulation = toOwned(readBoolean(element.octets).value);
                    break;
                case primitive(wire::kNdsCom):
                    attributes.ndsCom = toOwned(readBoolean(element.octets).value);
                    break;
                case primitive(wire::kStNum):
                    packet.first = placeOf(element);
                    passValue(element);
                    break;
                case primitive(wire::kSqNum):
                    packet.second = placeOf(element);
                    passValue(element);
                    break;
                default:
                    passValue(element);
            }
        }
        if (!hasName) {
            return walk_.isCut ? UnreadReason::cut : UnreadReason::noName;
        }
        walk_.packets.push_back(std::move(packet));
        return std::nullopt;
    }

    std::optional<UnreadReason> walkSv(ElementView const& pdu) {
        std::optional<ElementView> sequence;
        bool isDamaged = false;
        for (ElementView const& element : pdu.members()) {
            isDamaged = isDamaged || isDamage(element);
            if (!sequence && element.tag == wire::kSequenceOfAsdu) {
                sequence = element;
            } else {
                passValue(element);
            }
        }
        bool const isHeld =
            sequence && sequence->offset <= std::numeric_limits<std::uint16_t>::max();
        if (!isHeld) {
            return walk_.isCut && !sequence ? UnreadReason::cut : UnreadReason::noAsdu;
        }
        walk_.pduOffset = sequence->offset;
        bool lacksName = false;
        std::uint32_t asdus = 0;
        for (ElementView const& element : sequence->members()) {
            if (element.tag != wire::kAsdu) {
                isDamaged = isDamaged || isDamage(element);
                passValue(element);
                continue;
            }
            bool const isNamed = walkAsdu(element, asdus++);
            lacksName = lacksName || !(isNamed || (walk_.isCut && element.fault));
        }
        for (WalkedPacket& packet : walk_.packets) {
            packet.isDamaged = packet.isDamaged || isDamaged;
            packet.attributes.asdus = walk_.isCut ? 0 : asdus;
        }
        if (lacksName) {
            return UnreadReason::noName;
        }
        if (walk_.packets.empty()) {
            return walk_.isCut ? UnreadReason::cut : UnreadReason::noAsdu;
        }
        return std::nullopt;
    }

    /// @return whether the ASDU has a svID
    bool walkAsdu(ElementView const& asdu, std::uint32_t number) {
        WalkedPacket packet;
        packet.attributes = firstAttributes();
        packet.asdu = static_cast<std::uint16_t>(number);
        packet.isDamaged = isDamage(asdu);
        bool hasName = false;
        FieldFilter filter(kWalkedAsdu);
        for (ElementView const& element : asdu.members()) {
            packet.isDamaged = packet.isDamaged || isDamage(element);
            if (!filter.takes(element)) {
                passValue(element);
                continue;
            }
            StreamAttributes& attributes = packet.attributes;
            switch (*element.tag) {
                case primitive(wire::kSvID):
                    packet.name = readText(element.octets).value;
                    hasName = true;
                    break;
                case primitive(wire::kAsduDatSet):
                    attributes.datSet = readText(element.octets).value;
                    break;
                case primitive(wire::kAsduConfRev):
                    attributes.confRev = numberOf(readUnsigned(element.octets));
                    break;
                case primitive(wire::kSmpRate):
                    attributes.smpRate = numberOf(readUnsigned(element.octets));
                    break;
                case primitive(wire::kSmpMod):
                    attributes.smpMod = numberOf(readUnsigned(element.octets));
                    break;
                case primitive(wire::kSmpCnt):
                    packet.first = placeOf(element);
                    passValue(element);
                    break;
                case primitive(wire::kSmpSynch):
                    packet.second = placeOf(element);
                    passValue(element);
                    break;
                default:
                    passValue(element);
            }
        }
        if (hasName) {
            walk_.packets.push_back(std::move(packet));
        }
        return hasName;
    }

    Octets frame_;
    Octets readable_;
    FrameOrigin const& origin_;
    bool isSnapped_;
    FrameWalk& walk_;
};

}  // namespace

StreamKey FrameWalk::keyOf(WalkedPacket const& packet) const {
    StreamKey key;
    key.protocol = protocol.value_or(StreamProtocol::goose);
    key.source = header.source;
    key.destination = header.destination;
    for (VlanTag const& tag : header.vlanTags) {
        key.vlans.push_back({.tpid = tag.tpid, .id = tag.id});
    }
    key.appId = header.appId.value_or(0);
    key.name = packet.name;
    return key;
}

void walkFrame(Octets frame, FrameOrigin const& origin, FrameWalk& walk) {
    FrameWalker(frame, origin, walk).run();
}

}  // namespace TalIec61850Analysis::detail
