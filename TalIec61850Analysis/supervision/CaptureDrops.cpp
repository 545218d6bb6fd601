#include <TalIec61850Analysis/file/CaptureFile.hpp>
#include <TalIec61850Analysis/supervision/CaptureDrops.hpp>
#include <TalIec61850Analysis/time/ShiftedTime.hpp>
#include <algorithm>
#include <stop_token>

namespace TalIec61850Analysis::detail {

namespace {

std::uint64_t droppedBy(CaptureInterface const& interface) {
    return interface.dropped.value_or(0) + interface.droppedBySystem.value_or(0);
}

/// Whether what is kept of the file has any count that is not 0.
bool hasDrops(CaptureSummary const& summary) {
    if (summary.startOffset >= summary.fileSize) {
        return false;  // all of it was left out, and the file may be gone
    }
    return summary.dropped.value_or(0) > 0 ||
           std::any_of(summary.interfaces.begin(), summary.interfaces.end(),
                       [](CaptureInterface const& each) { return droppedBy(each) > 0; });
}

/// Follows the counts of interfaces, which statistics tell now and then.
class Statistics {
public:
    explicit Statistics(std::uint32_t file) : file_(file) {}

    /// @param record  null after the last
    /// @param time    of the record
    void look(CaptureFile const& capture, RecordView const* record, std::int64_t time,
              std::vector<CaptureDrop>& drops) {
        auto const interfaces = capture.interfaces();
        counts_.resize(std::max(counts_.size(), interfaces.size()));
        for (std::size_t i = 0; i < interfaces.size(); ++i) {
            std::uint64_t const now = droppedBy(interfaces[i]);
            if (now > counts_[i]) {
                drops.push_back(
                    {.file = file_,
                     .fileOffset = record != nullptr ? record->record.fileOffset : lastOffset_,
                     .from = lastTold_,
                     .until = lastTime_,
                     .count = now - counts_[i],
                     .isExact = false});
                counts_[i] = now;
                lastTold_ = lastTime_;
            }
        }
        if (record != nullptr) {
            lastOffset_ = record->record.fileOffset;
            if (record->record.time) {
                lastTime_ = time;
                lastTold_ = lastTold_ == kNoTime ? lastTime_ : lastTold_;
            }
        }
    }

private:
    std::uint32_t file_;
    std::vector<std::uint64_t> counts_;
    std::int64_t lastTime_ = kNoTime;
    std::int64_t lastTold_ = kNoTime;
    std::uint64_t lastOffset_ = 0;
};

void addDrops(TrafficIndex const& index, std::uint32_t file, std::stop_token const& stop,
              std::vector<CaptureDrop>& drops) {
    CaptureSummary const& summary = index.files()[file].summary;
    std::int64_t const clock = index.files()[file].clockOffset;
    CaptureFile capture(summary.path);
    // Interfaces that have counts at each record are told by these.
    bool const isByRecord = summary.dropped.value_or(0) > 0;
    Statistics statistics(file);
    std::int64_t before = kNoTime;
    while (auto const* const record = capture.next()) {
        if (stop.stop_requested()) {
            return;
        }
        if (record->record.fileOffset < summary.startOffset) {
            continue;
        }
        if (record->record.fileOffset >= summary.fileSize) {
            break;
        }
        std::int64_t const time =
            record->record.time ? shiftedTime(nanosecondsOf(*record->record.time), -clock) : before;
        if (record->record.dropped.value_or(0) > 0) {
            drops.push_back({.file = file,
                             .fileOffset = record->record.fileOffset,
                             .from = before,
                             .until = time,
                             .count = *record->record.dropped,
                             .isExact = true});
        }
        if (!isByRecord) {
            statistics.look(capture, record, time, drops);
        }
        before = time;
    }
    if (!isByRecord) {
        statistics.look(capture, nullptr, kNoTime, drops);
    }
}

}  // namespace

std::vector<CaptureDrop> findCaptureDrops(TrafficIndex const& index, std::stop_token const& stop) {
    std::vector<CaptureDrop> drops;
    for (std::uint32_t file = 0; file < index.files().size(); ++file) {
        if (hasDrops(index.files()[file].summary)) {
            addDrops(index, file, stop, drops);
        }
    }
    std::stable_sort(drops.begin(), drops.end(),
                     [](CaptureDrop const& a, CaptureDrop const& b) { return a.until < b.until; });
    return drops;
}

}  // namespace TalIec61850Analysis::detail
