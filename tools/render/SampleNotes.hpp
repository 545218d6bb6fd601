#pragma once

#include <TalIec61850Analysis/samples/SampleBlock.hpp>
#include <TalIec61850Analysis/samples/SampleRun.hpp>
#include <TalIec61850Analysis/traffic/TrafficStream.hpp>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace TalIec61850Tools {

/// A rate, and what tells it: "4000 samples a second, by smpRate".
[[nodiscard]] std::string rateText(TalIec61850Analysis::SampleRate const& rate,
                                   TalIec61850Analysis::RateSource source);

/// Says what changes in the course of the samples of a stream, and what they are taken for where
/// that is not certain: a line each, with the place.
class SampleNotes {
public:
    /// @param stream  must outlive this
    /// @param nameOf  of a capture by its number
    /// @param say     called with each line, safe for a terminal
    SampleNotes(TalIec61850Analysis::TrafficStream const& stream,
                std::function<std::string const&(std::uint32_t)> nameOf,
                std::function<void(std::string const&)> say);

    /// To be called with each block, in their order.
    void look(TalIec61850Analysis::SampleBlock const& block);

    /// To be called once, at last: how many notes were held back, and what was lost.
    void finish(TalIec61850Analysis::SampleCounts const& counts);

private:
    /// What is kept of the block before.
    struct Before {
        TalIec61850Analysis::SampleRun run;
        TalIec61850Analysis::FoundLayout layout;
        std::size_t dataSize = 0;
        TalIec61850Analysis::StreamAttributes const* attributes = nullptr;
    };

    void lookAtLayout(TalIec61850Analysis::SampleBlock const& block);
    void lookAtRun(TalIec61850Analysis::SampleBlock const& block);
    void lookAtAttributes(TalIec61850Analysis::SampleBlock const& block);
    void note(TalIec61850Analysis::SampleBlock const& block, std::string const& text);

    TalIec61850Analysis::TrafficStream const& stream_;
    std::function<std::string const&(std::uint32_t)> nameOf_;
    std::function<void(std::string const&)> say_;
    std::optional<Before> before_;
    std::uint64_t notes_ = 0;
};

}  // namespace TalIec61850Tools
