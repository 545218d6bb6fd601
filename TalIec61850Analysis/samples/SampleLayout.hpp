#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace TalIec61850Analysis {

/// The types that members of a data set have in a sample (IEC 61850-9-2): without tags, each of its
/// own width, the most significant octet first.
enum class SampleType : std::uint8_t {
    boolean,     ///< 1 octet
    int8,        ///< 1 octet
    int16,       ///< 2 octets
    int24,       ///< 3 octets
    int32,       ///< 4 octets
    int64,       ///< 8 octets
    int8u,       ///< 1 octet
    int16u,      ///< 2 octets
    int24u,      ///< 3 octets
    int32u,      ///< 4 octets
    float32,     ///< 4 octets
    float64,     ///< 8 octets
    enumerated,  ///< 4 octets
    quality,     ///< 4 octets
    timestamp,   ///< 8 octets, a UtcTime
};

/// Octets that a member takes in a sample.
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::size_t sizeOf(SampleType type) noexcept;

/// In which type a channel's values are given: the smallest of these that holds them all.
enum class ValueType : std::uint8_t { int32, int64, float32, float64 };

/// One quantity in the samples of a stream.
struct SampleChannel {
    /// Of the value; neither quality nor timestamp.
    SampleType type = SampleType::int32;
    /// Where the value is in seqData, in octets.
    std::size_t offset = 0;
    /// Where the quality word of the value is; not set where it has none.
    std::optional<std::size_t> qualityOffset;
    /// Where its time is, a UtcTime; not set where it has none.
    std::optional<std::size_t> timeOffset = std::nullopt;

    /// In which type the values are given.
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT ValueType valueType() const noexcept;

    /// Member by member.
    friend bool operator==(SampleChannel const&, SampleChannel const&) = default;
};

/// What the octets of seqData are: the members of the data set, one after the other. What the last
/// octets are may be unknown.
///
/// Each member that is a value is a channel. A quality directly after it is its quality, a
/// timestamp directly after these is its time; any other quality or timestamp is passed over.
class SampleLayout {
public:
    SampleLayout() = default;
    /// @param members  of seqData, in their order
    /// @param rest     octets after them of which nothing is known: they are no channel
    TALIEC61850ANALYSIS_EXPORT explicit SampleLayout(std::vector<SampleType> members,
                                                     std::size_t rest = 0);

    /// The members, as they were given.
    [[nodiscard]] std::span<SampleType const> members() const noexcept { return members_; }
    /// The channels, in the order of their values.
    [[nodiscard]] std::span<SampleChannel const> channels() const noexcept { return channels_; }
    /// Octets of seqData.
    [[nodiscard]] std::size_t size() const noexcept { return size_; }
    /// Those of them that come after the members.
    [[nodiscard]] std::size_t rest() const noexcept { return rest_; }
    /// Whether any channel has a quality word.
    [[nodiscard]] bool hasQuality() const noexcept { return hasQuality_; }

    /// Member by member.
    friend bool operator==(SampleLayout const& a, SampleLayout const& b) {
        return a.members_ == b.members_ && a.rest_ == b.rest_;
    }

private:
    std::vector<SampleType> members_;
    std::vector<SampleChannel> channels_;
    std::size_t size_ = 0;
    std::size_t rest_ = 0;
    bool hasQuality_ = false;
};

}  // namespace TalIec61850Analysis
