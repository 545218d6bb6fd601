#pragma once

#include <TalIec61850Analysis/events/FindEvents.hpp>
#include <TalIec61850Analysis/samples/SampleReader.hpp>
#include <TalIec61850Analysis/supervision/SuperviseTraffic.hpp>
#include <TalIec61850Analysis/time/TimeWindow.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/commands/CommandRun.hpp"
#include "tools/commands/NamesOfRun.hpp"
#include "tools/names/MessageNames.hpp"
#include "tools/options/SampleOptions.hpp"
#include "tools/render/PictureNames.hpp"

namespace TalIec61850Tools {

/// How samples of one stream are read for a picture.
struct PicturedSamples {
    /// Window, layout and rate.
    TalIec61850Analysis::SampleOptions options;
    /// What they are by a description; null without one.
    DescribedSamples const* described = nullptr;
    /// Numbers from 0; empty for all.
    std::vector<std::size_t> channels;
};

/// What selects streams of each protocol.
struct CriteriaOfBoth {
    PacketCriteria goose;
    PacketCriteria sv;

    [[nodiscard]] PacketCriteria const& of(Protocol protocol) const {
        return protocol == Protocol::goose ? goose : sv;
    }
};

/// The traffic that a picture is made of, for the commands that draw: which streams of both
/// protocols and which time are shown, how things are called, and what was found then.
class PicturedTraffic {
public:
    /// Indexes the captures of the run, and reports what is wrong with them.
    /// @param run, choice  must outlive this
    PicturedTraffic(CommandRun& run, SampleChoice const& choice);
    PicturedTraffic(PicturedTraffic const&) = delete;
    PicturedTraffic& operator=(PicturedTraffic const&) = delete;
    ~PicturedTraffic() = default;

    /// All streams of the captures: those that are not wanted tell who lost packets.
    [[nodiscard]] TalIec61850Analysis::TrafficIndex const& index() const { return index_; }
    /// Names of the captures, by the numbers of the files.
    [[nodiscard]] std::vector<std::string> const& files() const { return files_; }
    /// The window that was asked for; open where none was.
    [[nodiscard]] TalIec61850Analysis::TimeWindow const& window() const { return window_; }
    /// The first and the last instant of the window, or else of the captures, in nanoseconds since
    /// 1970; `from` is not after `to`.
    [[nodiscard]] std::int64_t from() const { return from_; }
    [[nodiscard]] std::int64_t to() const { return to_; }

    /// What pictures call streams and members. Streams of one name are told apart by their sources.
    [[nodiscard]] PictureNames const& names() const { return names_; }
    [[nodiscard]] NamesOfRun& described() { return described_; }
    /// The names of the values of messages.
    [[nodiscard]] MessageNames& messages() { return messages_; }
    /// The name of a capture by its number.
    [[nodiscard]] std::function<std::string_view(std::uint32_t)> nameOfFile() const;

    /// Whether each stream is wanted, by its number in the index.
    [[nodiscard]] std::vector<bool> const& areWanted() const { return areWanted_; }
    [[nodiscard]] bool isWanted(TalIec61850Analysis::StreamKey const& key) const;
    /// The numbers of the streams of a protocol that are wanted, in the order of the index.
    [[nodiscard]] std::vector<std::size_t> wanted(Protocol protocol) const;
    /// Says on standard error where no stream is wanted, or none has a packet in the window, and
    /// what there is.
    void noteIfNone() const;

    /// How samples of an SV stream are to be read: a layout on the command line counts, then one by
    /// a description.
    [[nodiscard]] PicturedSamples samplesOf(TalIec61850Analysis::TrafficStream const& stream);
    /// Whether samples with the attributes of a block are wanted.
    [[nodiscard]] bool isWanted(TalIec61850Analysis::SampleBlock const& block) const;
    /// Which events are wanted.
    [[nodiscard]] TalIec61850Analysis::EventOptions events() const;
    /// Tells the findings of the streams that are wanted and of the time that is shown. Captures
    /// that cannot be read are reported.
    void supervise(TalIec61850Analysis::FindingSink take);
    /// The same, and then tells those streams in figures, in the order of the index. This takes
    /// somewhat longer.
    void supervise(TalIec61850Analysis::FindingSink take,
                   TalIec61850Analysis::StreamSummarySink tell);

    /// Takes a step that reads captures. Those that cannot be read are reported, and the step ends.
    /// @throws OutputError  of the step
    void attempt(std::function<void()> const& step);

private:
    [[nodiscard]] bool hasPacketsInWindow() const;
    [[nodiscard]] bool areStreamsSelected() const;
    [[nodiscard]] bool isWanted(TalIec61850Analysis::Finding const& finding) const;
    [[nodiscard]] TalIec61850Analysis::SupervisionOptions supervision();
    [[nodiscard]] std::string nameOf(TalIec61850Analysis::TrafficStream const& stream) const;
    [[nodiscard]] std::string nameOf(TalIec61850Analysis::TrafficStream const& stream,
                                     std::vector<std::uint32_t> const& member);

    CommandRun& run_;
    SampleChoice const& choice_;
    NamesOfRun described_;
    /// What streams are asked for, with what tells their IEDs.
    PacketCriteria asked_;
    CriteriaOfBoth criteria_;
    TalIec61850Analysis::TrafficIndex index_;
    TalIec61850Analysis::TimeWindow window_;
    MessageNames messages_;
    PictureNames names_;
    /// How many streams have a name. Names are those of the index.
    std::map<std::pair<Protocol, std::string_view>, std::size_t> namesakes_;
    /// Those of the first messages of streams, by their numbers.
    std::map<std::size_t, MemberNames> members_;
    std::vector<std::string> files_;
    std::vector<bool> areWanted_;
    std::int64_t from_ = 0;
    std::int64_t to_ = 0;
};

}  // namespace TalIec61850Tools
