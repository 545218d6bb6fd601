#include <TalIec61850Analysis/file/CaptureCheck.hpp>
#include <TalIec61850Analysis/supervision/LiveSupervision.hpp>
#include <TalIec61850Analysis/time/ShiftedTime.hpp>
#include <TalIec61850Analysis/traffic/MessageOrder.hpp>
#include <algorithm>
#include <cstddef>
#include <exception>
#include <optional>
#include <system_error>

namespace TalIec61850Analysis {

namespace {

constexpr std::int64_t kSecond = 1'000'000'000;
constexpr std::int64_t kKept = 30 * kSecond;
constexpr std::int64_t kMostKept = 600 * kSecond;
constexpr std::size_t kFewestMessages = 4;
/// As long as the copies of a frame take at most.
constexpr std::int64_t kCopies = 400'000'000;

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

/// The latest packet of all; kNoTime where none has a time.
std::int64_t newestOf(TrafficIndex const& index) {
    std::int64_t newest = kNoTime;
    for (TrafficStream const& stream : index.streams()) {
        for (StreamPart const& part : stream.parts) {
            if (std::size_t const size = part.packets.timedSize(); size > 0) {
                std::size_t const last = part.packets.inTimeOrder(size - 1);
                newest = std::max(newest, part.packets.times()[last]);
            }
        }
    }
    return newest;
}

/// Where a file has the first packet that is so late, of any stream; its end where none is.
/// @param from  in nanoseconds
void lowerToPacketsFrom(std::int64_t from, TrafficIndex const& index,
                        std::vector<std::uint64_t>& ends) {
    TimeWindow const window{.from = CaptureTime(std::chrono::nanoseconds(from)), .to = {}};
    for (TrafficStream const& stream : index.streams()) {
        for (StreamPart const& part : stream.parts) {
            auto const offsets = part.packets.frameOffsets();
            auto const [first, end] = part.packets.placesIn(window);
            for (std::size_t place = first; place < end; ++place) {
                std::uint64_t const offset = offsets[part.packets.inTimeOrder(place)];
                ends[part.file] = std::min(ends[part.file], offset);
            }
        }
    }
}

/// The newest message of a stream, where its counters are not later than those before: only the
/// next one tells whether the publisher began anew.
std::optional<std::pair<std::uint32_t, std::uint64_t>> openMessageOf(TrafficStream const& stream) {
    std::optional<detail::MessageNumber> newest;
    std::pair<std::uint32_t, std::uint64_t> spot;
    for (std::size_t number = stream.parts.size(); number-- > 0;) {
        StreamPart const& part = stream.parts[number];
        PacketColumns const& packets = part.packets;
        for (std::size_t packet = packets.size(); packet-- > 0;) {
            PacketFlags const flags = packets.flags()[packet];
            if (flags.isCopy() || flags.isDuplicate()) {
                continue;
            }
            detail::MessageNumber const message{packets.stNums()[packet], packets.sqNums()[packet]};
            if (newest) {
                bool const isOpen = *newest != message && !detail::isLater(*newest, message);
                return isOpen ? std::optional(spot) : std::nullopt;
            }
            newest = message;
            spot = {part.file, packets.frameOffsets()[packet]};
        }
    }
    return std::nullopt;
}

/// Whether copies over another way, which come later, may change what is found.
bool needsCopies(TrafficIndex const& index, Finding const& finding) {
    switch (finding.kind) {
        case FindingKind::copyMissing:
        case FindingKind::copyDiffers:
        case FindingKind::copyExtra:
        case FindingKind::wrongLan:
            return true;
        default:
            break;
    }
    bool const isLoss = finding.cause != LossCause::none && finding.stream && finding.place;
    return isLoss && index.streams()[*finding.stream]
                         .parts[finding.place->packet.part]
                         .packets.hasRedundancy();
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
    append(std::move(added));
    std::exception_ptr fault;
    try {
        tell(false, sink);
    } catch (std::system_error const&) {
        fault = std::current_exception();
    }
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
    if (fault) {
        std::rethrow_exception(fault);
    }
}

void LiveSupervision::finish(FindingSink sink) { tell(true, sink); }

/// Adds to the index. Frames of several files may have to be compared for that.
void LiveSupervision::append(TrafficIndex added) {
    forgetGone();
    while (true) {
        try {
            index_.append(std::move(added));
            noteFiles();
            return;
        } catch (std::system_error const&) {
            noteFiles();
            // All of it was added before frames were compared.
            added = {};
            if (!forgetGone()) {
                throw;
            }
        }
    }
}

/// Which files those are that were added.
void LiveSupervision::noteFiles() {
    for (std::size_t file = files_.size(); file < index_.files().size(); ++file) {
        files_.emplace_back();
        files_.back().identity = checkCapture(index_.files()[file].summary.path).identity;
    }
}

/// What is found in all that is kept.
std::vector<Finding> LiveSupervision::findAll() {
    forgetGone();
    while (true) {
        std::vector<Finding> found;
        try {
            superviseTraffic(index_, options_,
                             [&](Finding const& finding) { found.push_back(finding); });
            return found;
        } catch (std::system_error const&) {
            // A file may have gone meanwhile.
            if (!forgetGone()) {
                throw;
            }
        }
    }
}

void LiveSupervision::tell(bool areAll, FindingSink sink) {
    for (Finding const& finding : findAll()) {
        if (isNew(finding, areAll)) {
            sink(finding);
        }
    }
    goOn();
}

/// What was known now is told, and what there is now is known.
void LiveSupervision::goOn() {
    std::vector<std::uint64_t> ends;
    for (IndexedFile const& file : index_.files()) {
        ends.push_back(file.summary.fileSize);
    }
    auto const goTo = [&](Reach Progress::*reach) {
        for (std::size_t file = 0; file < files_.size(); ++file) {
            Reach& of = files_[file].*reach;
            of = {.told = of.known, .known = std::max(of.known, ends[file])};
        }
    };
    goTo(&Progress::all);
    if (std::int64_t const newest = newestOf(index_); newest != kNoTime) {
        lowerToPacketsFrom(detail::shiftedTime(newest, -kCopies), index_, ends);
    }
    goTo(&Progress::copies);
    heldBefore_ = std::move(held_);
    held_.clear();
    for (TrafficStream const& stream : index_.streams()) {
        bool const isGoose = stream.key.protocol == StreamProtocol::goose;
        if (auto const spot = isGoose ? openMessageOf(stream) : std::nullopt) {
            held_.emplace(stream.key, *spot);
        }
    }
}

/// How far findings like one are told and known in its file.
LiveSupervision::Reach LiveSupervision::reachOf(Finding const& finding) const {
    std::uint32_t const file = finding.place->file;
    Progress const& of = files_[file];
    Reach reach = needsCopies(index_, finding) ? of.copies : of.all;
    if (finding.stream) {
        StreamKey const& key = index_.streams()[*finding.stream].key;
        auto const lower = [&](std::map<StreamKey, Spot> const& held, std::uint64_t& offset) {
            if (auto const spot = held.find(key);
                spot != held.end() && spot->second.first == file) {
                offset = std::min(offset, spot->second.second);
            }
        };
        lower(heldBefore_, reach.told);
        lower(held_, reach.known);
    }
    return reach;
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
    Reach const reach = reachOf(finding);
    bool const isTold = finding.place->fileOffset < reach.told;
    bool const isCertain = areAll || finding.place->fileOffset < reach.known;
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

/// By file: whether packets of it are kept.
std::vector<bool> LiveSupervision::haveParts() const {
    std::vector<bool> have(index_.files().size());
    for (TrafficStream const& stream : index_.streams()) {
        for (StreamPart const& part : stream.parts) {
            have[part.file] = true;
        }
    }
    return have;
}

/// Whether a file was removed or replaced, so that its packets cannot be read again.
bool LiveSupervision::isGone(std::uint32_t file) const {
    CaptureSummary const& summary = index_.files()[file].summary;
    auto const after = index_.files().subspan(file + 1);
    bool const isReplaced = std::any_of(after.begin(), after.end(), [&](IndexedFile const& other) {
        return other.summary.path == summary.path;
    });
    if (isReplaced) {
        return true;
    }
    CaptureCheck const check = checkCapture(summary.path);
    if (check.fault) {
        return check.error != std::errc::too_many_files_open &&
               check.error != std::errc::too_many_files_open_in_system;
    }
    return check.identity != files_[file].identity ||
           (check.size > 0 && check.size < summary.fileSize);
}

/// Leaves out the packets of files that are gone.
/// @return whether there were any
bool LiveSupervision::forgetGone() {
    bool isAny = false;
    std::vector<bool> const have = haveParts();
    for (std::uint32_t file = 0; file < files_.size(); ++file) {
        if (have[file] && isGone(file)) {
            index_.forgetBefore(file, index_.files()[file].summary.fileSize);
            isAny = true;
        }
    }
    return isAny;
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
               mark.fileOffset <= files_[mark.file].all.told;
    };
    while (isOld(marks_.front())) {
        ends[marks_.front().file] = marks_.front().fileOffset;
        marks_.pop_front();
    }
    // Files that do not grow any more have no marks in the end.
    std::vector<bool> const have = haveParts();
    for (std::uint32_t file = 0; file < files_.size(); ++file) {
        CaptureSummary const& summary = index_.files()[file].summary;
        bool const isTold = summary.fileSize <= files_[file].all.told;
        if (have[file] && isTold && summary.last &&
            timeBetween(summary.last->time_since_epoch().count(), now) > std::uint64_t{kMostKept}) {
            ends[file] = summary.fileSize;
        }
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
