#include <TalIec61850Parser/capture/CaptureIndex.hpp>
#include <TalIec61850Parser/capture/FastLane.hpp>
#include <TalIec61850Parser/capture/FrameIndex.hpp>
#include <TalIec61850Parser/capture/RecordReader.hpp>

namespace TalIec61850Parser::detail {

namespace {

constexpr std::uint64_t kRecordsPerProgress = 1000;

/// FastLane's interface on the plain walk alone.
class PlainLane {
public:
    PlainLane(IndexTarget const& target, bool isLittleEndian)
        : target_(target), isLittleEndian_(isLittleEndian) {}

    void index(Octets record, std::uint64_t position) {
        ++plainCount_;
        indexRecord(record, position, isLittleEndian_, target_);
    }
    void afterProgress() {}
    [[nodiscard]] std::uint64_t plainCount() const { return plainCount_; }

private:
    IndexTarget target_;
    bool isLittleEndian_;
    std::uint64_t plainCount_ = 0;
};

/// @return how many records were handed to the lane
template <typename AnyLane>
std::uint64_t indexRecords(PcapFile& file, bool isLittleEndian, std::atomic<bool> const& stopFlag,
                           unsigned long fileSize, std::function<void(double)> const& progress,
                           AnyLane& lane) {
    RecordReader records(file, isLittleEndian);
    std::uint64_t nextProgress = 0;
    for (std::uint64_t count = 0;; ++count) {
        if (records.atEnd()) {
            if (progress) {
                progress(1.0);
            }
            return count;
        }
        if (stopFlag) {
            return count;
        }
        if (count == nextProgress) {
            nextProgress += kRecordsPerProgress;
            if (fileSize != 0 && progress) {
                progress(static_cast<double>(records.position()) / static_cast<double>(fileSize));
                lane.afterProgress();
            }
        }
        file.recordPosition = records.position();
        lane.index(records.next(), file.recordPosition);
    }
}

}  // namespace

IndexedRecords indexCapture(PcapFile& file, bool isNanosecond, bool isLittleEndian, Db& db,
                            Filter const& filter, std::atomic<bool> const& stopFlag,
                            unsigned long fileSize, std::function<void(double)> const& progress,
                            Lane lane) {
    IndexTarget const target{
        .fileName = file.fileName, .isNanosecond = isNanosecond, .filter = filter, .db = db};
    auto const indexBy = [&](auto chosen) {
        auto const all = indexRecords(file, isLittleEndian, stopFlag, fileSize, progress, chosen);
        return IndexedRecords{.all = all, .plain = chosen.plainCount()};
    };
    return lane == Lane::fast ? indexBy(FastLane(target, isLittleEndian))
                              : indexBy(PlainLane(target, isLittleEndian));
}

}  // namespace TalIec61850Parser::detail
