#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/time/CaptureTime.hpp>
#include <TalIec61850Analysis/time/TimeWindow.hpp>
#include <TalIec61850Analysis/traffic/ColumnView.hpp>
#include <TalIec61850Analysis/traffic/StreamKey.hpp>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <utility>
#include <vector>

/// @cond
namespace TalIec61850Analysis::detail {
class ColumnsWriter;
}
/// @endcond

namespace TalIec61850Analysis {

/// How a frame tells its copy on the other way.
enum class Redundancy : std::uint8_t { none, hsr, prp };

/// Whether a counter is in its column.
enum class CounterState : std::uint8_t {
    held,    ///< it is
    absent,  ///< the packet does not have it, or it was cut off
    wide,    ///< its octets make no number of 32 bits (8 of smpSynch): kept apart
};

/// What is to be said of a packet in single bits.
struct PacketFlags {
    /// Bit by bit; see below.
    std::uint16_t bits = 0;

    /// @cond
    static constexpr std::uint16_t kCut = 1U << 0U;
    static constexpr std::uint16_t kDamaged = 1U << 1U;
    static constexpr std::uint16_t kSimulated = 1U << 2U;
    static constexpr std::uint16_t kNegative = 1U << 3U;
    static constexpr std::uint16_t kHsrMisfit = 1U << 4U;
    static constexpr std::uint16_t kLaneB = 1U << 5U;
    static constexpr unsigned kRedundancyShift = 6;
    static constexpr unsigned kFirstCounterShift = 8;
    static constexpr unsigned kSecondCounterShift = 10;
    static constexpr std::uint16_t kCopy = 1U << 12U;
    static constexpr std::uint16_t kDuplicate = 1U << 13U;
    static constexpr std::uint16_t kTrailerMisfit = 1U << 14U;
    /// @endcond

    /// The frame was cut by a snap length, within its PDU.
    [[nodiscard]] constexpr bool isCut() const noexcept { return has(kCut); }
    /// An element of the PDU, or of the ASDU, has a length or an identifier that cannot be.
    [[nodiscard]] constexpr bool isDamaged() const noexcept { return has(kDamaged); }
    /// The simulated bit of the application header.
    [[nodiscard]] constexpr bool isSimulated() const noexcept { return has(kSimulated); }
    /// stNum or sqNum has the sign bit set; it is read without a sign.
    [[nodiscard]] constexpr bool isNegative() const noexcept { return has(kNegative); }
    /// The size in the HSR tag does not fit the frame.
    [[nodiscard]] constexpr bool isHsrMisfit() const noexcept { return has(kHsrMisfit); }
    /// The other way brought this frame before, within the time that copies take.
    [[nodiscard]] constexpr bool isCopy() const noexcept { return has(kCopy); }
    /// A file that comes before this one in the index has the same frame at the same time.
    [[nodiscard]] constexpr bool isDuplicate() const noexcept { return has(kDuplicate); }
    /// The frame ends as one with a PRP trailer does, but for a size that does not fit: it counts
    /// as a frame without redundancy.
    [[nodiscard]] constexpr bool isTrailerMisfit() const noexcept { return has(kTrailerMisfit); }
    /// Of such a frame: 'A' or 'B', as the trailer says.
    [[nodiscard]] constexpr char claimedLane() const noexcept { return has(kLaneB) ? 'B' : 'A'; }
    /// Whether the frame has an HSR tag, or else a PRP trailer.
    [[nodiscard]] constexpr Redundancy redundancy() const noexcept {
        return static_cast<Redundancy>(bits >> kRedundancyShift & 3U);
    }
    /// 'A' or 'B': the lane of HSR, the LAN of PRP; 0 without either.
    [[nodiscard]] constexpr char lane() const noexcept {
        if (redundancy() == Redundancy::none) {
            return 0;
        }
        return has(kLaneB) ? 'B' : 'A';
    }
    /// Where stNum of GOOSE, smpCnt of SV is.
    [[nodiscard]] constexpr CounterState firstCounter() const noexcept {
        return static_cast<CounterState>(bits >> kFirstCounterShift & 3U);
    }
    /// Where sqNum of GOOSE, smpSynch of SV is.
    [[nodiscard]] constexpr CounterState secondCounter() const noexcept {
        return static_cast<CounterState>(bits >> kSecondCounterShift & 3U);
    }

    /// Bit by bit.
    friend bool operator==(PacketFlags const&, PacketFlags const&) = default;

private:
    [[nodiscard]] constexpr bool has(std::uint16_t bit) const noexcept { return (bits & bit) != 0; }
};

/// In a column of times: a packet without one.
inline constexpr std::int64_t kNoTime = std::numeric_limits<std::int64_t>::min();

/// The packets of one stream in one file, in the order of the file: a column for each thing that is
/// kept of them. A packet takes 24 to 30 octets (GOOSE) or 20 to 29 (SV), fewer the more columns
/// have one value for all packets; what does not fit a column is kept apart. Spans and views hold
/// as long as the columns.
class PacketColumns {
public:
    PacketColumns() = default;

    /// How many packets there are: the size of every column.
    [[nodiscard]] std::size_t size() const noexcept { return size_; }
    /// GOOSE or SV.
    [[nodiscard]] StreamProtocol protocol() const noexcept { return protocol_; }

    /// When packets were captured, in nanoseconds since 1970, or kNoTime.
    [[nodiscard]] std::span<std::int64_t const> times() const noexcept {
        return column<std::int64_t>(places().times);
    }
    /// Where the frames are in the file, in octets.
    [[nodiscard]] std::span<std::uint64_t const> frameOffsets() const noexcept {
        return column<std::uint64_t>(places().frameOffsets);
    }
    /// Where in the frame the goosePdu (61), or the sequence of ASDU (A2), is.
    [[nodiscard]] ColumnView<std::uint16_t> pduOffsets() const noexcept {
        return view(pduOffset_, places().pduOffsets);
    }
    /// The sequence numbers of HSR or PRP; 0 without either. Where a PRP trailer does not fit, what
    /// it says.
    [[nodiscard]] ColumnView<std::uint16_t> redundancySequences() const noexcept {
        return view(sequence_, places().sequences);
    }
    /// What is to be said of packets in single bits.
    [[nodiscard]] ColumnView<PacketFlags> flags() const noexcept {
        return view(flags_, places().flags);
    }

    /// Of GOOSE: where flags say that it is held; else 0. Empty for SV.
    [[nodiscard]] std::span<std::uint32_t const> stNums() const noexcept {
        return isGoose() ? column<std::uint32_t>(places().firstCounters)
                         : std::span<std::uint32_t const>();
    }
    /// Of GOOSE, as `stNums`.
    [[nodiscard]] std::span<std::uint32_t const> sqNums() const noexcept {
        return isGoose() ? column<std::uint32_t>(places().secondCounters)
                         : std::span<std::uint32_t const>();
    }
    /// Of SV: where flags say that it is held; else 0. Empty for GOOSE.
    [[nodiscard]] std::span<std::uint32_t const> smpCnts() const noexcept {
        return isGoose() ? std::span<std::uint32_t const>()
                         : column<std::uint32_t>(places().firstCounters);
    }
    /// Of SV, as `smpCnts`.
    [[nodiscard]] ColumnView<std::uint8_t> smpSynchs() const noexcept {
        return isGoose() ? ColumnView<std::uint8_t>() : view(smpSynch_, places().secondCounters);
    }
    /// The number of the ASDU in its frame, from 0. Empty for GOOSE.
    [[nodiscard]] ColumnView<std::uint16_t> asdus() const noexcept {
        return isGoose() ? ColumnView<std::uint16_t>() : view(asdu_, places().asdus);
    }

    /// stNum of GOOSE, smpCnt of SV, wherever it is kept: the octets of a number that 64 bits do
    /// not hold; nothing where it is absent.
    /// @param packet  below `size`
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::optional<ReadableView<std::uint64_t>>
    firstCounter(std::size_t packet) const noexcept;
    /// sqNum of GOOSE, smpSynch of SV, as `firstCounter`.
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::optional<ReadableView<std::uint64_t>>
    secondCounter(std::size_t packet) const noexcept;
    /// When a packet was captured.
    /// @param packet  below `size`
    [[nodiscard]] std::optional<CaptureTime> time(std::size_t packet) const noexcept {
        std::int64_t const time = times()[packet];
        return time == kNoTime ? std::nullopt : std::optional(captureTimeOf(time));
    }

    /// The packets that have a time, in its order; those of one time in the order of the file.
    /// Empty where that is the order of the columns, and all have a time.
    [[nodiscard]] std::span<std::uint32_t const> timeOrder() const noexcept { return order_; }
    /// How many packets have a time.
    [[nodiscard]] std::size_t timedSize() const noexcept {
        return order_.empty() ? (hasTimes_ ? size_ : 0) : order_.size();
    }
    /// A packet by its place in the order of time.
    /// @param place  below `timedSize`
    [[nodiscard]] std::size_t inTimeOrder(std::size_t place) const noexcept {
        return order_.empty() ? place : order_[place];
    }
    /// The places in the order of time that a window takes, by search; the second is after the
    /// last.
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::pair<std::size_t, std::size_t> placesIn(
        TimeWindow const& window) const noexcept;
    /// Whether any packet has a redundancy sequence number.
    [[nodiscard]] bool hasRedundancy() const noexcept { return hasRedundancy_; }
    /// Whether any packet has a PRP trailer that does not fit.
    [[nodiscard]] bool hasTrailerMisfit() const noexcept { return hasTrailerMisfit_; }

    /// Column by column.
    friend TALIEC61850ANALYSIS_EXPORT bool operator==(PacketColumns const& a,
                                                      PacketColumns const& b) noexcept;

private:
    /// @cond
    friend class detail::ColumnsWriter;

    /// A counter that its column does not hold.
    struct WideCounter {
        std::uint32_t packet = 0;
        bool isSecond = false;
        OctetString octets;

        friend bool operator==(WideCounter const&, WideCounter const&) = default;
    };

    /// The value of a column that all packets have; where they differ, they are in the block.
    template <typename Value>
    struct CommonValue {
        Value value{};
        bool isCommon = true;
    };

    /// Where columns are in the block: octets of a packet in the columns before each, and in all.
    /// Wider ones come first, so that each is aligned.
    struct ColumnPlaces {
        std::size_t times;
        std::size_t frameOffsets;
        std::size_t firstCounters;
        std::size_t secondCounters;
        std::size_t pduOffsets;
        std::size_t sequences;
        std::size_t flags;
        std::size_t asdus;
        std::size_t end;
    };
    static constexpr ColumnPlaces kGoosePlaces = {.times = 0,
                                                  .frameOffsets = 8,
                                                  .firstCounters = 16,
                                                  .secondCounters = 20,
                                                  .pduOffsets = 24,
                                                  .sequences = 26,
                                                  .flags = 28,
                                                  .asdus = 30,
                                                  .end = 30};
    static constexpr ColumnPlaces kSvPlaces = {.times = 0,
                                               .frameOffsets = 8,
                                               .firstCounters = 16,
                                               .secondCounters = 28,
                                               .pduOffsets = 20,
                                               .sequences = 22,
                                               .flags = 24,
                                               .asdus = 26,
                                               .end = 29};
    /// @endcond

    [[nodiscard]] bool isGoose() const noexcept { return protocol_ == StreamProtocol::goose; }
    [[nodiscard]] ColumnPlaces const& places() const noexcept {
        return isGoose() ? kGoosePlaces : kSvPlaces;
    }
    /// @param place  of the column, a member of ColumnPlaces
    template <typename Value>
    [[nodiscard]] std::span<Value const> column(std::size_t place) const noexcept {
        return {reinterpret_cast<Value const*>(block_.get() + place * capacity_), size_};
    }
    template <typename Value>
    [[nodiscard]] ColumnView<Value> view(CommonValue<Value> const& common,
                                         std::size_t place) const noexcept {
        return common.isCommon ? ColumnView<Value>(common.value, size_)
                               : ColumnView<Value>(column<Value>(place).data(), size_);
    }
    /// Where a column starts; it has room for `capacity_` values.
    template <typename Value>
    [[nodiscard]] Value* columnStart(std::size_t place) noexcept {
        return reinterpret_cast<Value*>(block_.get() + place * capacity_);
    }
    [[nodiscard]] OctetString const* findWide(std::size_t packet, bool isSecond) const noexcept;

    StreamProtocol protocol_ = StreamProtocol::goose;
    bool hasTimes_ = false;
    bool hasRedundancy_ = false;
    bool hasTrailerMisfit_ = false;
    CommonValue<std::uint16_t> pduOffset_;
    CommonValue<std::uint16_t> sequence_;
    CommonValue<PacketFlags> flags_;
    CommonValue<std::uint16_t> asdu_;
    CommonValue<std::uint8_t> smpSynch_;
    std::size_t size_ = 0;
    /// Packets that there is room for in each column. What is not used was never written, so that
    /// the system gives no memory for it.
    std::size_t capacity_ = 0;
    /// One column after the other.
    std::unique_ptr<std::byte[]> block_;
    std::vector<std::uint32_t> order_;
    /// By packet, the first counter before the second.
    std::vector<WideCounter> wide_;
};

}  // namespace TalIec61850Analysis
