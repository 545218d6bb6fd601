#pragma once

// Internal: the records of a capture file on their way into the store.

#include <TalIec61850Parser/capture/PcapFile.hpp>
#include <TalIec61850Parser/capture/RecordReader.hpp>
#include <atomic>
#include <cstdint>
#include <functional>

namespace TalIec61850Parser::detail {

/// What ends indexing early, and what is told how far it has come. Refers to what its maker owns.
struct IndexControl {
    /// Read before each record.
    std::atomic<bool> const& stopFlag;
    /// In octets; 0 for no progress call but the last.
    std::uint64_t fileSize = 0;
    /// May be empty.
    std::function<void(double)> const& progress;
    /// Whether another thread reads the file.
    bool readAhead = false;
};

/// PcapParser::_parseFilePcap, by the lane that is given.
/// @param lane  has `void index(Octets record, std::uint64_t fileOffset)`, and
///              `void afterProgress()`, called after something else had access to the store
template <typename Lane>
void indexCapture(PcapFile& file, bool isLittleEndian, IndexControl const& control, Lane& lane) {
    constexpr std::uint64_t recordsPerProgress = 1000;
    RecordReader records(file, isLittleEndian, control.readAhead);
    std::uint64_t nextProgress = 0;
    for (std::uint64_t count = 0; !records.atEnd(); ++count) {
        if (control.stopFlag) {
            return;
        }
        if (count == nextProgress) {
            nextProgress += recordsPerProgress;
            if (control.fileSize != 0 && control.progress) {
                control.progress(static_cast<double>(records.fileOffset()) /
                                 static_cast<double>(control.fileSize));
                lane.afterProgress();
            }
        }
        file.recordPosition = records.fileOffset();
        lane.index(records.next(), file.recordPosition);
    }
    if (control.progress) {
        control.progress(1.0);
    }
}

}  // namespace TalIec61850Parser::detail
