#pragma once

// Internal: the road of one capture record into the store, on octets in place.

#include <TalIec61850Parser/capture/Filter.hpp>
#include <TalIec61850Parser/capture/PcapPacketHeader.hpp>
#include <TalIec61850Parser/codec/BerReader.hpp>
#include <TalIec61850Parser/store/Db.hpp>
#include <cstddef>
#include <cstdint>
#include <string>

namespace TalIec61850Parser::detail {

/// The capture file that records come from, and where their packets go. Refers to what its
/// maker owns.
struct IndexTarget {
    std::string const& fileName;
    bool isNanosecond = false;
    Filter const& filter;
    Db& db;
};

/// PcapPacketParser::parsePacket.
/// @param recordPosition  offset in the capture file of `record[0]`
void indexRecord(Octets record, std::uint64_t recordPosition, bool isLittleEndian,
                 IndexTarget const& target);

/// EthernetParser::parsePacket.
/// @param bufferPosition  offset in the capture file of `buffer[0]`
void indexFrame(Octets buffer, std::size_t offset, std::uint64_t bufferPosition,
                PcapPacketHeader const& header, IndexTarget const& target);

}  // namespace TalIec61850Parser::detail
