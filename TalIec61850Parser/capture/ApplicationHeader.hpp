#pragma once

// Internal: the eight octets in front of every GOOSE and SV PDU, and their filter criteria.

#include <TalIec61850Parser/capture/FilterRule.hpp>
#include <TalIec61850Parser/codec/BerReader.hpp>
#include <TalIec61850Parser/codec/WalkTrace.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace TalIec61850Parser::detail {

/// APPID (2 octets), Length (2), Reserved 1 (2), Reserved 2 (2), as IEC 61850-8-1 and 9-2 put
/// them in front of the PDU. Length is not looked at.
struct ApplicationHeader {
    static constexpr std::size_t kSize = 8;

    std::uint64_t appId = 0;
    /// Bit 0 of the second octet of Reserved 1.
    std::uint8_t reserved1Bit0 = 0;
    /// Everything behind the header, to the end of the data; never empty.
    Octets pdu;
};

/// @return nullopt when there are not nine octets at `offset`: a header and something behind it
[[nodiscard]] inline std::optional<ApplicationHeader> readApplicationHeader(Octets data,
                                                                            std::size_t offset) {
    constexpr std::size_t reserved1Offset = 4;
    if (offset >= data.size() || data.size() - offset <= ApplicationHeader::kSize) {
        return std::nullopt;
    }
    Octets const header = data.subspan(offset);
    return ApplicationHeader{
        .appId = std::uint64_t{header[0]} << 8U | header[1],
        .reserved1Bit0 = static_cast<std::uint8_t>(header[reserved1Offset + 1] & 1U),
        .pdu = header.subspan(ApplicationHeader::kSize),
    };
}

/// Puts the header's values into a stream record, each once it has passed its criterion.
/// @param trace  told that the PDU is passed over when one does not pass, unless null
/// @return false when one does not pass
template <typename Record, typename Identifier>
[[nodiscard]] bool takeApplicationHeader(ApplicationHeader const& header, Record& record,
                                         std::vector<Identifier> const& filters,
                                         WalkTrace* trace = nullptr) {
    if (passes(filters, &Identifier::appId, header.appId)) {
        record.appId = header.appId;
        if (passes(filters, &Identifier::reserved1Bit0, header.reserved1Bit0)) {
            record.reserved1Bit0 = header.reserved1Bit0;
            return true;
        }
    }
    if (trace != nullptr) {
        trace->passOver(header.pdu);
    }
    return false;
}

}  // namespace TalIec61850Parser::detail
