#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/samples/LayoutInference.hpp>
#include <TalIec61850Analysis/samples/SampleLayout.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <optional>
#include <vector>

namespace TalIec61850Analysis {

/// What seqData of a stream is taken for, and how long it is.
struct StreamLayout {
    /// Octets of seqData.
    std::size_t dataSize = 0;
    /// What they are.
    FoundLayout found;

    /// Member by member.
    friend bool operator==(StreamLayout const&, StreamLayout const&) = default;
};

/// Looks at some hundred ASDUs all over a stream, and at the first ones of each data set and of
/// each revision of it, and infers what they are made of. Mostly there is one layout; where the
/// data set changes there are several, in the order in which they are met.
/// @param index   of the captures
/// @param stream  of the index, SV
/// @param given   the layout of samples of its size
/// @throws std::system_error  a capture cannot be read, or no longer has its packets (ESTALE)
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::vector<StreamLayout> findLayouts(
    TrafficIndex const& index, TrafficStream const& stream,
    std::optional<SampleLayout> given = std::nullopt);

}  // namespace TalIec61850Analysis
