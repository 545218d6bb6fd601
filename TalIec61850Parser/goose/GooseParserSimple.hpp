#pragma once

#include <TalIec61850Parser/Export.hpp>
#include <TalIec61850Parser/capture/Filter.hpp>
#include <TalIec61850Parser/store/Goose.hpp>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace TalIec61850Parser {

/// Reads what identifies a GOOSE stream (IEC 61850-8-1) out of one frame in memory, without a
/// capture file, and matches it against the caller's filter as GooseParser does. Keeps no state:
/// may run on several threads at once, with one Filter that all of them read.
class TALIEC61850PARSER_EXPORT GooseParserSimple {
public:
    /// Takes one frame from its GOOSE header on.
    ///
    /// `goose` should be fresh: what the frame does not carry keeps what it held. A name that is
    /// rejected is in it, an APPID or Reserved 1 bit that is rejected is not.
    /// @param data    the frame, up to the end of the vector
    /// @param offset  index in `data` of the APPID
    /// @param goose   its identity, written; on false filled up to the criterion that failed
    /// @param filter  what is wanted
    /// @return false when fewer than nine octets are at `offset` or the filter rejects the frame;
    ///         true in every other case, whatever is malformed after the header
    [[nodiscard]] static bool parsePacket(std::vector<std::uint8_t> const& data, std::size_t offset,
                                          Goose& goose, Filter const& filter);

    // The steps of parsePacket, public like every operation of the library.

    /// Walks the elements of one nesting level and all below it, at most 50 on each level.
    /// @param buffer  the octets of the level
    /// @param depth   1 for a PDU, 2 for the fields of a goosePdu, 3 and up for its data
    /// @param start   not used
    /// @param goose   the names, confRev and simulation found, written
    /// @param filter  what is wanted
    /// @return false only when the filter rejects the frame
    [[nodiscard]] static bool _parseAsn1Structure(std::vector<std::uint8_t> const& buffer,
                                                  int depth, std::size_t start, Goose& goose,
                                                  Filter const& filter);

    /// The same as `_parseAsn1Structure`.
    [[nodiscard]] static bool _processNestedStructure(std::vector<std::uint8_t> const& buffer,
                                                      int depth, std::size_t start, Goose& goose,
                                                      Filter const& filter);
};

}  // namespace TalIec61850Parser
