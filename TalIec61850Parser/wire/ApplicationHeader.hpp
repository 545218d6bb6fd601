#pragma once

// Internal: the eight octets before every GOOSE and SV PDU.

#include <TalIec61850Parser/wire/Octets.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace TalIec61850Parser::wire {

/// APPID, Length, Reserved 1 and Reserved 2, two octets each, as IEC 61850-8-1 and 9-2 put them
/// before the PDU. Points into the octets it was read from.
class ApplicationHeader {
public:
    static constexpr std::size_t kAppIdOffset = 0;
    static constexpr std::size_t kLengthOffset = 2;
    static constexpr std::size_t kReserved1Offset = 4;
    static constexpr std::size_t kReserved2Offset = 6;
    static constexpr std::size_t kSize = 8;
    /// The bit of Reserved 1 that is set in simulated traffic.
    static constexpr std::uint16_t kSimulationBit = 0x8000;

    /// @pre `octets` holds at least kSize octets
    explicit constexpr ApplicationHeader(Octets octets) : octets_(octets) {}

    [[nodiscard]] constexpr std::uint16_t appId() const {
        return readUint16(octets_, kAppIdOffset);
    }
    /// Octets from APPID to the end of the PDU, as claimed.
    [[nodiscard]] constexpr std::uint16_t length() const {
        return readUint16(octets_, kLengthOffset);
    }
    [[nodiscard]] constexpr std::uint16_t reserved1() const {
        return readUint16(octets_, kReserved1Offset);
    }
    [[nodiscard]] constexpr std::uint16_t reserved2() const {
        return readUint16(octets_, kReserved2Offset);
    }
    /// Bit 0 of the second octet of Reserved 1.
    [[nodiscard]] constexpr std::uint8_t reserved1Bit0() const {
        return octets_[kReserved1Offset + 1] & 1U;
    }
    [[nodiscard]] constexpr bool isSimulated() const { return (reserved1() & kSimulationBit) != 0; }
    /// Everything after the header, to the end of the octets, whatever `length` says.
    [[nodiscard]] constexpr Octets pdu() const { return octets_.subspan(kSize); }

private:
    Octets octets_;
};

/// @return nullopt when there are not nine octets at `index`: a header and something after it
[[nodiscard]] constexpr std::optional<ApplicationHeader> readApplicationHeader(Octets data,
                                                                               std::size_t index) {
    if (index >= data.size() || data.size() - index <= ApplicationHeader::kSize) {
        return std::nullopt;
    }
    return ApplicationHeader(data.subspan(index));
}

}  // namespace TalIec61850Parser::wire
