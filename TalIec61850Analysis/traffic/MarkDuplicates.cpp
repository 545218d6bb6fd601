#include <TalIec61850Analysis/file/CaptureFile.hpp>
#include <TalIec61850Analysis/traffic/MarkCopies.hpp>
#include <TalIec61850Analysis/traffic/PacketRow.hpp>
#include <TalIec61850Analysis/traffic/TimeWalk.hpp>
#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <tuple>
#include <utility>
#include <vector>

namespace TalIec61850Analysis::detail {

namespace {

/// Two packets that agree in all that the index holds, and may be one.
struct Pair {
    std::uint32_t file = 0;
    std::uint32_t otherFile = 0;
    std::uint64_t offset = 0;
    std::uint64_t otherOffset = 0;
    /// The packet in the other file.
    PacketColumns* other = nullptr;
    std::uint32_t otherPacket = 0;
    /// The packets that may be one share a number.
    std::uint64_t group = 0;

    [[nodiscard]] auto frames() const { return std::tie(otherFile, otherOffset, file, offset); }
};

/// Compares the octets of frames, of many in the order of the files.
class FrameComparer {
public:
    explicit FrameComparer(std::span<IndexedFile const> files) : files_(files) {}

    void add(Pair const& pair) { pairs_.push_back(pair); }
    /// Compares where there are many; between groups.
    void compareIfMany() {
        constexpr std::size_t kManyPairs = std::size_t{1} << 20U;
        if (pairs_.size() >= kManyPairs) {
            compare();
        }
    }

    /// A number for packets that may be one.
    [[nodiscard]] std::uint64_t nextGroup() { return ++group_; }

    /// Marks those of the pairs whose frames are equal. What is not as the first of its group may
    /// be as another one: that is compared in a further round.
    void compare() {
        while (!pairs_.empty()) {
            compareOnce();
            pairs_ = pairedAnew(std::exchange(different_, {}));
        }
    }

private:
    void compareOnce() {
        std::sort(pairs_.begin(), pairs_.end(),
                  [](Pair const& a, Pair const& b) { return a.frames() < b.frames(); });
        Pair const* last = nullptr;
        bool isSame = false;
        for (Pair const& pair : pairs_) {
            if (last == nullptr || last->frames() != pair.frames()) {
                Octets const frame = frameAt(0, pair.file, pair.otherFile, pair.offset);
                Octets const other = frameAt(1, pair.otherFile, pair.file, pair.otherOffset);
                isSame = !frame.empty() &&
                         std::equal(frame.begin(), frame.end(), other.begin(), other.end());
            }
            if (isSame) {
                ColumnsWriter::flags(*pair.other)[pair.otherPacket].bits |= PacketFlags::kDuplicate;
            } else {
                different_.push_back(pair);
            }
            last = &pair;
        }
    }

    static std::vector<Pair> pairedAnew(std::vector<Pair> different) {
        std::sort(different.begin(), different.end(), [](Pair const& a, Pair const& b) {
            return std::tie(a.group, a.otherFile) < std::tie(b.group, b.otherFile);
        });
        std::vector<Pair> pairs;
        Pair const* first = nullptr;
        for (Pair& pair : different) {
            if (first == nullptr || first->group != pair.group) {
                first = &pair;
                continue;
            }
            pair.file = first->otherFile;
            pair.offset = first->otherOffset;
            pairs.push_back(pair);
        }
        return pairs;
    }

    /// One file of each side is open at a time.
    struct Open {
        std::uint32_t file = 0;
        /// That of the other side: with each, the files are read from their start.
        std::uint32_t otherFile = 0;
        std::optional<CaptureFile> capture;
        /// Where the capture has been read to; null at its start, and after its last record.
        RecordView const* last = nullptr;
    };

    /// @return valid until the next call for this side; empty where the file has changed meanwhile
    Octets frameAt(std::size_t side, std::uint32_t file, std::uint32_t otherFile,
                   std::uint64_t frameOffset) {
        Open& opened = open_[side];
        if (!opened.capture || opened.file != file || opened.otherFile != otherFile) {
            opened.capture.emplace(files_[file].summary.path);
            opened.file = file;
            opened.otherFile = otherFile;
            opened.last = opened.capture->next();
        }
        // Mostly in the order of the file: reading on is much faster than seeking.
        while (opened.last != nullptr && opened.last->record.frameOffset < frameOffset) {
            opened.last = opened.capture->next();
        }
        if (opened.last != nullptr && opened.last->record.frameOffset == frameOffset) {
            return opened.last->frame;
        }
        auto const record = opened.capture->recordAt(frameOffset);
        return record ? opened.capture->frameOf(*record) : Octets();
    }

    std::span<IndexedFile const> files_;
    std::vector<Pair> pairs_;
    std::vector<Pair> different_;
    std::uint64_t group_ = 0;
    std::array<Open, 2> open_;
};

/// What packets that are one have in common, besides their time.
struct Likeness {
    explicit Likeness(PacketColumns const& packets, std::size_t packet) {
        bool const isGoose = packets.protocol() == StreamProtocol::goose;
        first = isGoose ? packets.stNums()[packet] : packets.smpCnts()[packet];
        second = isGoose ? packets.sqNums()[packet] : packets.smpSynchs()[packet];
        asdu = isGoose ? std::uint16_t{0} : packets.asdus()[packet];
        sequence = packets.redundancySequences()[packet];
        constexpr unsigned kMarks = PacketFlags::kCopy | PacketFlags::kDuplicate;
        flags = static_cast<std::uint16_t>(packets.flags()[packet].bits & ~kMarks);
    }

    std::uint32_t first = 0;
    std::uint32_t second = 0;
    std::uint16_t asdu = 0;
    std::uint16_t sequence = 0;
    std::uint16_t flags = 0;

    // clang-tidy 14 mistakes the 0 of the generated comparisons for a null pointer.
    // NOLINTNEXTLINE(modernize-use-nullptr)
    friend auto operator<=>(Likeness const&, Likeness const&) = default;
};

/// A packet among those of one time.
struct Candidate {
    Likeness likeness;
    PacketRef ref;
    /// Which one it is of those of its file that are alike.
    std::size_t rank = 0;
};

/// Pairs packets of one time: the first of one file that are alike with the first of another, and
/// so on. Each is paired with that of the first file that has one.
void pairAlike(TrafficStream& stream, std::vector<Candidate>& group, FrameComparer& comparer) {
    std::stable_sort(group.begin(), group.end(), [](Candidate const& a, Candidate const& b) {
        return std::tie(a.likeness, a.ref.part) < std::tie(b.likeness, b.ref.part);
    });
    for (std::size_t i = 1; i < group.size(); ++i) {
        bool const isAlike = group[i].likeness == group[i - 1].likeness &&
                             group[i].ref.part == group[i - 1].ref.part;
        group[i].rank = isAlike ? group[i - 1].rank + 1 : 0;
    }
    std::stable_sort(group.begin(), group.end(), [](Candidate const& a, Candidate const& b) {
        return std::tie(a.likeness, a.rank) < std::tie(b.likeness, b.rank);
    });
    Candidate const* first = nullptr;
    std::uint64_t number = 0;
    for (Candidate const& each : group) {
        if (first == nullptr || first->likeness != each.likeness || first->rank != each.rank) {
            first = &each;
            number = comparer.nextGroup();
            comparer.compareIfMany();
            continue;
        }
        StreamPart const& part = stream.parts[first->ref.part];
        StreamPart& other = stream.parts[each.ref.part];
        comparer.add({.file = part.file,
                      .otherFile = other.file,
                      .offset = part.packets.frameOffsets()[first->ref.packet],
                      .otherOffset = other.packets.frameOffsets()[each.ref.packet],
                      .other = &other.packets,
                      .otherPacket = each.ref.packet,
                      .group = number});
    }
}

/// The spans of time in which several parts of a stream have packets.
std::vector<TimeWindow> sharedTimes(std::span<StreamPart const> parts) {
    struct Extent {
        std::int64_t first = 0;
        std::int64_t last = 0;
    };
    std::vector<Extent> extents;
    for (StreamPart const& part : parts) {
        if (std::size_t const size = part.packets.timedSize(); size != 0) {
            auto const times = part.packets.times();
            extents.push_back(
                {times[part.packets.inTimeOrder(0)], times[part.packets.inTimeOrder(size - 1)]});
        }
    }
    std::sort(extents.begin(), extents.end(),
              [](Extent const& a, Extent const& b) { return a.first < b.first; });
    auto const toTime = [](std::int64_t time) { return captureTimeOf(time); };
    std::vector<TimeWindow> windows;
    std::int64_t last = kNoTime;
    for (Extent const& extent : extents) {
        bool const isShared = extent.first <= last;
        if (isShared && !windows.empty() && toTime(extent.first) <= *windows.back().to) {
            windows.back().to = toTime(std::max(last, extent.last));
        } else if (isShared) {
            windows.push_back({toTime(extent.first), toTime(std::max(last, extent.last))});
        }
        last = std::max(last, extent.last);
    }
    return windows;
}

/// Pairs the packets of a stream that have one time, for all times in a window.
void pairInWindow(TrafficStream& stream, TimeWindow const& window, FrameComparer& comparer) {
    std::vector<Candidate> group;
    TimeWalk walk(stream.parts, window);
    std::int64_t time = kNoTime;
    bool hasOtherPart = false;
    auto const finish = [&] {
        if (hasOtherPart) {
            pairAlike(stream, group, comparer);
        }
        group.clear();
        hasOtherPart = false;
    };
    while (auto const ref = walk.next()) {
        PacketColumns const& packets = stream.parts[ref->part].packets;
        if (packets.times()[ref->packet] != time) {
            finish();
            time = packets.times()[ref->packet];
        }
        group.push_back({Likeness(packets, ref->packet), *ref});
        hasOtherPart = hasOtherPart || ref->part != group.front().ref.part;
    }
    finish();
}

}  // namespace

void markDuplicates(std::span<IndexedFile const> files, std::span<TrafficStream> streams) {
    FrameComparer comparer(files);
    for (TrafficStream& stream : streams) {
        for (StreamPart& part : stream.parts) {
            ColumnsWriter::clearFlag(part.packets, PacketFlags::kDuplicate);
        }
        for (TimeWindow const& window : sharedTimes(stream.parts)) {
            pairInWindow(stream, window, comparer);
        }
    }
    comparer.compare();
}

}  // namespace TalIec61850Analysis::detail
