#include <TalIec61850Analysis/traffic/MarkCopies.hpp>
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
        stream.packets = 0;
        stream.copies = 0;
        stream.duplicates = 0;
        for (StreamPart const& part : stream.parts) {
            for (PacketFlags const& flag : part.packets.flags()) {
                stream.duplicates += flag.isDuplicate() ? 1U : 0U;
                stream.copies += flag.isCopy() && !flag.isDuplicate() ? 1U : 0U;
            }
        }
        stream.packets = stream.size() - stream.copies - stream.duplicates;
    }
}

}  // namespace TalIec61850Analysis
