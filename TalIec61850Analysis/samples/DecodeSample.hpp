#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/packet/SampleQuality.hpp>
#include <TalIec61850Analysis/samples/SampleLayout.hpp>
#include <TalIec61850Analysis/time/UtcTime.hpp>
#include <cstdint>
#include <optional>
#include <variant>
#include <vector>

namespace TalIec61850Analysis {

/// One channel of one sample, as it was sent: nothing is scaled.
struct SampleValue {
    /// In the type of SampleChannel::valueType.
    std::variant<std::int32_t, std::int64_t, float, double> value;
    /// Not set where the channel has none.
    std::optional<SampleQuality> quality;
    /// Not set where the channel has none.
    std::optional<UtcTime> time = std::nullopt;

    /// Member by member.
    friend bool operator==(SampleValue const&, SampleValue const&) = default;
};

/// Decodes one sample; for many, see SampleReader.
/// @param layout   what the octets are
/// @param seqData  the octets of the sample
/// @return one for each channel of the layout; none where there are not as many octets as the
///         layout has
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::vector<SampleValue> decodeSample(
    SampleLayout const& layout, Octets seqData);

}  // namespace TalIec61850Analysis
