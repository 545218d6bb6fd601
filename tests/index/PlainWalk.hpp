#pragma once

// How PlainIndex reads one frame: link layer, filter rule and BER.

#include <cstdint>
#include <optional>

#include "index/PlainIndex.hpp"

namespace TalTest {

/// A frame in front of its GOOSE or Sampled Values header.
struct PlainLink {
    std::string dstMac;
    std::string srcMac;
    std::uint32_t etherType = 0;
    std::optional<std::uint16_t> vlanId;
    std::optional<char> hsrLan;
    std::optional<char> prpLan;
    /// Index in the frame of the octet after the EtherType.
    std::size_t payload = 0;
};

/// Nothing for a frame that ends inside its link layer.
std::optional<PlainLink> readLink(Bytes const& frame);

/// Fills the record and the packet from a frame of that protocol.
/// @return false when the filter rejects the frame or it is too short
bool readGoose(PlainFrame const& frame, PlainLink const& link,
               std::vector<TalIec61850::GooseIdentifer> const& wanted, PlainGoose& goose,
               PacketImage& packet);
bool readSv(PlainFrame const& frame, PlainLink const& link,
            std::vector<TalIec61850::SvIdentifer> const& wanted, PlainSv& sv, PacketImage& packet);

}  // namespace TalTest
