#pragma once

#include <TalIec61850Parser/Export.hpp>
#include <TalIec61850Parser/capture/Filter.hpp>
#include <TalIec61850Parser/capture/IndexOptions.hpp>
#include <TalIec61850Parser/capture/PcapFile.hpp>
#include <TalIec61850Parser/store/Db.hpp>
#include <atomic>
#include <functional>
#include <string>

namespace TalIec61850Parser {

/// Indexes capture files in the classic capture format (microsecond or nanosecond times, either
/// byte order), the library's main entry:
///
///     Db db;
///     std::atomic<bool> stop = false;
///     PcapParser::parseFile("bay1.pcap", db, Filter{}, stop, {});
///     for (Goose const& stream : db.gooseProto.streams) { ... }
class TALIEC61850PARSER_EXPORT PcapParser {
public:
    /// Reads a capture once, front to back, and adds the wanted GOOSE and SV frames to the store.
    ///
    /// A file that cannot be opened gives "Error opening file: " and its path, any file that is
    /// not a classic capture "Invalid PCAP file format", on standard error; the store is then
    /// unchanged. A file is read as it is: what is appended to it meanwhile may be missed.
    /// Damaged records and frames are passed over in silence. A last record that the
    /// file cuts short is completed with zeros, at most 16 MiB of them.
    ///
    /// @param fileName  path of the capture; also the key of its packets in the index
    /// @param db        the store that is added to; used by no other thread meanwhile
    /// @param filter    what to keep
    /// @param stopFlag  read before each record; once true, indexing ends there and what was
    ///                  indexed stays
    /// @param progress  called on this thread with the fraction of the file that has been read,
    ///                  0 to 1: before records 0, 1000, 2000, ... and with 1.0 at the end, unless
    ///                  stopped; may be empty, may clear the store, may throw
    /// @throws std::bad_alloc  when memory ends, and what `progress` throws: the store then holds
    ///         every packet of the records before, and nothing half-made
    static void parseFile(std::string const& fileName, Db& db, Filter const& filter,
                          std::atomic<bool> const& stopFlag, std::function<void(double)> progress);

    /// The same, with a choice of how the file is read. Store, messages and progress calls do not
    /// depend on it, and `progress` is called on this thread. Ended early, it waits for the block
    /// that is being read.
    ///
    /// @param fileName  path of the capture; also the key of its packets in the index
    /// @param db        the store that is added to; used by no other thread meanwhile
    /// @param filter    what to keep
    /// @param stopFlag  read before each record
    /// @param progress  may be empty
    /// @param options   how the file is read
    /// @throws std::bad_alloc  when memory ends, and what `progress` throws: as above
    static void parseFile(std::string const& fileName, Db& db, Filter const& filter,
                          std::atomic<bool> const& stopFlag, std::function<void(double)> progress,
                          IndexOptions const& options);

    // The steps of parseFile, public like every operation of the library.

    /// Walks the records of an open capture from the first to the last; the file's own header is
    /// not interpreted. What is not said here is as in `parseFile`.
    /// @param file            open; its position afterwards is unspecified, its
    ///                        `recordPosition` is that of the last record that was indexed
    /// @param isNanosecond    the file's time fractions are nanoseconds, not microseconds
    /// @param isLittleEndian  the byte order of the file's own fields
    /// @param db              the store that is added to
    /// @param filter          what to keep
    /// @param stopFlag        read before each record
    /// @param fileSize        in octets, what progress is a fraction of; 0 for no call but the last
    /// @param progress        may be empty
    static void _parseFilePcap(PcapFile& file, bool isNanosecond, bool isLittleEndian, Db& db,
                               Filter const& filter, std::atomic<bool> const& stopFlag,
                               unsigned long fileSize, std::function<void(double)> progress);

    /// Says on standard output that next-generation captures are not implemented; no more. Nothing
    /// calls it: `parseFile` refuses them as files that are no classic captures.
    static void _parseFilePcapNg(PcapFile& file, bool isNanosecond, bool isLittleEndian, Db& db,
                                 Filter const& filter, std::atomic<bool> const& stopFlag,
                                 unsigned long fileSize, std::function<void(double)> progress);
};

}  // namespace TalIec61850Parser
