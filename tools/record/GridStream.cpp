#include "tools/record/GridStream.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "tools/output/TextEscape.hpp"
#include "tools/record/RecordRefusal.hpp"

namespace TalIec61850Tools {

using namespace TalIec61850Analysis;

namespace {

/// Samples are at the times of their rows within this part of an interval: refrTm counts in 60 ns,
/// and times are cut to nanoseconds.
constexpr double kSamePhase = 0.02;

}  // namespace

GridStream::GridStream(TrafficIndex const& index, TrafficStream const& stream,
                       SampleOptions options, std::optional<RecordGrid> grid, GridPlacing placing,
                       PlaceText placeText, Wanted isWanted, GridStream const* beside,
                       SampleReader const* before)
    : stream_(stream),
      reader_(beside == nullptr ? SampleReader(index, stream, std::move(options))
                                : SampleReader(index, stream, std::move(options), beside->reader_)),
      grid_(grid),
      placing_(placing),
      placeText_(std::move(placeText)),
      isWanted_(std::move(isWanted)) {
    if (before != nullptr) {
        reader_.startAfter(*before);
    }
}

void GridStream::refuse(std::size_t row, std::string const& why) const {
    throw RecordRefusal(
        fmt::format("{}: {}: {}", placeText_(*block_, row), escapeText(stream_.key.name), why));
}

std::optional<GridSpan> GridStream::at(std::int64_t row) {
    while (true) {
        if (block_ == nullptr || next_ == block_->size()) {
            if (!readBlock()) {
                return std::nullopt;
            }
        }
        if (nextRow_ > row) {
            // Between two samples that are nearest to the rows beside it, there is no missing one.
            if (placing_ == GridPlacing::nearest && nextRow_ == row + 1 && lastRow_ == row - 1) {
                ++alignment_.inTwoRows;
                return GridSpan{.row = row, .count = 1, .block = block_, .first = next_};
            }
            return GridSpan{.row = row, .count = static_cast<std::size_t>(nextRow_ - row)};
        }
        auto const passed = static_cast<std::size_t>(row - nextRow_);
        if (passed < inRow_) {
            return GridSpan{
                .row = row, .count = inRow_ - passed, .block = block_, .first = next_ + passed};
        }
        next_ += inRow_;
        lastRow_ =
            std::max(lastRow_.value_or(nextRow_), nextRow_ + static_cast<std::int64_t>(inRow_) - 1);
        if (next_ < block_->size()) {
            placeNext();
        }
    }
}

bool GridStream::readBlock() {
    while (true) {
        block_ = isOver_ ? nullptr : reader_.next();
        isOver_ = block_ == nullptr;
        if (isOver_) {
            return false;
        }
        if (isWanted_(*block_)) {
            break;
        }
        if (goesOn()) {  // its samples have rows, without them
            *lastRow_ += static_cast<std::int64_t>(block_->size());
        }
    }
    if (look_) {
        look_(*block_);
    }
    next_ = 0;
    checkMake(*block_);
    placeBlock();
    return true;
}

void GridStream::checkMake(SampleBlock const& block) {
    constexpr char const* kChoose = "choose one part, by --from and --to or --confrev";
    if (attributes_ != nullptr && block.attributes != nullptr &&
        attributes_->confRev != block.attributes->confRev) {
        refuse(0, fmt::format("confRev changes here: {}", kChoose));
    }
    if (attributes_ != nullptr && block.attributes != nullptr &&
        attributes_->datSet != block.attributes->datSet) {
        refuse(0, fmt::format("the data set changes here: {}", kChoose));
    }
    if (layout_ && layout_->layout != block.layout.layout) {
        refuse(0,
               "the samples have another layout from here on: choose one part, by --from and "
               "--to");
    }
    attributes_ = block.attributes != nullptr ? block.attributes : attributes_;
    layout_ = block.layout;
}

/// Whether the rows of the block follow those of the block before.
bool GridStream::goesOn() const {
    return placing_ == GridPlacing::exact && lastRow_ && run_ == block_->run.first;
}

/// Finds the row of the block's first sample.
void GridStream::placeBlock() {
    if (goesOn()) {
        nextRow_ = *lastRow_ + 1;
        inRow_ = block_->size();
        return;
    }
    std::int64_t const time = block_->sampleTimes[0];
    if (!block_->run.rate.isKnown()) {
        refuse(0, "the rate of the samples is not known: see --rate");
    }
    if (time == kNoTime) {
        refuse(0, "the samples have no times");
    }
    if (!grid_) {
        grid_ = RecordGrid{.start = time, .rate = block_->run.rate};
    }
    if (run_ != block_->run.first && block_->run.rate != grid_->rate) {
        refuse(0, fmt::format("from here on {} samples a second, before {}: choose one part, by "
                              "--from and --to",
                              block_->run.rate.perSecond(), grid_->rate.perSecond()));
    }
    if (placing_ == GridPlacing::exact && grid_->awayFrom(time) > kSamePhase) {
        refuse(0, "the samples are between those of the record: see --align nearest");
    }
    bool const isNewRun = run_ != block_->run.first;
    run_ = block_->run.first;
    if (lastRow_ && isNewRun && grid_->nearest(time) <= *lastRow_) {
        refuse(0, "time goes back here: choose one part, by --from and --to");
    }
    placeNext();
}

std::int64_t GridStream::placeOf(std::size_t row) const {
    return grid_->nearest(block_->sampleTimes[row]);
}

/// Finds the row of the next sample, and how many follow it row by row.
void GridStream::placeNext() {
    nextRow_ = placeOf(next_);
    if (placing_ == GridPlacing::exact) {
        inRow_ = block_->size() - next_;
        return;
    }
    // Of two samples that are nearest to one row, the first is taken.
    while (lastRow_ && nextRow_ <= *lastRow_) {
        ++alignment_.leftOut;
        if (next_ + 1 == block_->size()) {
            break;
        }
        nextRow_ = placeOf(++next_);
    }
    inRow_ = 1;
    while (next_ + inRow_ < block_->size() &&
           placeOf(next_ + inRow_) == nextRow_ + static_cast<std::int64_t>(inRow_)) {
        ++inRow_;
    }
}

}  // namespace TalIec61850Tools
