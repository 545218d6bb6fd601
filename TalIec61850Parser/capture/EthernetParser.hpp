#pragma once

#include <TalIec61850Parser/Export.hpp>
#include <TalIec61850Parser/capture/EthernetHeader.hpp>
#include <TalIec61850Parser/capture/Filter.hpp>
#include <TalIec61850Parser/capture/PcapFile.hpp>
#include <TalIec61850Parser/capture/PcapPacketHeader.hpp>
#include <TalIec61850Parser/store/Db.hpp>
#include <cstdint>
#include <string>
#include <vector>

namespace TalIec61850Parser {

/// Decodes Ethernet frames and hands them on by EtherType: 0x88B8 GOOSE, 0x88BA SV.
///
/// Reads one IEEE 802.1Q tag (TPID 0x8100), an HSR tag (0x892F) and a PRP trailer (suffix 0x88FB).
/// Other tags, service tags (0x88A8) among them, are EtherTypes that are not wanted.
class TALIEC61850PARSER_EXPORT EthernetParser {
public:
    /// Indexes one frame, when it is a wanted GOOSE or SV frame; otherwise the store stays as it
    /// is. A frame that ends inside its link-layer header is ignored.
    /// @param buffer        the capture record: header, then frame, up to the end of the vector
    /// @param offset        index in `buffer` of the frame's first octet
    /// @param file          its name keys the packet, its `recordPosition` places `buffer[0]`
    /// @param isNanosecond  the fraction in `header` is nanoseconds, not microseconds
    /// @param header        the time of the packet; nothing else of it is used
    /// @param filter        what to keep
    /// @param db            the store that is added to
    /// @throws std::bad_alloc  when memory ends; the store then holds what it held before
    static void parsePacket(std::vector<std::uint8_t> const& buffer, unsigned long offset,
                            PcapFile& file, bool isNanosecond, PcapPacketHeader const& header,
                            Filter const& filter, Db& db);

    /// Judges one frame in memory, without a capture file and without a store.
    ///
    /// | frame                                  | GOOSE | SV    |
    /// |----------------------------------------|-------|-------|
    /// | protocol switched off in the filter    | true  | true  |
    /// | rejected by address, VLAN, HSR or PRP  | false | false |
    /// | rejected by its header or PDU          | false | true  |
    /// | too short for a header and a PDU       | false | true  |
    /// | wanted                                 | true  | false |
    ///
    /// Deliberate: the two protocols answer differently. Any other EtherType, and a frame that ends
    /// inside its link-layer header, gives false. Keeps no state: may run on several threads at
    /// once, with one Filter that all of them read.
    /// @param frame   the frame from its destination address on
    /// @param filter  what is wanted
    /// @return what the table says
    [[nodiscard]] static bool parsePacketSimple(std::vector<std::uint8_t> const& frame,
                                                Filter const& filter);

    // The steps of these operations, public like every operation of the library.

    /// Puts a frame's addresses, VLAN, HSR and PRP into a stream record and matches them against a
    /// filter list, one criterion after the other.
    /// @param record   a fresh `Goose` or `Sv`; filled up to the criterion that fails
    /// @param filters  the list of that protocol in the caller's Filter
    /// @param header   the frame's link layer
    /// @return false when a criterion fails
    template <typename Record, typename Identifiers>
    [[nodiscard]] static bool _checkEthernetFilters(Record& record, Identifiers const& filters,
                                                    EthernetHeader const& header);

    /// Six octets as lower-case hexadecimal pairs joined by colons, 17 characters.
    /// @param mac  points to six octets
    [[nodiscard]] static std::string _macToString(std::uint8_t const* mac);
};

extern template TALIEC61850PARSER_EXPORT bool EthernetParser::_checkEthernetFilters(
    Goose&, std::vector<TalIec61850::GooseIdentifer> const&, EthernetHeader const&);
extern template TALIEC61850PARSER_EXPORT bool EthernetParser::_checkEthernetFilters(
    Sv&, std::vector<TalIec61850::SvIdentifer> const&, EthernetHeader const&);

}  // namespace TalIec61850Parser
