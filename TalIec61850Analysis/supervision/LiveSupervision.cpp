#include <TalIec61850Analysis/supervision/LiveSupervision.hpp>
#include <algorithm>
#include <cstddef>
#include <optional>

namespace TalIec61850Analysis {

namespace {

constexpr std::int64_t kSecond = 1'000'000'000;
constexpr std::int64_t kKept = 30 * kSecond;
constexpr std::int64_t kMostKept = 600 * kSecond;
constexpr std::size_t kFewestMessages = 4;

/// Between two times, whichever comes first.
std::uint64_t timeBetween(std::int64_t a, std::int64_t b) {
    return a < b ? static_cast<std::uint64_t>(b) - static_cast<std::uint64_t>(a)
                 : static_cast<std::uint64_t>(a) - static_cast<std::uint64_t>(b);
}

/// The messages of a stream with long intervals that are kept longer.
std::size_t messagesOf(PacketColumns const& packets, std::int64_t now) {
    auto const times = packets.times();
    std::size_t count = 0;
    while (count < std::min(times.size(), kFewestMessages)) {
        std::int64_t const time = times[times.size() - count - 1];
        if (time == kNoTime || timeBetween(time, now) > std::uint64_t{kMostKept}) {
            break;
        }
        ++count;
    }
    return count;
}

}  // namespace

LiveSupervision::LiveSupervision(SupervisionOptions options) : options_(std::move(options)) {}

void LiveSupervision::add(TrafficIndex added, FindingSink sink) {
    std::vector<std::optional<CaptureTime>> ends;
    std::vector<std::string> paths;
    for (IndexedFile const& file : added.files()) {
        ends.push_back(file.summary.last);
        paths.push_back(file.summary.path);
    }
    index_.append(std::move(added));
    files_.resize(index_.files().size());
    tell(false, sink);
    for (std::size_t i = 0; i < paths.size(); ++i) {
        // The last one of that path.
        std::size_t file = index_.files().size();
        while (index_.files()[file - 1].summary.path != paths[i]) {
            --file;
        }
        CaptureSummary const& summary = index_.files()[file - 1].summary;
        if (ends[i]) {
            marks_.push_back({.file = static_cast<std::uint32_t>(file - 1),
                              .fileOffset = summary.fileSize,
                              .time = ends[i]->time_since_epoch().count()});
        }
    }
    forget();
}

void LiveSupervision::finish(FindingSink sink) { tell(true, sink); }

void LiveSupervision::tell(bool areAll, FindingSink sink) {
    superviseTraffic(index_, options_, [&](Finding const& finding) {
        if (isNew(finding, areAll)) {
            sink(finding);
        }
    });
    for (std::size_t file = 0; file < files_.size(); ++file) {
        files_[file].told = files_[file].known;
        files_[file].known = index_.files()[file].summary.fileSize;
    }
}

bool LiveSupervision::isNew(Finding const& finding, bool areAll) {
    bool const isOfFile =
        finding.kind == FindingKind::recordsCut || finding.kind == FindingKind::fileEndsInRecord;
    if (isOfFile) {
        return ofFiles_.insert({finding.kind, finding.place->file}).second;
    }
    bool const isPause =
        finding.kind == FindingKind::expired || finding.kind == FindingKind::silent;
    if (!finding.place) {
        return isPause && isNewPause(finding);
    }
    Progress const& of = files_[finding.place->file];
    bool const isTold = finding.place->fileOffset < of.told;
    bool const isCertain = areAll || finding.place->fileOffset < of.known;
    return !isTold && isCertain && (!isPause || isNewPause(finding));
}

/// A pause is told as soon as it is too long, and not again when it ends.
bool LiveSupervision::isNewPause(Finding const& finding) {
    if (!finding.stream) {
        return true;
    }
    FindingPlace const place = finding.before.value_or(FindingPlace());
    std::pair const before(place.file, place.fileOffset);
    auto const [pause, isFirst] =
        pauses_.emplace(std::pair(finding.kind, index_.streams()[*finding.stream].key), before);
    bool const isOther = isFirst || pause->second != before;
    pause->second = before;
    return isOther;
}

/// Leaves out what was told of and is old.
void LiveSupervision::forget() {
    if (marks_.empty()) {
        return;
    }
    std::int64_t const now = marks_.back().time;
    std::map<std::uint32_t, std::uint64_t> ends;
    auto const isOld = [&](Mark const& mark) {
        return timeBetween(mark.time, now) > std::uint64_t{kKept} &&
               mark.fileOffset <= files_[mark.file].told;
    };
    while (isOld(marks_.front())) {
        ends[marks_.front().file] = marks_.front().fileOffset;
        marks_.pop_front();
    }
    for (auto const& [file, end] : ends) {
        index_.forgetBefore(file, end, [&](StreamKey const& key, PacketColumns const& packets) {
            return key.protocol == StreamProtocol::goose ? messagesOf(packets, now)
                                                         : std::size_t{0};
        });
    }
    if (!ends.empty()) {
        std::erase_if(
            pauses_, [&](auto const& pause) { return index_.find(pause.first.second) == nullptr; });
    }
}

}  // namespace TalIec61850Analysis
