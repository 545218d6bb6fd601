#include "index/PlainWalk.hpp"

#include <cstdio>

namespace TalTest {
namespace {

using TalIec61850::GooseIdentifer;
using TalIec61850::HsrInfo;
using TalIec61850::PrpInfo;
using TalIec61850::SvIdentifer;
using TalIec61850::VlanInfo;

constexpr std::size_t headerSize = 8;  // APPID, Length, Reserved 1, Reserved 2
constexpr int maxElementsOnLevel = 50;

std::uint32_t twoOctets(Bytes const& octets, std::size_t at) {
    return octets.at(at) * 256U + octets.at(at + 1);
}

std::string macText(Bytes const& frame, std::size_t at) {
    std::string text;
    for (std::size_t i = 0; i < 6; ++i) {
        char pair[4];
        std::snprintf(pair, sizeof pair, "%02x", unsigned{frame.at(at + i)});
        text += (i == 0 ? "" : ":");
        text += pair;
    }
    return text;
}

char lanOf(std::uint8_t octet) { return (octet & 0x10U) != 0 ? 'B' : 'A'; }

// --- BER ---------------------------------------------------------------------------------------

struct Element {
    std::uint8_t tag = 0;
    std::size_t start = 0;
    std::size_t valueStart = 0;
    Bytes value;
};

bool readElement(Bytes const& octets, std::size_t& at, Element& element) {
    if (octets.size() < at + 2) return false;
    element.tag = octets[at];
    element.start = at;
    std::size_t length = octets[at + 1];
    at += 2;
    if (length >= 0x80) {
        std::size_t const lengthOctets = length - 0x80;
        if (lengthOctets > 4 || at + lengthOctets > octets.size()) return false;
        length = 0;
        for (std::size_t i = 0; i < lengthOctets; ++i) length = length * 256 + octets[at++];
    }
    if (at + length > octets.size()) return false;
    element.valueStart = at;
    element.value.assign(octets.begin() + static_cast<std::ptrdiff_t>(at),
                         octets.begin() + static_cast<std::ptrdiff_t>(at + length));
    at += length;
    return true;
}

std::string textOf(Bytes const& value) {
    bool printable = !value.empty();
    for (std::uint8_t octet : value) printable = printable && octet >= 0x20 && octet <= 0x7E;
    if (printable) return {value.begin(), value.end()};
    if (value.empty()) return {};
    std::string text = "[";
    for (std::size_t i = 0; i < value.size(); ++i) {
        char pair[4];
        std::snprintf(pair, sizeof pair, "%02X", unsigned{value[i]});
        text += (i == 0 ? "" : " ");
        text += pair;
    }
    return text + "]";
}

std::uint64_t upToFourOctets(Bytes const& value) {
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < value.size() && i < 4; ++i) number = number * 256 + value[i];
    return number;
}

std::uint16_t twoOctetsOrZero(Bytes const& value) {
    return static_cast<std::uint16_t>(value.size() < 2 ? 0 : value[0] * 256 + value[1]);
}

bool isContextPrimitive(std::uint8_t tag) { return tag >= 0x80 && tag <= 0x9F; }
bool isContextConstructed(std::uint8_t tag) { return tag >= 0xA0 && tag <= 0xBF; }

// --- The filter rule ---------------------------------------------------------------------------

/// One criterion over the whole list: some entry leaves it open or holds the frame's value.
template <typename Entry, typename Criterion, typename Value>
bool admits(std::vector<Entry> const& wanted, Criterion criterion, Value const& value) {
    if (wanted.empty()) return true;
    for (Entry const& entry : wanted) {
        auto const asked = criterion(entry);
        if (!asked.has_value() || asked.value() == value) return true;
    }
    return false;
}

template <typename Entry, typename Value>
bool admits(std::vector<Entry> const& wanted, std::optional<Value> Entry::*member,
            std::optional<Value> const& value) {
    return admits(
        wanted, [member](Entry const& entry) { return entry.*member; }, value.value());
}

template <typename Entry>
bool readLinkIdentity(PlainLink const& link, std::vector<Entry> const& wanted, Entry& id) {
    id.srcMac = link.srcMac;
    if (!admits(wanted, &Entry::srcMac, id.srcMac)) return false;
    id.dstMac = link.dstMac;
    if (!admits(wanted, &Entry::dstMac, id.dstMac)) return false;
    if (link.vlanId) {
        auto const asked = [](Entry const& e) {
            return e.vlan ? e.vlan->vlanId : std::optional<std::uint16_t>();
        };
        if (!admits(wanted, asked, *link.vlanId)) return false;
        id.vlan = VlanInfo();
        id.vlan->vlanId = link.vlanId;
    }
    if (link.hsrLan) {
        auto const asked = [](Entry const& e) {
            return e.hsr ? e.hsr->lanId : std::optional<char>();
        };
        if (!admits(wanted, asked, *link.hsrLan)) return false;
        id.hsr = HsrInfo();
        id.hsr->lanId = link.hsrLan;
    }
    if (link.prpLan) {
        auto const asked = [](Entry const& e) {
            return e.prp ? e.prp->lanId : std::optional<char>();
        };
        if (!admits(wanted, asked, *link.prpLan)) return false;
        id.prp = PrpInfo();
        id.prp->lanId = link.prpLan;
    }
    return true;
}

/// Link layer, APPID and the Reserved 1 bit.
template <typename Entry>
bool readHeader(PlainFrame const& frame, PlainLink const& link, std::vector<Entry> const& wanted,
                Entry& id) {
    if (!readLinkIdentity(link, wanted, id)) return false;
    if (frame.octets.size() < link.payload + headerSize + 1) return false;
    id.appId = twoOctets(frame.octets, link.payload);
    if (!admits(wanted, &Entry::appId, id.appId)) return false;
    id.reserved1Bit0 = static_cast<std::uint8_t>(frame.octets.at(link.payload + 5) % 2);
    return admits(wanted, &Entry::reserved1Bit0, id.reserved1Bit0);
}

Bytes pduOf(PlainFrame const& frame, PlainLink const& link) {
    return {frame.octets.begin() + static_cast<std::ptrdiff_t>(link.payload + headerSize),
            frame.octets.end()};
}

// --- GOOSE -------------------------------------------------------------------------------------

struct GooseWalk {
    PlainFrame const& frame;
    std::vector<GooseIdentifer> const& wanted;
    GooseIdentifer& id;
    PacketImage& packet;

    bool level(Bytes const& octets, int depth, std::uint64_t fileOffset) {
        std::size_t at = 0;
        Element element;
        for (int count = 0; count < maxElementsOnLevel && at < octets.size(); ++count) {
            if (!readElement(octets, at, element)) return true;
            if (!visit(element, depth, fileOffset)) return false;
        }
        return true;
    }

    bool visit(Element const& element, int depth, std::uint64_t fileOffset) {
        if (element.tag == 0x61) {
            packet = {frame.seconds, frame.nanoseconds, fileOffset + element.start};
            return below(element, depth + 1, fileOffset);
        }
        if (depth == 2 && isContextPrimitive(element.tag)) return field(element, fileOffset);
        if (depth >= 3 && isContextPrimitive(element.tag)) {
            if (element.tag == 0x81 || element.tag == 0x82)
                return below(element, depth + 1, fileOffset);
            return true;
        }
        if (element.tag == 0x30 || isContextConstructed(element.tag))
            return below(element, depth + 1, fileOffset);
        return true;
    }

    bool below(Element const& element, int depth, std::uint64_t fileOffset) {
        return level(Bytes(element.value), depth, fileOffset + element.valueStart);
    }

    bool field(Element const& element, std::uint64_t fileOffset) {
        Bytes const& value = element.value;
        switch (element.tag) {
            case 0x80:
                id.gocbRef = textOf(value);
                return admits(wanted, &GooseIdentifer::gocbRef, id.gocbRef);
            case 0x82:
                if (value.empty()) return true;
                id.datSet = textOf(value);
                return admits(wanted, &GooseIdentifer::datSet, id.datSet);
            case 0x83:
                if (value.empty()) return true;
                id.goID = textOf(value);
                return admits(wanted, &GooseIdentifer::goID, id.goID);
            case 0x87:
                id.simulation = true;
                return admits(wanted, &GooseIdentifer::simulation, id.simulation);
            case 0x88:
                id.confRev = upToFourOctets(value);
                return admits(wanted, &GooseIdentifer::confRev, id.confRev);
            case 0x8B:
                return below(element, 3, fileOffset);
            default:
                return true;
        }
    }
};

// --- Sampled Values ----------------------------------------------------------------------------

struct SvWalk {
    PlainFrame const& frame;
    std::vector<SvIdentifer> const& wanted;
    PlainSv& sv;
    PacketImage& packet;

    bool level(Bytes const& octets, std::uint64_t fileOffset, bool inAsdu) {
        std::size_t at = 0;
        Element element;
        for (int count = 0; count < maxElementsOnLevel && at < octets.size(); ++count) {
            if (!readElement(octets, at, element)) return true;
            if (element.tag == 0x30) inAsdu = true;
            if (!visit(element, fileOffset, inAsdu)) return false;
        }
        return true;
    }

    bool visit(Element const& element, std::uint64_t fileOffset, bool inAsdu) {
        if (element.tag == 0xA2)
            packet = {frame.seconds, frame.nanoseconds, fileOffset + element.start};
        if (isContextPrimitive(element.tag)) {
            if (inAsdu) return field(element);
            if (element.tag == 0x80) sv.noASDU = element.value.empty() ? 0 : element.value[0];
            return true;
        }
        if (element.tag == 0x30 || element.tag == 0x60 || isContextConstructed(element.tag))
            return level(Bytes(element.value), fileOffset + element.valueStart, inAsdu);
        return true;
    }

    bool field(Element const& element) {
        switch (element.tag) {
            case 0x80:
                sv.id.svID = textOf(element.value);
                return admits(wanted, &SvIdentifer::svID, sv.id.svID);
            case 0x82:
                sv.smpCnt = twoOctetsOrZero(element.value);
                return true;
            case 0x83:
                sv.id.confRev = upToFourOctets(element.value);
                return admits(wanted, &SvIdentifer::confRev, sv.id.confRev);
            case 0x86:
                sv.smpRate = twoOctetsOrZero(element.value);
                return true;
            default:
                return true;
        }
    }
};

}  // namespace

std::optional<PlainLink> readLink(Bytes const& frame) {
    if (frame.size() < 14) return std::nullopt;
    PlainLink link;
    link.dstMac = macText(frame, 0);
    link.srcMac = macText(frame, 6);
    link.etherType = twoOctets(frame, 12);
    link.payload = 14;
    if (link.etherType == 0x8100) {
        if (frame.size() < 18) return std::nullopt;
        link.vlanId = static_cast<std::uint16_t>(twoOctets(frame, 14) & 0x0FFFU);
        link.etherType = twoOctets(frame, 16);
        link.payload = 18;
    }
    if (link.etherType == 0x892F) {
        if (frame.size() < link.payload + 6) return std::nullopt;
        link.hsrLan = lanOf(frame.at(link.payload));
        link.etherType = twoOctets(frame, link.payload + 4);
        link.payload += 6;
    }
    if (twoOctets(frame, frame.size() - 2) == 0x88FB) link.prpLan = lanOf(frame[frame.size() - 4]);
    return link;
}

bool readGoose(PlainFrame const& frame, PlainLink const& link,
               std::vector<GooseIdentifer> const& wanted, PlainGoose& goose, PacketImage& packet) {
    if (!readHeader(frame, link, wanted, goose.id)) return false;
    std::uint64_t const pduOffset = frame.fileOffset + link.payload + headerSize;
    return GooseWalk{frame, wanted, goose.id, packet}.level(pduOf(frame, link), 1, pduOffset);
}

bool readSv(PlainFrame const& frame, PlainLink const& link, std::vector<SvIdentifer> const& wanted,
            PlainSv& sv, PacketImage& packet) {
    if (!readHeader(frame, link, wanted, sv.id)) return false;
    std::uint64_t const pduOffset = frame.fileOffset + link.payload + headerSize;
    return SvWalk{frame, wanted, sv, packet}.level(pduOf(frame, link), pduOffset, false);
}

}  // namespace TalTest
