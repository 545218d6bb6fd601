#pragma once

#include <TalIec61850Parser/Export.hpp>
#include <TalIec61850Parser/capture/Filter.hpp>
#include <TalIec61850Parser/capture/PcapPacketHeader.hpp>
#include <TalIec61850Parser/store/Package.hpp>
#include <TalIec61850Parser/store/Sv.hpp>
#include <TalIec61850Parser/sv/ASDUData.hpp>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace TalIec61850Parser {

/// Reads what identifies a Sampled Values stream (IEC 61850-9-2) out of one frame, places the frame
/// in its capture file, and matches it against the caller's filter, all in one walk; later decodes
/// the packets that a caller asks for.
class TALIEC61850PARSER_EXPORT SvParser {
public:
    /// Takes one frame from its SV header on (APPID, Length, Reserved 1 and 2, savPdu).
    ///
    /// The savPdu is taken to reach to the end of `data`; the Length field is not looked at. What
    /// is malformed or cut short ends its nesting level, what was read before stays.
    /// Of several ASDUs each must pass the filter, and the values of the last one stay.
    /// `sv` should be fresh: what the frame does not carry keeps what it held. A name that is
    /// rejected is in it, an APPID or Reserved 1 bit that is rejected is not.
    /// @param data      the capture record
    /// @param offset    index in `data` of the APPID
    /// @param header    the record's time, copied into `package` unscaled
    /// @param position  offset in the capture file of `data[0]`
    /// @param sv        identity and the frame's noASDU, smpCnt and smpRate, written; on false
    ///                  filled up to the criterion that failed
    /// @param package   time and position of the sequence of ASDU (0xA2); untouched without one
    /// @param filter    what is wanted
    /// @return false when fewer than nine octets are at `offset` or the filter rejects the frame
    [[nodiscard]] static bool parsePacket(std::vector<std::uint8_t> const& data, std::size_t offset,
                                          PcapPacketHeader const& header, std::uint64_t position,
                                          Sv& sv, Package& package, Filter const& filter);

    /// Decodes the ASDUs of one indexed packet, read again from its capture file.
    ///
    /// Opens the file, reads the sequence of ASDU and closes it again; keeps no state and may run
    /// on several threads at once.
    /// @param fileName  path of the capture file
    /// @param position  the `position` of the packet's Package: that of its 0xA2
    /// @return at most 50 ASDUs, in the order in which they occur; empty when the file cannot be
    ///         read, no sequence of ASDU is there, its length is in the indefinite form or
    ///         takes more than two octets after the first, or the file cuts it short. An ASDU
    ///         without a readable length ends the list; a damaged element ends its ASDU, which
    ///         keeps the fields before it.
    [[nodiscard]] static std::vector<ASDUData> parseASDUFromFile(std::string const& fileName,
                                                                 std::size_t position);

    // The steps of these operations, public like every operation of the library.

    /// Walks the elements of one nesting level and all below it, at most 50 on each level.
    /// @param buffer        the octets of the level
    /// @param depth         not used: what an element means is told by `inAsdu`
    /// @param start         not used
    /// @param filePosition  offset in the capture file of `buffer[0]`
    /// @param header        the record's time, copied into `package` unscaled
    /// @param sv            svID, confRev, noASDU, smpCnt and smpRate found, written
    /// @param package       as in `parsePacket`
    /// @param filter        what is wanted
    /// @param inAsdu        `buffer` is the content of an ASDU or below one
    /// @return false only when the filter rejects the frame
    [[nodiscard]] static bool _parseAsn1Structure(std::vector<std::uint8_t> const& buffer,
                                                  int depth, std::size_t start,
                                                  std::size_t filePosition,
                                                  PcapPacketHeader const& header, Sv& sv,
                                                  Package& package, Filter const& filter,
                                                  bool inAsdu);

    /// The same as `_parseAsn1Structure`.
    [[nodiscard]] static bool _processNestedStructure(std::vector<std::uint8_t> const& buffer,
                                                      int depth, std::size_t start,
                                                      std::size_t filePosition,
                                                      PcapPacketHeader const& header, Sv& sv,
                                                      Package& package, Filter const& filter,
                                                      bool inAsdu);

    /// Calls `_parseQualityValidity` with the validity code of each of the first eight samples. An
    /// extension point that nothing calls.
    /// @param data   the content of a seqData, eight octets a sample
    /// @param label  handed on
    static void _parseSampleDataWithQuality(std::vector<std::uint8_t> const& data,
                                            std::string const& label);

    /// Does nothing; where an extension would judge a two-bit validity code.
    static void _parseQualityValidity(std::uint8_t validity, std::string const& label);
};

}  // namespace TalIec61850Parser
