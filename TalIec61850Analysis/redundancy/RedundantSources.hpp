#pragma once

// Internal: which sources, streams and files have frames with an HSR tag or a PRP trailer.

#include <TalIec61850Analysis/packet/FrameHeader.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

namespace TalIec61850Analysis::detail {

/// The number of lane or LAN A, or B.
inline constexpr std::size_t kWayA = 0;
inline constexpr std::size_t kWayB = 1;
[[nodiscard]] constexpr std::size_t wayOf(PacketFlags flags) {
    return flags.claimedLane() == 'B' ? kWayB : kWayA;
}
[[nodiscard]] constexpr char letterOfWay(std::size_t way) { return way == kWayB ? 'B' : 'A'; }

/// Looks once at all packets of an index, at their flags alone.
class RedundantSources {
public:
    static constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();

    explicit RedundantSources(TrafficIndex const& index);

    /// What a source has in all files.
    struct Source {
        std::optional<MacAddress> address;
        /// Frames over A and B.
        std::array<std::uint64_t, 2> frames{};
        /// Of these, PRP.
        std::array<std::uint64_t, 2> prpFrames{};
        /// Frames with a trailer that does not fit, and packets of all kinds.
        std::uint64_t misfits = 0;
        std::uint64_t packets = 0;
        /// The files that have frames over A, over B.
        std::array<std::vector<std::uint32_t>, 2> files;

        /// Whether it has frames with a tag or a trailer.
        [[nodiscard]] bool isRedundant() const { return frames[kWayA] + frames[kWayB] > 0; }
        /// Whether frames came over both ways.
        [[nodiscard]] bool isOverBoth() const { return frames[kWayA] > 0 && frames[kWayB] > 0; }
        /// Whether what ends as a trailer is one. That may be by chance, as with a signature, where
        /// others do not, and no other frame has a trailer.
        [[nodiscard]] bool hasTrailers() const {
            return prpFrames[kWayA] + prpFrames[kWayB] > 0 || misfits > packets / 2;
        }
    };
    /// What a file has of all sources.
    struct File {
        std::array<std::uint64_t, 2> frames{};
        /// Packets over A and B that an earlier file has.
        std::array<std::uint64_t, 2> duplicates{};
        /// The times of the frames; kNoTime where there is none.
        std::int64_t first = kNoTime;
        std::int64_t last = kNoTime;
    };

    [[nodiscard]] std::vector<Source> const& sources() const { return sources_; }
    [[nodiscard]] std::vector<File> const& files() const { return files_; }
    /// The source of a stream; kNone where no packet of the stream is to be looked at.
    [[nodiscard]] std::uint32_t sourceOf(std::size_t stream) const { return byStream_[stream]; }
    /// Whether a stream has frames with a tag or a trailer.
    [[nodiscard]] bool isRedundant(std::size_t stream) const { return areRedundant_[stream]; }
    /// Whether any source is.
    [[nodiscard]] bool isAny() const { return !sources_.empty(); }

    /// Whether a packet is to be looked at: it has a tag or a trailer, be it right or not, a time,
    /// and no earlier file has it.
    [[nodiscard]] static bool isWanted(PacketColumns const& packets, std::size_t packet) {
        PacketFlags const flags = packets.flags()[packet];
        return (flags.redundancy() != Redundancy::none || flags.isTrailerMisfit()) &&
               !flags.isDuplicate() && packets.times()[packet] != kNoTime;
    }

private:
    void addPart(Source& source, StreamPart const& part);

    std::vector<Source> sources_;
    std::vector<File> files_;
    std::vector<std::uint32_t> byStream_;
    std::vector<bool> areRedundant_;
};

}  // namespace TalIec61850Analysis::detail
