#include <TalIec61850Analysis/redundancy/CopyKey.hpp>
#include <TalIec61850Analysis/redundancy/FindTapClocks.hpp>
#include <TalIec61850Analysis/redundancy/FrameContent.hpp>
#include <TalIec61850Analysis/redundancy/FrameCourse.hpp>
#include <TalIec61850Analysis/redundancy/IndexedFrames.hpp>
#include <TalIec61850Analysis/time/ShiftedTime.hpp>
#include <algorithm>
#include <array>
#include <numeric>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace TalIec61850Analysis::detail {

namespace {

/// Frames of all files over A that are looked for over B, and those found that are enough.
constexpr std::size_t kMostSamples = 16384;
constexpr std::size_t kFewestSamples = 64;
constexpr std::size_t kMostFound = 65536;
/// Of one key.
constexpr std::size_t kMostAlike = 8;

/// The way that nine of ten frames of a file have; not set where neither has. What earlier files
/// have too is of a way like all else.
std::optional<std::size_t> mainWayOf(RedundantSources::File const& file) {
    constexpr std::uint64_t kTenth = 10;
    for (std::size_t const way : {kWayA, kWayB}) {
        std::uint64_t const its = file.frames.at(way) + file.duplicates.at(way);
        std::uint64_t const others = file.frames.at(1 - way) + file.duplicates.at(1 - way);
        if (its > 0 && others <= its / kTenth) {
            return way;
        }
    }
    return std::nullopt;
}

/// Frames over A, to be found over B.
class ClockSamples {
public:
    ClockSamples(TrafficIndex const& index, RedundantSources const& sources)
        : index_(index), sources_(sources), frames_(index) {}

    void addFrom(std::uint32_t file, std::size_t most, std::stop_token const& stop) {
        auto const& counts = sources_.files()[file].frames;
        std::uint64_t const stride =
            std::max<std::uint64_t>(1, (counts[kWayA] + counts[kWayB]) / most);
        FrameCourse course(index_, sources_, file);
        for (std::uint64_t number = 0; auto const* const frame = course.next(); ++number) {
            if (stop.stop_requested()) {
                return;
            }
            bool const isWanted = number % stride == 0 && !frame->flags.isTrailerMisfit() &&
                                  wayOf(frame->flags) == kWayA &&
                                  samples_.count(keyOf(*frame)) < kMostAlike;
            if (isWanted) {
                samples_.emplace(keyOf(*frame), Sample{frame->time, contentOf(*frame)});
            }
        }
    }

    /// How far the clock of a file is ahead; not set where too few frames tell.
    [[nodiscard]] std::optional<std::int64_t> offsetOf(std::uint32_t file,
                                                       std::stop_token const& stop) {
        std::vector<std::int64_t> found;
        FrameCourse course(index_, sources_, file);
        while (auto const* const frame = course.next()) {
            if (stop.stop_requested() || found.size() >= kMostFound) {
                break;
            }
            auto const [begin, end] = samples_.equal_range(keyOf(*frame));
            if (begin == end || frame->flags.isTrailerMisfit() || wayOf(frame->flags) != kWayB) {
                continue;
            }
            FrameContent const content = contentOf(*frame);
            std::for_each(begin, end, [&](auto const& each) {
                if (content.isSameAs(each.second.content)) {
                    found.push_back(frame->time - each.second.time);
                }
            });
        }
        return mostCommon(std::move(found));
    }

private:
    struct Sample {
        std::int64_t time = 0;
        FrameContent content;
    };

    static CopyKey keyOf(CourseFrame const& frame) {
        return copyKeyOf(frame.source, frame.flags.redundancy(), frame.sequence);
    }
    FrameContent contentOf(CourseFrame const& frame) {
        return {frames_.at(frame.file, frame.frameOffset), frame.flags.redundancy()};
    }

    /// The median of those differences that are close together, where these are most. Frames that
    /// are not one may be alike, as when numbers begin again.
    static std::optional<std::int64_t> mostCommon(std::vector<std::int64_t> found) {
        constexpr std::int64_t kSpread = 100'000'000;
        constexpr std::size_t kFewest = 2;
        constexpr std::int64_t kSmall = 400'000'000;
        std::sort(found.begin(), found.end());
        std::size_t most = 0;
        std::int64_t offset = 0;
        std::size_t begin = 0;
        auto const awayOf = [](std::int64_t value) { return value < 0 ? -value : value; };
        for (std::size_t end = 1; end <= found.size(); ++end) {
            // As a number without a sign: they may be far apart.
            while (static_cast<std::uint64_t>(found[end - 1]) -
                       static_cast<std::uint64_t>(found[begin]) >
                   std::uint64_t{kSpread}) {
                ++begin;
            }
            std::size_t const count = end - begin;
            std::int64_t const middle = found[begin + (count - 1) / 2];
            if (count > most || (count == most && awayOf(middle) < awayOf(offset))) {
                most = count;
                offset = middle;
            }
        }
        bool const isEnough = most >= kFewest || (most == 1 && awayOf(offset) <= kSmall);
        return isEnough ? std::optional(offset) : std::nullopt;
    }

    TrafficIndex const& index_;
    RedundantSources const& sources_;
    IndexedFrames frames_;
    std::unordered_multimap<CopyKey, Sample, CopyKeyHash> samples_;
};

/// Sets the offsets of the files that have B.
/// @param files  in their order
void compareClocks(TrafficIndex const& index, RedundantSources const& sources,
                   std::vector<std::uint32_t> const& files, std::vector<TapClock>& clocks,
                   std::stop_token const& stop) {
    std::vector<std::uint32_t> ofA;
    std::vector<std::uint32_t> ofB;
    for (std::uint32_t const file : files) {
        if (clocks[file].way == kWayA) {
            ofA.push_back(file);
        } else if (clocks[file].way == kWayB) {
            ofB.push_back(file);
        }
    }
    ClockSamples samples(index, sources);
    for (std::uint32_t const file : ofA) {
        samples.addFrom(file, std::max(kFewestSamples, kMostSamples / ofA.size()), stop);
    }
    std::optional<std::int64_t> last;
    std::size_t unknown = 0;
    for (std::uint32_t const file : ofB) {
        auto const offset = samples.offsetOf(file, stop);
        if (offset && !last) {
            for (std::size_t i = 0; i < unknown; ++i) {
                clocks[ofB[i]].offset = *offset;
            }
        }
        last = offset ? offset : last;
        clocks[file].offset = last.value_or(0);
        ++unknown;
    }
}

/// Files that overlap are of several taps; each goes on where the one before has ended.
void numberTaps(RedundantSources const& sources, std::vector<std::uint32_t> const& files,
                std::vector<TapClock>& clocks) {
    constexpr std::size_t kMostTaps = 1024;
    // Of files over A alone, over B alone, over both.
    std::array<std::vector<std::int64_t>, 3> ends;
    for (std::uint32_t const file : files) {
        auto const& has = sources.files()[file];
        if (has.first == kNoTime) {
            continue;
        }
        TapClock& clock = clocks[file];
        std::size_t const kind = clock.way.value_or(ends.size() - 1);
        auto& endsOfKind = ends.at(kind);
        std::int64_t const first = shiftedTime(has.first, -clock.offset);
        std::int64_t const last = shiftedTime(has.last, -clock.offset);
        auto const free = std::find_if(endsOfKind.begin(), endsOfKind.end(),
                                       [&](std::int64_t end) { return end <= first; });
        auto const number = static_cast<std::size_t>(free - endsOfKind.begin());
        clock.tap = static_cast<std::uint32_t>(std::min(number, kMostTaps) +
                                               (clock.way ? 0 : kMostTaps + 1));
        if (free != endsOfKind.end()) {
            *free = last;
        } else if (number < kMostTaps) {
            endsOfKind.push_back(last);
        }
    }
}

}  // namespace

std::vector<TapClock> findTapClocks(TrafficIndex const& index, RedundantSources const& sources,
                                    std::stop_token const& stop) {
    std::vector<TapClock> clocks(index.files().size());
    std::array<bool, 2> areThere{};
    for (std::size_t file = 0; file < clocks.size(); ++file) {
        clocks[file].way = mainWayOf(sources.files()[file]);
        if (clocks[file].way) {
            areThere.at(*clocks[file].way) = true;
        }
    }
    bool const isSplit = areThere[kWayA] && areThere[kWayB];
    for (TapClock& clock : clocks) {
        clock.way = isSplit ? clock.way : std::nullopt;
    }
    std::vector<std::uint32_t> files(clocks.size());
    std::iota(files.begin(), files.end(), 0U);
    auto const keyOf = [&](std::uint32_t file) {
        CaptureSummary const& summary = index.files()[file].summary;
        return std::tuple(clocks[file].way.value_or(2), sources.files()[file].first,
                          summary.fileSize, std::string_view(summary.path));
    };
    std::sort(files.begin(), files.end(),
              [&](std::uint32_t a, std::uint32_t b) { return keyOf(a) < keyOf(b); });
    for (std::size_t i = 0; i < files.size(); ++i) {
        clocks[files[i]].rank = static_cast<std::uint32_t>(i);
    }
    if (isSplit) {
        compareClocks(index, sources, files, clocks, stop);
    }
    numberTaps(sources, files, clocks);
    return clocks;
}

}  // namespace TalIec61850Analysis::detail
