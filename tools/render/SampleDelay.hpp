#pragma once

#include <TalIec61850Analysis/samples/SampleBlock.hpp>
#include <cstdint>
#include <optional>
#include <string>

namespace TalIec61850Tools {

/// How much later samples of a stream were captured than they were taken.
class SampleDelay {
public:
    void add(TalIec61850Analysis::SampleBlock const& block);

    /// The least of all samples that have both times, in nanoseconds; 0 without any. Below 0, the
    /// clock of the capture is late.
    [[nodiscard]] std::int64_t least() const { return least_.value_or(0); }

private:
    std::optional<std::int64_t> least_;
};

/// Says how far samples in a picture are from what is drawn at the time of its capture.
class DelayNote {
public:
    /// Takes a stream in.
    /// @param delay  as SampleDelay::least
    void add(std::int64_t delay, std::string const& name);

    /// A sentence about the stream of which that is most; empty where no stream is more than a
    /// millisecond away.
    [[nodiscard]] std::string text() const;

private:
    std::int64_t most_ = 0;
    std::string name_;
};

}  // namespace TalIec61850Tools
