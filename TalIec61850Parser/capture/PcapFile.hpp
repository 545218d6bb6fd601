#pragma once

#include <TalIec61850Parser/Export.hpp>
#include <cstdint>
#include <fstream>
#include <string>

namespace TalIec61850Parser {

/// An open capture file: an input stream that knows its name and its current record.
struct TALIEC61850PARSER_EXPORT PcapFile : std::ifstream {
    /// Opens the file for binary reading; whether that succeeded is the stream's state.
    /// A named pipe is opened without waiting for a writer, which takes the
    /// permission to write to it.
    explicit PcapFile(std::string const& path);

    /// The path exactly as given; the key of this file in the packet index.
    std::string fileName;
    /// Offset in the file, in octets, of the header of the record being processed.
    std::uint64_t recordPosition = 0;
};

}  // namespace TalIec61850Parser
