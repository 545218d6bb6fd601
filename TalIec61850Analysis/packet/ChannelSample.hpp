#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/packet/SampleQuality.hpp>
#include <cstddef>
#include <cstdint>
#include <variant>
#include <vector>

namespace TalIec61850Analysis {

/// One channel of one sample, as received: nothing is scaled.
struct ChannelSample {
    /// As the sender counts it.
    std::int32_t value = 0;
    /// The quality word after it.
    SampleQuality quality;

    /// Member by member.
    friend bool operator==(ChannelSample const&, ChannelSample const&) = default;
};

/// The octets of seqData, and the channels in them where they can be such: a value of 32 bits and a
/// quality word each, as 9-2LE has them. Points into the frame.
class SamplesView {
public:
    SamplesView() = default;
    /// @param octets  of seqData; must outlive the view
    explicit SamplesView(Octets octets) noexcept : octets_(octets) {}

    /// All octets of seqData.
    [[nodiscard]] Octets octets() const noexcept { return octets_; }
    /// Whether the octets are made of eight for each channel; with any other length the data set is
    /// of another make. Another make can have such a length too.
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT bool holdsChannels() const noexcept;
    /// How many channels there are; 0 unless holdsChannels().
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::size_t size() const noexcept;
    /// @param index  below size()
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT ChannelSample
    operator[](std::size_t index) const noexcept;

private:
    Octets octets_;
};

/// The channels where seqData holds them, or else its octets.
using SequenceOfData = std::variant<std::vector<ChannelSample>, OctetString>;

/// A copy with octets of its own.
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT SequenceOfData toOwned(SamplesView const& samples);

}  // namespace TalIec61850Analysis
