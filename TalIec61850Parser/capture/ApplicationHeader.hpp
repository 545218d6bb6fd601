#pragma once

// Internal: the application header as part of a stream's identity, and its filter criteria.

#include <TalIec61850Parser/capture/FilterRule.hpp>
#include <TalIec61850Parser/codec/WalkTrace.hpp>
#include <TalIec61850Parser/wire/ApplicationHeader.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace TalIec61850Parser::detail {

/// Puts the header's values into a stream record, each once it has passed its criterion.
/// @param trace  told that the PDU is passed over when one does not pass, unless null
/// @return false when one does not pass
template <typename Record, typename Identifier>
[[nodiscard]] bool takeApplicationHeader(wire::ApplicationHeader const& header, Record& record,
                                         std::vector<Identifier> const& filters,
                                         WalkTrace* trace = nullptr) {
    if (passes(filters, &Identifier::appId, header.appId())) {
        record.appId = header.appId();
        if (passes(filters, &Identifier::reserved1Bit0, header.reserved1Bit0())) {
            record.reserved1Bit0 = header.reserved1Bit0();
            return true;
        }
    }
    if (trace != nullptr) {
        trace->passOver(header.pdu());
    }
    return false;
}

}  // namespace TalIec61850Parser::detail
