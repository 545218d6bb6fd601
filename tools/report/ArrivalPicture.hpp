#pragma once

#include <TalIec61850Analysis/pictures/Envelope.hpp>
#include <TalIec61850Analysis/pictures/EnvelopeBuilder.hpp>
#include <TalIec61850Analysis/samples/SampleReader.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace TalIec61850Tools {

/// Residuals and distances of arrival of a stream, as two channels of columns: a value for each
/// frame, at the time of its first sample, in nanoseconds.
class ArrivalPicture {
public:
    /// @param samples  the window
    /// @param columns  at most
    ArrivalPicture(TalIec61850Analysis::SampleOptions const& samples, std::size_t columns);

    /// Adds all rows of a block.
    void add(TalIec61850Analysis::SampleBlock const& block);

    /// What was added until now. Nothing may be added after that.
    [[nodiscard]] TalIec61850Analysis::Envelopes take() { return builder_.take(); }

private:
    TalIec61850Analysis::EnvelopeBuilder builder_;
    /// When the frame before came.
    std::optional<std::int64_t> before_;
};

}  // namespace TalIec61850Tools
