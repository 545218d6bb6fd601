#include <TalIec61850Analysis/file/CaptureCheck.hpp>
#include <TalIec61850Analysis/file/CaptureFile.hpp>
#include <TalIec61850Analysis/traffic/FileIndexer.hpp>
#include <TalIec61850Analysis/traffic/IndexFile.hpp>
#include <TalIec61850Analysis/traffic/RunJobs.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <iterator>
#include <mutex>
#include <system_error>
#include <utility>

namespace TalIec61850Analysis {

namespace detail {

namespace {

constexpr std::uint64_t kRecordsBetweenCalls = 8192;

}  // namespace

void indexRecords(CaptureFile& capture, TrafficOptions const& options, FileIndexer& indexer,
                  std::function<void(std::uint64_t)> const& progress) {
    CaptureSummary& summary = indexer.summary();
    summary.fileSize = capture.size();
    summary.format = capture.format();
    std::uint64_t untilCall = kRecordsBetweenCalls;
    while (RecordView const* const view = capture.next()) {
        indexer.add(*view);
        if (--untilCall == 0) {
            untilCall = kRecordsBetweenCalls;
            if (progress) {
                progress(view->record.frameOffset + view->frame.size());
            }
            if (options.stop.stop_requested()) {
                summary.stopped = true;
                break;
            }
        }
    }
    summary.damage = capture.damage();
    summary.damages.assign(capture.damages().begin(), capture.damages().end());
    summary.damageCount = capture.damageCount();
    summary.interfaces.assign(capture.interfaces().begin(), capture.interfaces().end());
    if (progress) {
        progress(summary.fileSize);
    }
}

FileTraffic indexFile(std::string const& path, std::uint32_t number, TrafficOptions const& options,
                      WalkMemory memory, std::function<void(std::uint64_t)> const& progress) {
    FileIndexer indexer(options.keeps, memory);
    indexer.summary().path = path;
    try {
        CaptureFile capture(path, options.read);
        indexRecords(capture, options, indexer, progress);
    } catch (std::system_error const& error) {
        indexer.summary().error = error.code();
    }
    FileTraffic traffic;
    traffic.streams = indexer.takeStreams(number);
    traffic.file = indexer.takeFile();
    return traffic;
}

}  // namespace detail

namespace {

/// Adds up what is read of several files.
class SharedProgress {
public:
    SharedProgress(TrafficOptions const& options, std::span<std::string const> paths)
        : options_(options), done_(paths.size()) {
        if (!options.progress) {
            return;
        }
        for (std::string const& path : paths) {
            // Where it has none, the file's summary will have the error.
            all_ += checkCapture(path).size;
        }
    }

    void tell(std::size_t file, std::uint64_t done) {
        if (!options_.progress) {
            return;
        }
        std::lock_guard const lock(mutex_);
        sum_ += done - done_[file];
        done_[file] = done;
        options_.progress(sum_, all_);
    }

private:
    TrafficOptions const& options_;
    std::mutex mutex_;
    std::vector<std::uint64_t> done_;
    std::uint64_t sum_ = 0;
    std::uint64_t all_ = 0;
};

/// Indexes files, each on one thread.
std::vector<detail::FileTraffic> indexFiles(std::span<std::string const> paths,
                                            TrafficOptions const& options) {
    SharedProgress progress(options, paths);
    // By the number of the file; each is written by one thread.
    std::vector<detail::FileTraffic> results(paths.size());
    detail::runJobs(paths.size(), options.jobs, [&](std::size_t file) {
        results[file] = detail::indexFile(
            paths[file], static_cast<std::uint32_t>(file), options, detail::WalkMemory::on,
            [&progress, file](std::uint64_t done) { progress.tell(file, done); });
    });
    return results;
}

}  // namespace

TrafficIndex indexCapture(std::string const& path, TrafficOptions const& options) {
    TrafficIndex index = indexCaptures(std::span(&path, 1), options);
    if (std::error_code const error = index.files().front().summary.error) {
        throw std::system_error(error);
    }
    return index;
}

TrafficIndex indexCaptures(std::span<std::string const> paths, TrafficOptions const& options) {
    std::vector<IndexedFile> files;
    std::vector<TrafficStream> streams;
    for (detail::FileTraffic& traffic : indexFiles(paths, options)) {
        files.push_back(std::move(traffic.file));
        streams.insert(streams.end(), std::make_move_iterator(traffic.streams.begin()),
                       std::make_move_iterator(traffic.streams.end()));
    }
    return {std::move(files), std::move(streams)};
}

}  // namespace TalIec61850Analysis
