#pragma once

// Internal: the index of one file, before it is joined with others.

#include <TalIec61850Analysis/file/CaptureFile.hpp>
#include <TalIec61850Analysis/traffic/FileIndexer.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <TalIec61850Analysis/traffic/TrafficOptions.hpp>
#include <TalIec61850Analysis/traffic/TrafficStream.hpp>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace TalIec61850Analysis::detail {

/// What one file gives.
struct FileTraffic {
    IndexedFile file;
    /// In the order of their keys.
    std::vector<TrafficStream> streams;
};

/// Indexes the records that a capture has from where it is on.
/// @param indexer   is given the records, and the summary but for its path
/// @param progress  called now and then with the octets of the file that were read; may be empty
/// @throws std::system_error  the file cannot be read; what was read before is in the indexer
void indexRecords(CaptureFile& capture, TrafficOptions const& options, FileIndexer& indexer,
                  std::function<void(std::uint64_t)> const& progress = {});

/// Indexes one file. What the operating system refuses is in the summary.
/// @param number    of the file in the index
/// @param progress  called now and then with the octets of the file that were read; may be empty
[[nodiscard]] FileTraffic indexFile(std::string const& path, std::uint32_t number,
                                    TrafficOptions const& options,
                                    WalkMemory memory = WalkMemory::on,
                                    std::function<void(std::uint64_t)> const& progress = {});

}  // namespace TalIec61850Analysis::detail
