#include "support/Ethernet.hpp"

#include <algorithm>
#include <stdexcept>

namespace TalTest {
namespace {

constexpr std::size_t addressesSize = 12;
constexpr std::size_t etherTypeSize = 2;
constexpr std::size_t vlanTagSize = 4;
constexpr std::size_t hsrTagSize = 6;
constexpr std::size_t prpTrailerSize = 6;
constexpr std::size_t minimumFrameSize = 60;

std::uint8_t hexDigit(char digit) {
    constexpr std::string_view digits = "0123456789abcdef";
    auto const lower = digit >= 'A' && digit <= 'F' ? static_cast<char>(digit + 32) : digit;
    auto const value = digits.find(lower);
    if (value == std::string_view::npos) {
        throw std::invalid_argument("not a MAC address");
    }
    return static_cast<std::uint8_t>(value);
}

std::uint64_t laneBit(char lan) { return lan == 'B' ? 1U : 0U; }

Bytes vlanTag(Ethernet const& ethernet) {
    std::uint64_t const control = (ethernet.vlanPriority & 0x7U) << 13 |
                                  (ethernet.vlanDei ? 0x1000U : 0U) | (*ethernet.vlanId & 0xFFFU);
    return concat({bigEndian(etherTypeVlan, 2), bigEndian(control, 2)});
}

// The size counts everything after the tag's own EtherType.
Bytes hsrTag(Ethernet const& ethernet, std::size_t payloadSize) {
    std::uint64_t const size = (payloadSize + hsrTagSize) & 0xFFF;
    return concat({bigEndian(etherTypeHsr, 2), bigEndian(laneBit(*ethernet.hsrLan) << 12 | size, 2),
                   bigEndian(ethernet.hsrSequence, 2)});
}

// The LAN identifiers are 1010 and 1011; the size counts the trailer too.
Bytes prpTrailer(Ethernet const& ethernet, std::size_t lsduSize) {
    std::uint64_t const lan = 0xA | laneBit(*ethernet.prpLan);
    std::uint64_t const size = (lsduSize + prpTrailerSize) & 0xFFF;
    return concat({bigEndian(ethernet.prpSequence, 2), bigEndian(lan << 12 | size, 2),
                   bigEndian(prpSuffix, 2)});
}

}  // namespace

Ethernet Ethernet::to(std::string_view address) const {
    Ethernet copy = *this;
    copy.destination = address;
    return copy;
}

Ethernet Ethernet::from(std::string_view address) const {
    Ethernet copy = *this;
    copy.source = address;
    return copy;
}

Ethernet Ethernet::withVlan(std::uint16_t id, std::uint8_t priority, bool dei) const {
    Ethernet copy = *this;
    copy.vlanId = id;
    copy.vlanPriority = priority;
    copy.vlanDei = dei;
    return copy;
}

Ethernet Ethernet::withHsr(char lan, std::uint16_t sequence) const {
    Ethernet copy = *this;
    copy.hsrLan = lan;
    copy.hsrSequence = sequence;
    return copy;
}

Ethernet Ethernet::withPrp(char lan, std::uint16_t sequence) const {
    Ethernet copy = *this;
    copy.prpLan = lan;
    copy.prpSequence = sequence;
    return copy;
}

Ethernet Ethernet::withPadding() const {
    Ethernet copy = *this;
    copy.padded = true;
    return copy;
}

Bytes macAddress(std::string_view address) {
    constexpr std::size_t textSize = 17;
    if (address.size() != textSize) {
        throw std::invalid_argument("not a MAC address");
    }
    Bytes octets;
    octets.reserve(addressesSize / 2);
    for (std::size_t i = 0; i < textSize; i += 3) {
        if (i > 0 && address[i - 1] != ':') {
            throw std::invalid_argument("not a MAC address");
        }
        octets.push_back(
            static_cast<std::uint8_t>(hexDigit(address[i]) << 4 | hexDigit(address[i + 1])));
    }
    return octets;
}

std::size_t payloadOffset(Ethernet const& ethernet) {
    return addressesSize + etherTypeSize + (ethernet.vlanId ? vlanTagSize : 0) +
           (ethernet.hsrLan ? hsrTagSize : 0);
}

Bytes ethernetFrame(Ethernet const& ethernet, std::uint16_t etherType, Bytes const& payload) {
    Bytes frame = concat({macAddress(ethernet.destination), macAddress(ethernet.source)});
    if (ethernet.vlanId) {
        append(frame, vlanTag(ethernet));
    }
    if (ethernet.hsrLan) {
        append(frame, hsrTag(ethernet, payload.size()));
    }
    append(frame, bigEndian(etherType, etherTypeSize));
    append(frame, payload);
    std::size_t const trailerSize = ethernet.prpLan ? prpTrailerSize : 0;
    if (ethernet.padded && frame.size() + trailerSize < minimumFrameSize) {
        frame.resize(minimumFrameSize - trailerSize);
    }
    std::size_t const lsduOffset =
        addressesSize + etherTypeSize + (ethernet.vlanId ? vlanTagSize : 0);
    if (ethernet.prpLan) {
        append(frame, prpTrailer(ethernet, frame.size() - lsduOffset));
    }
    return frame;
}

}  // namespace TalTest
