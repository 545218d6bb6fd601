#include <TalIec61850Analysis/file/CaptureCheck.hpp>
#include <TalIec61850Analysis/traffic/FileIndexer.hpp>
#include <TalIec61850Analysis/traffic/IndexFile.hpp>
#include <TalIec61850Analysis/traffic/TrafficFollower.hpp>
#include <system_error>
#include <utility>
#include <vector>

namespace TalIec61850Analysis {

namespace {

/// The record or block that is being written just now.
bool isUnfinished(CaptureDamage const& damage) {
    return damage.kind == CaptureDamageKind::recordCut ||
           damage.kind == CaptureDamageKind::recordHeaderCut;
}

}  // namespace

TrafficFollower::TrafficFollower(std::string path, TrafficOptions options)
    : path_(std::move(path)), options_(std::move(options)) {}

std::optional<TrafficIndex> TrafficFollower::readOn() {
    if (capture_) {
        std::uint64_t const start = capture_->offset();
        if (capture_->readOn()) {
            return indexMore(start);
        }
        if (!isReplaced()) {
            return std::nullopt;
        }
        capture_.reset();
        isDamaged_ = false;
    }
    if (!open()) {
        return std::nullopt;
    }
    TrafficIndex index = indexMore(0);
    auto const& damage = index.files().front().summary.damage;
    if (damage && damage->kind == CaptureDamageKind::fileHeaderCut) {
        capture_.reset();
        return std::nullopt;
    }
    return index;
}

/// @return false where there is no capture of that name yet
bool TrafficFollower::open() {
    CaptureCheck const check = checkCapture(path_);
    if (check.fault == CaptureFault::refusedBySystem &&
        check.error != std::errc::no_such_file_or_directory) {
        throw std::system_error(check.error);
    }
    if (check.fault) {
        return false;
    }
    capture_.emplace(path_, options_.read);
    return true;
}

bool TrafficFollower::isReplaced() const {
    CaptureCheck const check = checkCapture(path_);
    bool const isThere = !check.fault;
    return isThere && (check.identity != capture_->identity() || check.size < capture_->size());
}

TrafficIndex TrafficFollower::indexMore(std::uint64_t startOffset) {
    detail::FileIndexer indexer(options_.keeps);
    CaptureSummary& summary = indexer.summary();
    summary.path = path_;
    summary.startOffset = startOffset;
    detail::indexRecords(*capture_, options_, indexer);
    isDamaged_ = summary.damage && !isUnfinished(*summary.damage);
    if (summary.damage && !isDamaged_) {
        summary.damage.reset();
        std::erase_if(summary.damages, isUnfinished);
        --summary.damageCount;
    }
    auto streams = indexer.takeStreams(0);
    std::vector<IndexedFile> files;
    files.push_back(indexer.takeFile());
    return {std::move(files), std::move(streams)};
}

}  // namespace TalIec61850Analysis
