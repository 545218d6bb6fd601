#pragma once

#include <TalIec61850Analysis/samples/FindLayouts.hpp>
#include <TalIec61850Analysis/samples/SampleReader.hpp>
#include <TalIec61850Analysis/samples/SummarizeSamples.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <functional>
#include <optional>
#include <system_error>
#include <vector>

#include "tools/commands/CommandRun.hpp"
#include "tools/commands/NamesOfRun.hpp"
#include "tools/options/SampleOptions.hpp"
#include "tools/selection/ChannelMeaning.hpp"

namespace TalIec61850Tools {

/// An SV stream whose samples are wanted.
struct WantedStream {
    TalIec61850Analysis::TrafficStream const* stream = nullptr;
    /// What its samples are taken for.
    std::vector<TalIec61850Analysis::StreamLayout> layouts;
    /// What they are by a description; null where it has none, or the user says something else.
    DescribedSamples const* described = nullptr;

    /// What the channels of its samples mean; empty where nothing is known.
    [[nodiscard]] std::vector<ChannelMeaning> const& meanings(
        TalIec61850Analysis::SampleLayout const& layout) const {
        return described != nullptr && described->layout == layout ? described->channels
                                                                   : meaningsOf(layout);
    }
    /// Whether a layout is that of a description.
    [[nodiscard]] bool isDescribed(TalIec61850Analysis::FoundLayout const& found) const {
        return described != nullptr && found.layout == described->layout &&
               found.source == TalIec61850Analysis::LayoutSource::given;
    }
};

/// The samples that SampleChoice selects, for the commands that write them.
class WantedSamples {
public:
    /// Takes a block, and says whether more are wanted.
    using BlockSink = std::function<bool(TalIec61850Analysis::SampleBlock const& block)>;

    /// Indexes the captures of the run, reports what is wrong with them, and finds out what samples
    /// are made of.
    /// @param run, choice  must outlive this
    WantedSamples(CommandRun& run, SampleChoice const& choice);

    /// The streams, in the order of the index.
    [[nodiscard]] std::vector<WantedStream> const& streams() const { return streams_; }
    /// How many channels the samples have that have most; octets without a layout are one.
    /// @throws UsageError  none of them is wanted
    [[nodiscard]] std::size_t mostChannels() const;
    [[nodiscard]] TalIec61850Analysis::TrafficIndex const& index() const { return index_; }

    /// How samples are to be read.
    [[nodiscard]] TalIec61850Analysis::SampleOptions options(
        TalIec61850Analysis::SampleRows rows) const {
        return options(rows, choice_.window);
    }
    /// The layout of samples of its size, by the user or by a description.
    [[nodiscard]] std::optional<TalIec61850Analysis::SampleLayout> layoutOf(
        WantedStream const& stream) const {
        return stream.described != nullptr ? stream.described->layout : choice_.layout;
    }
    /// The same in another window.
    [[nodiscard]] TalIec61850Analysis::SampleOptions options(TalIec61850Analysis::SampleRows rows,
                                                             WindowOptions const& window) const;

    /// Reads the samples of a stream. A capture that cannot be read again is reported, and ends the
    /// stream.
    /// @return what became of its samples
    TalIec61850Analysis::SampleCounts visit(WantedStream const& stream,
                                            TalIec61850Analysis::SampleRows rows,
                                            BlockSink const& take);

    /// All samples of a stream in figures, whatever the window is.
    /// @return not set where a capture cannot be read again, which is reported
    [[nodiscard]] std::optional<TalIec61850Analysis::SampleSummary> summarize(
        WantedStream const& stream);

    /// Whether the attributes of a block are wanted.
    [[nodiscard]] bool isWanted(TalIec61850Analysis::SampleBlock const& block) const;

    /// The names of the run.
    [[nodiscard]] NamesOfRun& names() { return names_; }

    /// The name of a capture.
    [[nodiscard]] std::string const& fileName(std::uint32_t file) const {
        return run_.captures()[file].name;
    }

    /// Says what there is where there is no sample.
    void noteIfNone(std::uint64_t samples) const;

private:
    [[nodiscard]] bool isWanted(TalIec61850Analysis::TrafficStream const& stream) const;
    void describe(WantedStream& stream);
    void findLayoutsOf(WantedStream& stream);
    void lose(TalIec61850Analysis::TrafficStream const& stream, std::error_code const& error);

    CommandRun& run_;
    SampleChoice const& choice_;
    NamesOfRun names_;
    PacketCriteria criteria_;
    TalIec61850Analysis::TrafficIndex index_;
    std::vector<WantedStream> streams_;
    bool isLost_ = false;
};

}  // namespace TalIec61850Tools
