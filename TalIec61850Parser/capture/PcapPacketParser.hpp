#pragma once

#include <TalIec61850Parser/Export.hpp>
#include <TalIec61850Parser/capture/Filter.hpp>
#include <TalIec61850Parser/capture/PcapFile.hpp>
#include <TalIec61850Parser/store/Db.hpp>
#include <cstdint>
#include <vector>

namespace TalIec61850Parser {

/// Takes one record of a capture file: its time, then the frame in it.
class TALIEC61850PARSER_EXPORT PcapPacketParser {
public:
    /// Indexes the frame of one capture record, when it is a wanted GOOSE or SV frame.
    /// @param record          the 16 header octets as they are in the file, then the frame; a
    ///                        record without a frame is ignored
    /// @param file            its name keys the packet, its `recordPosition` places it
    /// @param isNanosecond    the file's time fractions are nanoseconds, not microseconds
    /// @param isLittleEndian  the byte order of the file's own fields
    /// @param filter          what to keep
    /// @param db              the store that is added to
    /// @throws std::bad_alloc  when memory ends; the store then holds what it held before
    static void parsePacket(std::vector<std::uint8_t> const& record, PcapFile& file,
                            bool isNanosecond, bool isLittleEndian, Filter const& filter, Db& db);
};

}  // namespace TalIec61850Parser
