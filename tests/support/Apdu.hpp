#pragma once

#include <cstdint>
#include <optional>

#include "support/Bytes.hpp"

namespace TalTest {

/// What is before a goosePdu and a savPdu alike (IEC 61850-8-1 and 9-2, Annex C).
struct ApduHeader {
    std::uint16_t appId = 0;
    std::uint16_t reserved1 = 0;
    std::uint16_t reserved2 = 0;
    /// The Length field; unset: the right one, which counts header, PDU and what trails it.
    std::optional<std::uint16_t> length = {};
};

/// The eight octets of the header, the PDU, and what trails it, such as a signature.
/// @throws std::length_error when Length is unset and 16 bits do not hold the right one
[[nodiscard]] Bytes apdu(ApduHeader const& header, Bytes const& pdu, Bytes const& trailing = {});

}  // namespace TalTest
