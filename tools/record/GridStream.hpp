#pragma once

#include <TalIec61850Analysis/samples/SampleReader.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "tools/record/RecordGrid.hpp"

namespace TalIec61850Tools {

/// How samples come to be in the rows of a record.
enum class GridPlacing {
    exact,    ///< each is at the time of its row
    nearest,  ///< each is in the row that is nearest to its time
};

/// Samples of a stream in rows of a record, one after the other.
struct GridSpan {
    /// The first row.
    std::int64_t row = 0;
    std::size_t count = 0;
    /// Their block; null where the stream has nothing for these rows.
    TalIec61850Analysis::SampleBlock const* block = nullptr;
    /// The first sample in the block.
    std::size_t first = 0;
};

/// What became of samples that are put into the nearest rows, at a rate that is not quite theirs.
struct GridAlignment {
    /// In no row: another one is nearest to it, too.
    std::uint64_t leftOut = 0;
    /// In a row of their own and the one before it, to which none is nearest.
    std::uint64_t inTwoRows = 0;
};

/// Puts the samples of one stream into the rows of a record. They must be of one make: one layout,
/// one confRev, one data set.
class GridStream {
public:
    /// The place of a sample in words, for what is refused.
    using PlaceText =
        std::function<std::string(TalIec61850Analysis::SampleBlock const& block, std::size_t row)>;
    /// Whether a block is wanted at all.
    using Wanted = std::function<bool(TalIec61850Analysis::SampleBlock const& block)>;

    /// @param index, stream  must outlive this
    /// @param options        of which `rows` is everySample
    /// @param beside         one that is gone through together with this one, row by row; or null
    /// @param before         has read all that is before the window; or null
    /// @param grid           not set where the first sample is to be row 0, at the stream's rate
    GridStream(TalIec61850Analysis::TrafficIndex const& index,
               TalIec61850Analysis::TrafficStream const& stream,
               TalIec61850Analysis::SampleOptions options, std::optional<RecordGrid> grid,
               GridPlacing placing, PlaceText placeText, Wanted isWanted,
               GridStream const* beside = nullptr,
               TalIec61850Analysis::SampleReader const* before = nullptr);

    /// Has each block shown that is read from now on.
    void showTo(std::function<void(TalIec61850Analysis::SampleBlock const& block)> look) {
        look_ = std::move(look);
    }

    /// What the stream has from a row on: some rows with samples, or some without.
    /// @param row  not before one that was asked for
    /// @return not set after the last sample; valid until the next call
    /// @throws RecordRefusal      the samples make no record
    /// @throws std::system_error  a capture cannot be read again
    [[nodiscard]] std::optional<GridSpan> at(std::int64_t row);

    /// The grid; known once a sample has been read.
    [[nodiscard]] std::optional<RecordGrid> const& grid() const { return grid_; }

    /// Of the rows that were asked for, each once.
    [[nodiscard]] GridAlignment const& alignment() const { return alignment_; }

    /// What read them; the stream is not of use after that.
    [[nodiscard]] TalIec61850Analysis::SampleReader takeReader() { return std::move(reader_); }

    /// What became of the samples that were gone through.
    [[nodiscard]] TalIec61850Analysis::SampleCounts counts() const { return reader_.counts(); }

private:
    using SampleBlock = TalIec61850Analysis::SampleBlock;

    [[nodiscard]] bool readBlock();
    void checkMake(SampleBlock const& block);
    [[nodiscard]] bool goesOn() const;
    void placeBlock();
    void placeNext();
    [[nodiscard]] std::int64_t placeOf(std::size_t row) const;
    [[noreturn]] void refuse(std::size_t row, std::string const& why) const;

    TalIec61850Analysis::TrafficStream const& stream_;
    TalIec61850Analysis::SampleReader reader_;
    std::optional<RecordGrid> grid_;
    GridPlacing placing_;
    PlaceText placeText_;
    Wanted isWanted_;
    std::function<void(SampleBlock const& block)> look_;

    SampleBlock const* block_ = nullptr;
    bool isOver_ = false;
    /// The sample of the block that is next, its row, and how many after it are in the rows after
    /// that.
    std::size_t next_ = 0;
    std::int64_t nextRow_ = 0;
    std::size_t inRow_ = 0;
    std::optional<std::int64_t> lastRow_;
    GridAlignment alignment_;
    /// Of the block before.
    std::optional<TalIec61850Analysis::PacketRef> run_;
    std::optional<TalIec61850Analysis::FoundLayout> layout_;
    TalIec61850Analysis::StreamAttributes const* attributes_ = nullptr;
};

}  // namespace TalIec61850Tools
