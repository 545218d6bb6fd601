#include <TalIec61850Analysis/time/ShiftedTime.hpp>
#include <TalIec61850Analysis/traffic/JoinFiles.hpp>
#include <TalIec61850Analysis/traffic/MarkCopies.hpp>
#include <TalIec61850Analysis/traffic/PacketRow.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <algorithm>
#include <iterator>
#include <utility>

namespace TalIec61850Analysis {

namespace {

/// The largest smpCnt and one more, where the count falls by half or more of it somewhere.
std::optional<double> rateByCounts(TrafficStream const& stream) {
    std::uint32_t largest = 0;
    bool wraps = false;
    for (StreamPart const& part : stream.parts) {
        PacketColumns const& packets = part.packets;
        std::optional<std::uint32_t> last;
        for (std::size_t i = 0; i < packets.size(); ++i) {
            if (packets.flags()[i].firstCounter() != CounterState::held) {
                continue;
            }
            std::uint32_t const count = packets.smpCnts()[i];
            wraps = wraps || (last && count < *last / 2);
            largest = std::max(largest, count);
            last = count;
        }
    }
    return wraps ? std::optional(static_cast<double>(largest) + 1) : std::nullopt;
}

/// Takes from the times of a file how far its clock is ahead.
void shiftSummary(CaptureSummary& summary, std::int64_t ahead) {
    auto const shift = [&](std::optional<CaptureTime>& time) {
        if (time) {
            time = captureTimeOf(detail::shiftedTime(nanosecondsOf(*time), -ahead));
        }
    };
    shift(summary.first);
    shift(summary.last);
    for (UnreadFrame& frame : summary.unread) {
        shift(frame.time);
    }
}

}  // namespace

TrafficIndex::TrafficIndex(std::vector<IndexedFile> files, std::vector<TrafficStream> streams)
    : files_(std::move(files)) {
    join(std::move(streams));
    settle();
}

TrafficStream const* TrafficIndex::find(StreamKey const& key) const noexcept {
    auto const found =
        std::lower_bound(streams_.begin(), streams_.end(), key,
                         [](TrafficStream const& stream, auto const& k) { return stream.key < k; });
    return found != streams_.end() && found->key == key ? &*found : nullptr;
}

std::optional<double> TrafficIndex::nominalRate(TrafficStream const& stream) const {
    constexpr std::uint64_t kSamplesPerSecond = 1;
    constexpr std::uint64_t kSecondsPerSample = 2;
    if (stream.key.protocol != StreamProtocol::sv) {
        return std::nullopt;
    }
    if (!stream.parts.empty() && !stream.parts.back().changes.empty()) {
        StreamPart const& part = stream.parts.back();
        StreamAttributes const& all = attributes(part, part.changes.back());
        auto const* const rate = valueIn(all.smpRate);
        auto const* const unit = valueIn(all.smpMod);
        bool const isRate = rate != nullptr && *rate != 0 && unit != nullptr;
        if (isRate && *unit == kSamplesPerSecond) {
            return static_cast<double>(*rate);
        }
        if (isRate && *unit == kSecondsPerSample) {
            return 1 / static_cast<double>(*rate);
        }
    }
    return rateByCounts(stream);
}

void TrafficIndex::merge(TrafficIndex other) {
    auto const firstFile = static_cast<std::uint32_t>(files_.size());
    for (TrafficStream& stream : other.streams_) {
        for (StreamPart& part : stream.parts) {
            part.file += firstFile;
        }
    }
    files_.insert(files_.end(), std::make_move_iterator(other.files_.begin()),
                  std::make_move_iterator(other.files_.end()));
    join(std::move(other.streams_));
    settle();
}

/// Streams of one key become one, with their parts in the order of the files.
void TrafficIndex::join(std::vector<TrafficStream> streams) {
    streams_.insert(streams_.end(), std::make_move_iterator(streams.begin()),
                    std::make_move_iterator(streams.end()));
    std::stable_sort(streams_.begin(), streams_.end(),
                     [](TrafficStream const& a, TrafficStream const& b) { return a.key < b.key; });
    std::size_t count = 0;
    for (TrafficStream& stream : streams_) {
        if (count > 0 && streams_[count - 1].key == stream.key) {
            auto& parts = streams_[count - 1].parts;
            parts.insert(parts.end(), std::make_move_iterator(stream.parts.begin()),
                         std::make_move_iterator(stream.parts.end()));
        } else {
            if (&streams_[count] != &stream) {
                streams_[count] = std::move(stream);
            }
            ++count;
        }
    }
    streams_.resize(count);
    for (TrafficStream& stream : streams_) {
        std::stable_sort(stream.parts.begin(), stream.parts.end(),
                         [](StreamPart const& a, StreamPart const& b) { return a.file < b.file; });
    }
}

void TrafficIndex::settle() {
    if (files_.size() > 1) {
        detail::markDuplicates(files_, streams_);
    }
    detail::CopyMarker copies;
    for (TrafficStream& stream : streams_) {
        copies.mark(stream.parts);
        count(stream);
    }
}

void TrafficIndex::count(TrafficStream& stream) {
    stream.copies = 0;
    stream.duplicates = 0;
    for (StreamPart const& part : stream.parts) {
        auto const flags = part.packets.flags();
        if (flags.values() == nullptr && !flags.empty()) {
            // Most often: neither.
            bool const isDuplicate = flags[0].isDuplicate();
            stream.duplicates += isDuplicate ? flags.size() : 0U;
            stream.copies += !isDuplicate && flags[0].isCopy() ? flags.size() : 0U;
            continue;
        }
        for (PacketFlags const flag : flags) {
            stream.duplicates += flag.isDuplicate() ? 1U : 0U;
            stream.copies += flag.isCopy() && !flag.isDuplicate() ? 1U : 0U;
        }
    }
    stream.packets = stream.size() - stream.copies - stream.duplicates;
}

void TrafficIndex::append(TrafficIndex added) {
    std::vector<std::uint32_t> numbers;
    // Those of the added files here, by their numbers there.
    std::vector<std::vector<std::uint32_t>> attributes;
    for (IndexedFile& file : added.files_) {
        auto const known = std::find_if(
            files_.rbegin(), files_.rend(),
            [&](IndexedFile const& each) { return each.summary.path == file.summary.path; });
        bool const isNew = known == files_.rend() || file.summary.startOffset == 0;
        if (isNew) {
            files_.push_back({});
            files_.back().summary = std::move(file.summary);
        }
        IndexedFile& target = isNew ? files_.back() : *known;
        if (!isNew) {
            detail::joinSummaries(target.summary, std::move(file.summary));
        }
        numbers.push_back(static_cast<std::uint32_t>(&target - files_.data()));
        attributes.push_back(detail::joinAttributes(target.attributes, file.attributes));
    }
    for (TrafficStream& stream : added.streams_) {
        for (StreamPart& part : stream.parts) {
            auto const& its = attributes[part.file];
            part.file = numbers[part.file];
            appendPart(stream.key, std::move(part), its);
        }
    }
    settle();
}

/// @param attributes  the numbers here, by those that the part has
void TrafficIndex::appendPart(StreamKey const& key, StreamPart part,
                              std::vector<std::uint32_t> const& attributes) {
    for (AttributeChange& change : part.changes) {
        change.attributes = attributes[change.attributes];
    }
    auto stream =
        std::lower_bound(streams_.begin(), streams_.end(), key,
                         [](TrafficStream const& each, auto const& k) { return each.key < k; });
    if (stream == streams_.end() || stream->key != key) {
        stream = streams_.insert(stream, TrafficStream{});
        stream->key = key;
    }
    auto const after =
        std::partition_point(stream->parts.begin(), stream->parts.end(),
                             [&](StreamPart const& each) { return each.file < part.file; });
    if (after == stream->parts.end() || after->file != part.file) {
        stream->parts.insert(after, std::move(part));
        return;
    }
    auto const before = static_cast<std::uint32_t>(after->packets.size());
    detail::ColumnsWriter writer(key.protocol);
    writer.addAll(after->packets, 0);
    writer.addAll(part.packets, 0);
    after->packets = writer.take();
    for (AttributeChange const& change : part.changes) {
        if (after->changes.back().attributes != change.attributes) {
            after->changes.push_back({before + change.firstPacket, change.attributes});
        }
    }
}

void TrafficIndex::shiftClocks(std::span<std::int64_t const> ahead) {
    for (std::size_t file = 0; file < files_.size(); ++file) {
        files_[file].clockOffset += ahead[file];
        shiftSummary(files_[file].summary, ahead[file]);
    }
    detail::CopyMarker copies;
    for (TrafficStream& stream : streams_) {
        for (StreamPart& part : stream.parts) {
            detail::ColumnsWriter::takeFromTimes(part.packets, ahead[part.file]);
        }
        copies.mark(stream.parts);
        count(stream);
    }
}

/// The earliest and the latest packet of a file.
std::pair<std::optional<CaptureTime>, std::optional<CaptureTime>> TrafficIndex::timesOf(
    std::uint32_t file) const {
    std::optional<CaptureTime> first;
    std::optional<CaptureTime> last;
    for (TrafficStream const& stream : streams_) {
        for (StreamPart const& part : stream.parts) {
            if (std::size_t const size = part.packets.timedSize(); part.file == file && size > 0) {
                auto const earliest = part.packets.time(part.packets.inTimeOrder(0));
                first = std::min(first.value_or(*earliest), *earliest);
                last = std::max(last, part.packets.time(part.packets.inTimeOrder(size - 1)));
            }
        }
    }
    return {first, last};
}

void TrafficIndex::forgetBefore(
    std::uint32_t file, std::uint64_t frameOffset,
    std::function<std::size_t(StreamKey const&, PacketColumns const&)> const& keeps) {
    for (TrafficStream& stream : streams_) {
        for (StreamPart& part : stream.parts) {
            if (part.file != file) {
                continue;
            }
            auto const offsets = part.packets.frameOffsets();
            auto const before = static_cast<std::size_t>(
                std::lower_bound(offsets.begin(), offsets.end(), frameOffset) - offsets.begin());
            std::size_t const kept =
                keeps ? std::min(keeps(stream.key, part.packets), offsets.size()) : 0;
            auto const gone = static_cast<std::uint32_t>(std::min(before, offsets.size() - kept));
            if (gone == 0) {
                continue;
            }
            detail::ColumnsWriter writer(stream.key.protocol);
            writer.addAll(part.packets, gone);
            part.packets = writer.take();
            auto const next = std::find_if(
                part.changes.begin(), part.changes.end(),
                [&](AttributeChange const& change) { return change.firstPacket > gone; });
            part.changes.erase(part.changes.begin(), next - 1);
            for (AttributeChange& change : part.changes) {
                change.firstPacket -= std::min(change.firstPacket, gone);
            }
        }
        std::erase_if(stream.parts,
                      [](StreamPart const& part) { return part.packets.size() == 0; });
        count(stream);
    }
    std::erase_if(streams_, [](TrafficStream const& stream) { return stream.parts.empty(); });
    CaptureSummary& summary = files_[file].summary;
    summary.startOffset = std::max(summary.startOffset, frameOffset);
    if (auto const [first, last] = timesOf(file); first) {
        summary.first = first;
        summary.last = last;
    }
    bool const isAnyLeft = std::any_of(streams_.begin(), streams_.end(), [&](auto const& stream) {
        return std::any_of(stream.parts.begin(), stream.parts.end(),
                           [&](StreamPart const& part) { return part.file == file; });
    });
    if (!isAnyLeft) {
        files_[file].attributes.clear();
    }
    std::erase_if(summary.unread,
                  [&](UnreadFrame const& frame) { return frame.frameOffset < frameOffset; });
}

}  // namespace TalIec61850Analysis
