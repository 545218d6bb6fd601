#pragma once

#include <TalIec61850Parser/Export.hpp>
#include <TalIec61850Parser/capture/Filter.hpp>
#include <TalIec61850Parser/capture/PcapPacketHeader.hpp>
#include <TalIec61850Parser/goose/GoosePdu.hpp>
#include <TalIec61850Parser/store/Goose.hpp>
#include <TalIec61850Parser/store/Package.hpp>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace TalIec61850Parser {

/// Reads what identifies a GOOSE stream (IEC 61850-8-1) out of one frame, places the frame in its
/// capture file, and matches it against the caller's filter, all in one walk; later decodes the
/// packets that a caller asks for.
class TALIEC61850PARSER_EXPORT GooseParser {
public:
    /// Takes one frame from its GOOSE header on (APPID, Length, Reserved 1 and 2, goosePdu).
    ///
    /// The PDU is taken to reach to the end of `data`; the Length field is not looked at. What is
    /// malformed or cut short ends its nesting level, what was read before stays.
    /// `goose` should be fresh: what the frame does not carry keeps what it held. A name that is
    /// rejected is in it, an APPID or Reserved 1 bit that is rejected is not.
    /// @param data      the capture record
    /// @param offset    index in `data` of the APPID
    /// @param header    the record's time, copied into `package` unscaled
    /// @param position  offset in the capture file of `data[0]`
    /// @param goose     identity, written; on false filled up to the criterion that failed
    /// @param package   time and position of the goosePdu (0x61); untouched without one
    /// @param filter    what is wanted
    /// @return false when fewer than nine octets are at `offset` or the filter rejects the frame
    [[nodiscard]] static bool parsePacket(std::vector<std::uint8_t> const& data, std::size_t offset,
                                          PcapPacketHeader const& header, std::uint64_t position,
                                          Goose& goose, Package& package, Filter const& filter);

    /// Decodes one indexed packet in full, read again from its capture file.
    ///
    /// Opens the file, reads the goosePdu and closes it again; keeps no state and may run on
    /// several threads at once.
    /// @param fileName  path of the capture file
    /// @param position  the `position` of the packet's Package: that of its goosePdu (0x61)
    /// @return empty when the file cannot be read, no goosePdu is there, its length is in the
    ///         indefinite form or takes more than two octets after the first, or the file cuts it
    ///         short; fields up to the first damaged one otherwise
    [[nodiscard]] static GoosePdu parseGoosePDUFromFile(std::string const& fileName,
                                                        std::uint64_t position);

    /// The booleans at the top level of allData, 1.0 for true and 0.0 for false, in order; and
    /// those inside structures in primitive form (0x82). Deliberate: other structures (0xA2) and
    /// arrays are passed over.
    /// @param allData  normally `GoosePdu::allData`
    /// @return those before the first damaged element
    [[nodiscard]] static std::vector<float> parseBooleanValues(
        std::vector<std::uint8_t> const& allData);

    // The steps of these operations, public like every operation of the library.

    /// Walks the elements of one nesting level and all below it, at most 50 on each level.
    /// @param buffer        the octets of the level
    /// @param depth         1 for a PDU, 2 for the fields of a goosePdu, 3 and up for its data
    /// @param start         not used
    /// @param filePosition  offset in the capture file of `buffer[0]`
    /// @param header        the record's time, copied into `package` unscaled
    /// @param goose         the names, confRev and simulation found, written
    /// @param package       as in `parsePacket`
    /// @param filter        what is wanted
    /// @return false only when the filter rejects the frame
    [[nodiscard]] static bool _parseAsn1Structure(std::vector<std::uint8_t> const& buffer,
                                                  int depth, std::size_t start,
                                                  std::size_t filePosition,
                                                  PcapPacketHeader const& header, Goose& goose,
                                                  Package& package, Filter const& filter);

    /// The same as `_parseAsn1Structure`.
    [[nodiscard]] static bool _processNestedStructure(std::vector<std::uint8_t> const& buffer,
                                                      int depth, std::size_t start,
                                                      std::size_t filePosition,
                                                      PcapPacketHeader const& header, Goose& goose,
                                                      Package& package, Filter const& filter);

    /// Puts the fields of a goosePdu into `pdu`, at most 50 of them.
    /// @param content  the value of the goosePdu element
    /// @param pdu      written; what does not occur keeps what it held
    /// @return whether 50 fields were met; false at the end of the content and at damage
    [[nodiscard]] static bool _parseGoosePdu(std::vector<std::uint8_t> const& content,
                                             GoosePdu& pdu);

    /// `parseBooleanValues`, appended to `out`.
    static void _extractBooleanValues(std::vector<std::uint8_t> const& data,
                                      std::vector<float>& out);
};

}  // namespace TalIec61850Parser
