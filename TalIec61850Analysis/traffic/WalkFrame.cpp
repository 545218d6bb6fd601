#include <TalIec61850Analysis/packet/AsduView.hpp>
#include <TalIec61850Analysis/packet/FieldFilter.hpp>
#include <TalIec61850Analysis/packet/GooseView.hpp>
#include <TalIec61850Analysis/packet/OwnedFields.hpp>
#include <TalIec61850Analysis/packet/PduFields.hpp>
#include <TalIec61850Analysis/packet/PduFrame.hpp>
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

/// Which fields of a PDU count for the index.
struct FieldRoles {
    KnownFields known;
    /// A bit for the number of each tag whose value says which stream it is, or is an attribute.
    std::uint32_t significant = 0;
    /// Identifier octets of the counters.
    std::uint8_t first = 0;
    std::uint8_t second = 0;
};

template <typename... Tags>
constexpr std::uint32_t bitsOf(Tags... numbers) {
    return ((std::uint32_t{1} << numbers) | ...);
}

constexpr FieldRoles kGooseRoles = {
    .known = kGooseFields,
    .significant = bitsOf(wire::kGocbRef, wire::kDatSet, wire::kGoID, wire::kConfRev,
                          wire::kSimulation, wire::kNdsCom),
    .first = primitive(wire::kStNum),
    .second = primitive(wire::kSqNum)};
constexpr FieldRoles kAsduRoles = {
    .known = kAsduFields,
    .significant =
        bitsOf(wire::kSvID, wire::kAsduDatSet, wire::kAsduConfRev, wire::kSmpRate, wire::kSmpMod),
    .first = primitive(wire::kSmpCnt),
    .second = primitive(wire::kSmpSynch)};

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

    /// Sets the view's fields, and of the packet the counters and whether it is damaged. All other
    /// values are passed over.
    template <typename View>
    void walkFields(Elements const& members, FieldRoles const& roles, View& view,
                    WalkedPacket& packet) {
        FieldFilter filter(roles.known);
        for (ElementView const& element : members) {
            packet.isDamaged = packet.isDamaged || isDamage(element);
            bool const isField = filter.takes(element);
            if (isField) {
                static_cast<void>(setField(element, view));
            }
            bool const isSignificant =
                isField && wire::ber::isContextPrimitive(*element.tag) &&
                (roles.significant & bitsOf(wire::ber::tagNumber(*element.tag))) != 0;
            if (isSignificant) {
                continue;
            }
            passValue(element);
            if (isField && element.tag == roles.first) {
                packet.first = placeOf(element);
            } else if (isField && element.tag == roles.second) {
                packet.second = placeOf(element);
            }
        }
    }

    std::optional<UnreadReason> walkGoose(ElementView const& pdu) {
        GooseView view;
        WalkedPacket packet;
        walkFields(pdu.members(), kGooseRoles, view, packet);
        if (!view.gocbRef) {
            return walk_.isCut ? UnreadReason::cut : UnreadReason::noName;
        }
        packet.name = *view.gocbRef;
        packet.attributes = firstAttributes();
        packet.attributes.datSet = ownedField(view.datSet);
        packet.attributes.goID = ownedField(view.goID);
        if (view.confRev) {
            packet.attributes.confRev = numberOf(*view.confRev);
        }
        packet.attributes.simulation = ownedField(view.simulation);
        packet.attributes.ndsCom = ownedField(view.ndsCom);
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
        AsduView view;
        WalkedPacket packet;
        packet.asdu = static_cast<std::uint16_t>(number);
        packet.isDamaged = isDamage(asdu);
        walkFields(asdu.members(), kAsduRoles, view, packet);
        if (!view.svID) {
            return false;
        }
        packet.name = *view.svID;
        packet.attributes = firstAttributes();
        packet.attributes.datSet = ownedField(view.datSet);
        packet.attributes.confRev = ownedField(view.confRev);
        packet.attributes.smpRate = ownedField(view.smpRate);
        packet.attributes.smpMod = ownedField(view.smpMod);
        walk_.packets.push_back(std::move(packet));
        return true;
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
