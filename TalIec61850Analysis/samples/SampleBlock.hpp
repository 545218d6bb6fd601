#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/samples/LayoutInference.hpp>
#include <TalIec61850Analysis/samples/SampleLayout.hpp>
#include <TalIec61850Analysis/samples/SampleRun.hpp>
#include <TalIec61850Analysis/samples/SampleTimeSource.hpp>
#include <TalIec61850Analysis/time/CaptureTime.hpp>
#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <TalIec61850Analysis/traffic/StreamAttributes.hpp>
#include <cstddef>
#include <cstdint>
#include <variant>
#include <vector>

namespace TalIec61850Analysis {

/// Where an ASDU is.
struct SamplePlace {
    /// Of its octet 30, in the file.
    std::uint64_t fileOffset = 0;
    /// The number of the file in the index.
    std::uint32_t file = 0;
    /// The number of the ASDU in its frame, from 0.
    std::uint16_t asdu = 0;

    /// Member by member.
    friend bool operator==(SamplePlace const&, SamplePlace const&) = default;
};

/// What is to be said of a sample in single bits.
enum class SampleState : std::uint8_t {
    received,   ///< it came
    missing,    ///< it never came; its values are 0
    uncounted,  ///< it came, and has no smpCnt of at most 32 bits
};

/// The values of one channel, a row each, in the type that holds them all.
using ChannelValues = std::variant<std::vector<std::int32_t>, std::vector<std::int64_t>,
                                   std::vector<float>, std::vector<double>>;

/// One channel of a block of samples.
struct ChannelColumn {
    /// The values, as they were sent: nothing is scaled.
    ChannelValues values;
    /// Their quality words, see SampleQuality; empty where the layout has none.
    std::vector<std::uint32_t> qualities;
};

/// Samples of one stream, one after the other: of one run, with one layout, one confRev and one
/// data set. Each column has a value for each row.
struct SampleBlock {
    /// The run that the samples are of.
    SampleRun run;
    /// What seqData is taken for.
    FoundLayout layout;
    /// Those that the first of the samples has; null before there is a sample that came.
    StreamAttributes const* attributes = nullptr;
    /// Octets of seqData.
    std::size_t dataSize = 0;
    /// Whether the times of all samples that came are of a refrTm whose clock takes leap seconds
    /// into account.
    bool areLeapSecondsKnown = false;

    /// When samples were taken, in nanoseconds since 1970, or kNoTime.
    std::vector<std::int64_t> sampleTimes;
    /// Where that comes from.
    std::vector<SampleTimeSource> timeSources;
    /// When the frames were captured, in nanoseconds since 1970, or kNoTime; that of a missing one
    /// is kNoTime.
    std::vector<std::int64_t> arrivals;
    /// smpCnt; of a missing sample, what it would have been.
    std::vector<std::uint32_t> smpCnts;
    /// smpSynch, or kNoSynch; that of a missing sample is that of the one before.
    std::vector<std::uint16_t> smpSynchs;
    /// Whether samples came.
    std::vector<SampleState> states;
    /// Where the ASDUs are; of a missing one, file and ASDU alone.
    std::vector<SamplePlace> places;
    /// The channels of the layout.
    std::vector<ChannelColumn> channels;
    /// Where there is no layout: the octets of seqData, `dataSize` for each row.
    std::vector<std::uint8_t> octets;

    /// In `smpSynchs`: the ASDU has none, or more than an octet of it.
    static constexpr std::uint16_t kNoSynch = 0xFFFF;

    /// How many rows there are.
    [[nodiscard]] std::size_t size() const noexcept { return sampleTimes.size(); }
    /// Whether there is none.
    [[nodiscard]] bool empty() const noexcept { return sampleTimes.empty(); }
    /// The octets of seqData of a row; none where there is a layout.
    /// @param row  below size()
    [[nodiscard]] Octets octetsOf(std::size_t row) const noexcept {
        return octets.empty() ? Octets() : Octets(octets).subspan(row * dataSize, dataSize);
    }
};

}  // namespace TalIec61850Analysis
