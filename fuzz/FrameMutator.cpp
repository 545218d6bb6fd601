#include "fuzz/FrameMutator.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "index/PlainWalk.hpp"
#include "support/Ethernet.hpp"

namespace TalFuzz {

using namespace TalTest;

namespace {

constexpr std::size_t kAddressesSize = 12;
constexpr std::size_t kApduHeaderSize = 8;

std::uint8_t anyOctet(Random& random) { return static_cast<std::uint8_t>(random() >> 8U); }

Bytes inserted(Bytes frame, std::size_t position, Bytes const& octets) {
    if (position > frame.size()) return frame;
    frame.insert(frame.begin() + static_cast<std::ptrdiff_t>(position), octets.begin(),
                 octets.end());
    return frame;
}

Bytes mutatedTail(Bytes frame, Random& random) {
    switch (random() % 3) {
        case 0:
            append(frame,
                   {anyOctet(random), anyOctet(random),
                    static_cast<std::uint8_t>(random() % 2 == 0 ? 0xA0 : 0xB0), 60, 0x88, 0xFB});
            return frame;
        case 1:
            append(frame, repeat(anyOctet(random), random() % 100));
            return frame;
        default:
            return prefix(frame, random() % (frame.size() + 1));
    }
}

/// Puts a tag in, or makes one protocol the other.
Bytes mutatedLink(Bytes frame, PlainLink const& link, Random& random) {
    switch (random() % 4) {
        case 0:
            return inserted(std::move(frame), kAddressesSize,
                            {0x81, 0x00, anyOctet(random), anyOctet(random)});
        case 1:
            return inserted(std::move(frame), link.payload - 2,
                            {0x89, 0x2F, anyOctet(random), anyOctet(random), anyOctet(random),
                             anyOctet(random)});
        case 2:
            frame[link.payload - 2] = 0x88;
            frame[link.payload - 1] = link.etherType == etherTypeGoose ? 0xBA : 0xB8;
            return frame;
        default:
            frame[random() % link.payload] = anyOctet(random);
            return frame;
    }
}

Bytes mutatedPdu(Bytes const& frame, std::size_t position, Random& random) {
    auto const begin = frame.begin() + static_cast<std::ptrdiff_t>(position);
    return concat({Bytes(frame.begin(), begin), mutatedElements({begin, frame.end()}, random)});
}

}  // namespace

Bytes mutatedFrame(Bytes frame, Random& random) {
    std::optional<PlainLink> const link = readLink(frame);
    if (!link) return concat({mutatedOctets(frame), Bytes(random() % 40)});
    std::size_t const pdu = link->payload + kApduHeaderSize;
    switch (random() % 12) {
        case 0:
            return mutatedOctets(std::move(frame));
        case 1:
            return mutatedTail(std::move(frame), random);
        case 2:
            return mutatedLink(std::move(frame), *link, random);
        case 3:
            if (frame.size() >= pdu)
                frame[link->payload + random() % kApduHeaderSize] = anyOctet(random);
            return frame;
        case 4:
            frame[random() % frame.size()] = anyOctet(random);
            return frame;
        default:
            return frame.size() < pdu ? concat({frame, Bytes(kApduHeaderSize)})
                                      : mutatedPdu(frame, pdu, random);
    }
}

}  // namespace TalFuzz
