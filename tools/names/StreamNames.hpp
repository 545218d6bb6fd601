#pragma once

#include <TalIec61850Analysis/packet/DataView.hpp>
#include <TalIec61850Analysis/samples/FindLayouts.hpp>
#include <TalIec61850Analysis/samples/SampleLayout.hpp>
#include <TalIec61850Analysis/traffic/StreamKey.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <TalIec61850Scl/match/BindMembers.hpp>
#include <TalIec61850Scl/match/MessageBinder.hpp>
#include <TalIec61850Scl/model/StationDescription.hpp>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tools/names/MemberNames.hpp"
#include "tools/selection/ChannelMeaning.hpp"
#include "tools/selection/StreamPublishers.hpp"

namespace TalIec61850Tools {

/// A message, or a frame of samples, in a capture.
struct NamedPlace {
    /// The capture as it was given.
    std::string_view file;
    /// Of the PDU, in octets from the start of the file.
    std::uint64_t position = 0;
};

/// What the samples of a stream are by its description.
struct DescribedSamples {
    TalIec61850Analysis::SampleLayout layout;
    /// One for each channel of the layout, up to a member of unknown width.
    std::vector<ChannelMeaning> channels;
};

/// Where a stream is not as it is described, so that names end. All that it points to holds while
/// it is told.
struct NamesEnd {
    TalIec61850Analysis::StreamKey const& stream;
    TalIec61850Scl::DataSet const& dataSet;
    NamedPlace place;
    /// Of GOOSE, what was bound; null of SV.
    TalIec61850Scl::MemberBinding const* binding = nullptr;
    /// Of SV, the octets of a sample.
    std::size_t sampleSize = 0;
};

/// The names that a description of the station has for streams, for the values of their messages
/// and for their channels. A stream is recognised once, see StreamPublishers; and its values are
/// bound once, and again where their number, nesting or types change.
class StreamNames {
public:
    using Tell = std::function<void(NamesEnd const& end)>;
    using LayoutOf = std::function<std::optional<TalIec61850Analysis::SampleLayout>(
        TalIec61850Analysis::StreamKey const& stream)>;
    /// The name of a capture by its number.
    using NameOfFile = std::function<std::string_view(std::uint32_t file)>;

    /// @param station  not set where there is no description
    /// @param tell     told where names end, once a stream
    StreamNames(std::optional<TalIec61850Scl::StationDescription> station, Tell tell);
    StreamNames(StreamNames const&) = delete;
    StreamNames& operator=(StreamNames const&) = delete;
    ~StreamNames() = default;

    /// Whether there is a description.
    [[nodiscard]] bool areGiven() const { return station_.has_value(); }
    /// Who publishes streams: all that captures have are to be seen there before any is asked for.
    /// Null without a description.
    [[nodiscard]] StreamPublishers* publishers() { return publishers_ ? &*publishers_ : nullptr; }

    /// What publishes a stream; null where it is not described.
    [[nodiscard]] TalIec61850Scl::ControlBlock const* controlBlockOf(
        TalIec61850Analysis::StreamKey const& stream);
    /// What its messages hold; null where that is not described.
    [[nodiscard]] TalIec61850Scl::DataSet const* dataSetOf(
        TalIec61850Analysis::StreamKey const& stream);

    /// The names of the values of a message.
    /// @param stream   GOOSE
    /// @param allData  what the message holds
    /// @return holds as long as these
    [[nodiscard]] MemberNames namesOf(TalIec61850Analysis::StreamKey const& stream,
                                      TalIec61850Analysis::DataViews const& allData,
                                      NamedPlace const& place);

    /// What the samples of a stream should be; null where that is not described, or not in full.
    /// @param stream  SV
    [[nodiscard]] DescribedSamples const* samplesOf(TalIec61850Analysis::StreamKey const& stream);
    /// What they are, as far as that is described: up to a member of unknown width. From there on
    /// they are what they look like, where that agrees with what is described, else octets.
    /// @param found  what samples of their size look like
    /// @return null where samples of this size are not described
    [[nodiscard]] DescribedSamples const* samplesOf(TalIec61850Analysis::StreamKey const& stream,
                                                    TalIec61850Analysis::StreamLayout const& found,
                                                    NamedPlace const& place);

    /// The same of the samples that a stream of an index begins with, unless it is described in
    /// full.
    /// @throws std::system_error  a capture cannot be read
    [[nodiscard]] DescribedSamples const* samplesOf(
        TalIec61850Analysis::TrafficIndex const& index,
        TalIec61850Analysis::TrafficStream const& stream, NameOfFile const& nameOf);

    /// The layout of the samples of a stream, as it is described in full; empty without a
    /// description. It refers to these names.
    [[nodiscard]] LayoutOf layouts();
    /// The same of streams of an index, as far as it is described; it refers to the index, too.
    /// What cannot be read has none.
    [[nodiscard]] LayoutOf layouts(TalIec61850Analysis::TrafficIndex const& index,
                                   NameOfFile nameOf);

    /// Looks at which IEDs are in play.
    void look(TalIec61850Analysis::TrafficIndex const& index);
    /// Whether these were several.
    [[nodiscard]] bool areOfSeveralIeds() const { return ieds_.size() > 1; }

private:
    /// What is kept of a stream.
    struct Known {
        TalIec61850Scl::ControlBlock const* controlBlock = nullptr;
        TalIec61850Scl::DataSet const* dataSet = nullptr;
        bool isTold = false;
        // GOOSE.
        std::optional<TalIec61850Scl::MessageBinder> binder = {};
        // SV.
        bool isBound = false;
        std::optional<DescribedSamples> samples = {};
        /// By their size, those that are not described in full; not set where they are not at all.
        std::map<std::size_t, std::optional<DescribedSamples>> parts = {};
        /// One of these: that of the samples that the stream begins with. Not set before it is
        /// asked for.
        std::optional<DescribedSamples const*> first = {};
    };

    [[nodiscard]] Known& knownOf(TalIec61850Analysis::StreamKey const& stream);
    [[nodiscard]] static std::optional<DescribedSamples> partOf(
        TalIec61850Scl::DataSet const& dataSet, TalIec61850Analysis::StreamLayout const& found);
    void tell(Known& known, NamesEnd const& end);

    std::optional<TalIec61850Scl::StationDescription> station_;
    std::optional<StreamPublishers> publishers_;
    Tell tell_;
    std::unordered_map<TalIec61850Analysis::StreamKey, Known, TalIec61850Analysis::StreamKeyHash>
        known_;
    std::set<std::string> ieds_;
};

}  // namespace TalIec61850Tools
