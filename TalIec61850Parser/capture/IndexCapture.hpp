#pragma once

// Internal: the records of a capture file on their way into the store.

#include <TalIec61850Parser/capture/Filter.hpp>
#include <TalIec61850Parser/capture/PcapFile.hpp>
#include <TalIec61850Parser/store/Db.hpp>
#include <atomic>
#include <cstdint>
#include <functional>

namespace TalIec61850Parser::detail {

/// How records are indexed: the outcome is the same.
enum class Lane {
    fast,   ///< by what is remembered of earlier records, where that serves
    plain,  ///< every record by its own walk
};

struct IndexedRecords {
    std::uint64_t all = 0;
    /// Those that took the plain walk; the others were indexed by what was remembered.
    std::uint64_t plain = 0;
};

/// PcapParser::_parseFilePcap, by the lane that is asked for.
IndexedRecords indexCapture(PcapFile& file, bool isNanosecond, bool isLittleEndian, Db& db,
                            Filter const& filter, std::atomic<bool> const& stopFlag,
                            unsigned long fileSize, std::function<void(double)> const& progress,
                            Lane lane);

}  // namespace TalIec61850Parser::detail
