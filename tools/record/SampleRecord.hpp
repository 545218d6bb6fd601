#pragma once

#include <TalIec61850Analysis/comtrade/ComtradeRecord.hpp>
#include <TalIec61850Analysis/comtrade/ComtradeRows.hpp>
#include <TalIec61850Analysis/samples/SampleReader.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "tools/names/StreamNames.hpp"
#include "tools/record/GooseStates.hpp"
#include "tools/record/GridStream.hpp"
#include "tools/record/RecordGrid.hpp"
#include "tools/selection/CaptureTime.hpp"

namespace TalIec61850Tools {

/// Which bits of quality words become digital channels.
enum class QualityChannels {
    none,
    bits,  ///< invalid, questionable and test
    all,   ///< those, and every other
};

/// One stream of a record.
struct RecordSource {
    TalIec61850Analysis::TrafficStream const* stream = nullptr;
    /// Numbers of channels, from 0; empty for all. Those that samples do not have are left out.
    std::vector<std::size_t> channels;
    /// Factors that the user gave, by the number of the channel; empty for those that are known.
    std::vector<double> scales;
    /// What samples of its size are; else it is inferred.
    std::optional<TalIec61850Analysis::SampleLayout> given = {};
    /// What its samples are by a description; null without one.
    DescribedSamples const* described = nullptr;
    /// Has read all that is before the window; null where nothing has.
    std::shared_ptr<TalIec61850Analysis::SampleReader const> before = {};
    /// Found when the record is made: has read all that is before the end of the window.
    std::shared_ptr<TalIec61850Analysis::SampleReader const> upToEnd = {};
    /// Found when the record is made.
    TalIec61850Analysis::SampleLayout layout = {};
    /// Whether smpSynch is 2 in some samples, and not in others; found then, too.
    bool isSynchMixed = false;
};

/// What a record is to be.
struct RecordWish {
    TalIec61850Analysis::ComtradeFormat format;
    std::vector<RecordSource> sources;
    /// The window and the rate; `rows` is everySample.
    TalIec61850Analysis::SampleOptions options;
    QualityChannels quality = QualityChannels::none;
    GridPlacing placing = GridPlacing::exact;
    /// May be empty; must outlive the record.
    std::vector<GooseState> const* states = nullptr;
    std::optional<CaptureTime> trigger;
    std::optional<double> frequency;
    /// Empty for the svID of the first stream.
    std::string station;
};

/// What was found out of the samples before they are written.
struct RecordSurvey {
    RecordGrid grid;
    /// Rows of the record.
    std::uint64_t rows = 0;
    /// What the samples of all streams came to: those that are in the record.
    std::uint64_t received = 0;
    std::uint64_t missing = 0;
    /// What came of putting samples into the nearest rows.
    GridAlignment alignment;
    /// How many times came from where, by SampleTimeSource.
    std::array<std::uint64_t, 4> timeSources{};
    TalIec61850Analysis::RateSource rateSource = TalIec61850Analysis::RateSource::none;
    /// Whether smpSynch is 2 in every sample.
    bool isGlobal = true;
    /// Whether every sample has a refrTm whose clock takes leap seconds into account.
    bool areLeapSecondsKnown = true;
};

/// Samples of streams, and states of GOOSE members, as one COMTRADE record.
class SampleRecord {
public:
    /// Goes through the samples once, to find out how many rows there are; their values are read
    /// where numbers have to be fitted to the format.
    /// @param index  must outlive the record
    /// @throws RecordRefusal      the samples make no record
    /// @throws std::system_error  a capture cannot be read again
    SampleRecord(TalIec61850Analysis::TrafficIndex const& index, RecordWish wish,
                 GridStream::PlaceText placeText, GridStream::Wanted isWanted);

    /// Not of use where there is no row.
    [[nodiscard]] TalIec61850Analysis::ComtradeRecord const& record() const { return record_; }
    [[nodiscard]] RecordSurvey const& survey() const { return survey_; }

    /// The streams that have samples in the record.
    [[nodiscard]] std::vector<RecordSource> const& sources() const { return wish_.sources; }

    /// Takes a block of one of the sources.
    using Look =
        std::function<void(std::size_t source, TalIec61850Analysis::SampleBlock const& block)>;

    /// Adds all rows.
    /// @param look  shown each block of samples before its rows are added; may be empty
    /// @return what became of the samples of each source that were gone through, those before the
    ///         record included
    /// @throws RecordRefusal, std::system_error  as above
    [[nodiscard]] std::vector<TalIec61850Analysis::SampleCounts> write(
        TalIec61850Analysis::ComtradeRows& rows, Look const& look = {}) const;

private:
    /// The smallest and the largest value of a channel.
    struct Extent {
        double smallest = 0;
        double largest = 0;
        bool isKnown = false;

        /// Looks at the samples of some rows.
        void add(GridSpan const& span, std::size_t channel);
    };

    [[nodiscard]] TalIec61850Analysis::SampleOptions optionsOf(RecordSource const& source,
                                                               bool withValues) const;
    [[nodiscard]] GridStream open(RecordSource const& source, std::optional<RecordGrid> grid,
                                  bool withValues) const;
    [[nodiscard]] std::vector<GridStream> openTogether() const;
    [[nodiscard]] bool needsExtents() const;
    void findGrid();
    [[nodiscard]] static bool findMake(RecordSource& source, GridStream& stream,
                                       GridStream::PlaceText const& placeText);
    void surveySource(std::size_t number);
    /// In how many samples smpSynch is 2, and in how many it is not.
    struct SynchCounts {
        std::uint64_t global = 0;
        std::uint64_t other = 0;
    };

    void countSamples(GridSpan const& span, SynchCounts& synch);
    void checkDrift(std::span<std::optional<GridSpan> const> spans) const;
    void describe();
    [[nodiscard]] TalIec61850Analysis::ComtradeAnalog analogOf(std::size_t number,
                                                               std::size_t channel,
                                                               ChannelMeaning const* meaning) const;
    void describeSource(std::size_t number);
    void describeQuality(std::string const& channel);

    TalIec61850Analysis::TrafficIndex const& index_;
    RecordWish wish_;
    GridStream::PlaceText placeText_;
    GridStream::Wanted isWanted_;
    RecordSurvey survey_;
    /// By source, and by the number of the channel.
    std::vector<std::vector<Extent>> extents_;
    TalIec61850Analysis::ComtradeRecord record_;
};

}  // namespace TalIec61850Tools
