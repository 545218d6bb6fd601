#include "tools/record/SampleRecord.hpp"

#include <fmt/format.h>

#include <TalIec61850Analysis/comtrade/ComtradeStep.hpp>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <map>
#include <string_view>
#include <utility>
#include <variant>

#include "tools/output/Plural.hpp"
#include "tools/output/TextEscape.hpp"
#include "tools/record/QualityBits.hpp"
#include "tools/record/RecordRefusal.hpp"
#include "tools/selection/ChannelMeaning.hpp"

namespace TalIec61850Tools {

using namespace TalIec61850Analysis;

namespace {

/// Rows that are written at once.
constexpr std::size_t kRows = 4096;
/// smpSynch of a publisher that is synchronized to a global clock.
constexpr std::uint16_t kGlobal = 2;

std::span<QualityBit const> bitsOf(QualityChannels quality) {
    switch (quality) {
        case QualityChannels::none:
            return {};
        case QualityChannels::bits:
            return qualityBits().first(kChiefQualityBits);
        default:
            return qualityBits();
    }
}

/// Values for rows in which a stream has none.
struct NoValues {
    std::vector<std::int32_t> int32 = std::vector<std::int32_t>(kRows);
    std::vector<std::int64_t> int64 = std::vector<std::int64_t>(kRows);
    std::vector<float> float32 = std::vector<float>(kRows);
    std::vector<double> float64 = std::vector<double>(kRows);
    std::vector<std::uint8_t> missing = std::vector<std::uint8_t>(kRows, 1);
    std::vector<std::uint8_t> states = std::vector<std::uint8_t>(kRows);

    [[nodiscard]] ComtradeSamples of(ValueType type, std::size_t count) const {
        switch (type) {
            case ValueType::int64:
                return std::span(int64).first(count);
            case ValueType::float32:
                return std::span(float32).first(count);
            case ValueType::float64:
                return std::span(float64).first(count);
            default:
                return std::span(int32).first(count);
        }
    }
};

ComtradeSamples samplesOf(ChannelColumn const& column, GridSpan const& span, std::size_t count) {
    return std::visit(
        [&](auto const& values) -> ComtradeSamples {
            return std::span(values).subspan(span.first, count);
        },
        column.values);
}

/// The columns of some rows, of all streams, and the memory that they are in.
class RowColumns {
public:
    explicit RowColumns(RecordWish const& wish) : wish_(wish), bits_(bitsOf(wish.quality)) {
        missing_.resize(wish.sources.size());
    }

    void clear() {
        analogs_.clear();
        digitals_.clear();
        used_ = 0;
    }

    void addSource(std::size_t number, std::optional<GridSpan> const& span, std::size_t count) {
        RecordSource const& source = wish_.sources[number];
        bool const isThere = span && span->block != nullptr;
        auto const missing =
            isThere ? missingIn(number, *span, count) : std::span(none_.missing).first(count);
        for (std::size_t const channel : source.channels) {
            SampleChannel const& made = source.layout.channels()[channel];
            analogs_.push_back(
                {.samples = isThere ? samplesOf(span->block->channels[channel], *span, count)
                                    : none_.of(made.valueType(), count),
                 .missing = missing});
            if (made.qualityOffset) {
                addQuality(isThere ? &span->block->channels[channel] : nullptr, span, count);
            }
        }
        if (source.isSynchMixed) {
            addSynch(isThere ? span->block : nullptr, span, count);
        }
    }

    void addState(std::span<std::uint8_t const> states) { digitals_.push_back(states); }

    [[nodiscard]] std::span<ComtradeAnalogColumn const> analogs() const { return analogs_; }
    [[nodiscard]] std::span<ComtradeDigitalColumn const> digitals() const { return digitals_; }

private:
    std::span<std::uint8_t const> missingIn(std::size_t number, GridSpan const& span,
                                            std::size_t count) {
        auto const states = std::span(span.block->states).subspan(span.first, count);
        if (std::find(states.begin(), states.end(), SampleState::missing) == states.end()) {
            return {};
        }
        std::vector<std::uint8_t>& flags = missing_[number];
        flags.resize(kRows);
        for (std::size_t row = 0; row < count; ++row) {
            flags[row] = states[row] == SampleState::missing ? 1 : 0;
        }
        return std::span(flags).first(count);
    }

    void addQuality(ChannelColumn const* column, std::optional<GridSpan> const& span,
                    std::size_t count) {
        auto const words = column == nullptr
                               ? std::span<std::uint32_t const>()
                               : std::span(column->qualities).subspan(span->first, count);
        std::uint32_t met = 0;
        for (std::uint32_t const word : words) {
            met |= word;
        }
        for (QualityBit const& bit : bits_) {
            if ((met & bit.mask) == 0) {  // no row has it: no value of a bit is 0
                digitals_.emplace_back(std::span(none_.states).first(count));
                continue;
            }
            std::vector<std::uint8_t>& states = nextStates();
            for (std::size_t row = 0; row < count; ++row) {
                states[row] = (words[row] & bit.mask) == bit.value ? 1 : 0;
            }
            digitals_.emplace_back(std::span(states).first(count));
        }
    }

    /// Where smpSynch is not that of a global clock; what is missing has none.
    void addSynch(SampleBlock const* block, std::optional<GridSpan> const& span,
                  std::size_t count) {
        std::vector<std::uint8_t>& states = nextStates();
        for (std::size_t row = 0; row < count; ++row) {
            bool const isOther = block != nullptr &&
                                 block->states[span->first + row] != SampleState::missing &&
                                 block->smpSynchs[span->first + row] != kGlobal;
            states[row] = isOther ? 1 : 0;
        }
        digitals_.emplace_back(std::span(states).first(count));
    }

    /// Memory for the rows of one more digital channel.
    std::vector<std::uint8_t>& nextStates() {
        if (used_ == digitalStates_.size()) {
            digitalStates_.emplace_back(kRows);
        }
        return digitalStates_[used_++];
    }

    RecordWish const& wish_;
    std::span<QualityBit const> bits_;
    NoValues none_;
    std::vector<ComtradeAnalogColumn> analogs_;
    std::vector<ComtradeDigitalColumn> digitals_;
    /// By source.
    std::vector<std::vector<std::uint8_t>> missing_;
    /// One for each bit of each channel that is set, and for smpSynch.
    std::vector<std::vector<std::uint8_t>> digitalStates_;
    std::size_t used_ = 0;
};

/// When rows were sampled.
class RowTimes {
public:
    explicit RowTimes(RecordGrid const& grid) : grid_(grid) {}

    /// By the first stream that has samples there. Rows of none are as far from the grid as the
    /// last ones that had some.
    [[nodiscard]] std::span<std::int64_t const> of(std::uint64_t row, std::size_t count,
                                                   std::span<std::optional<GridSpan> const> spans) {
        times_.resize(count);
        auto const span = std::find_if(spans.begin(), spans.end(), [](auto const& each) {
            return each && each->block != nullptr;
        });
        for (std::size_t i = 0; i < count; ++i) {
            std::int64_t const nominal = grid_.timeOf(static_cast<std::int64_t>(row + i));
            std::int64_t const sampled =
                span != spans.end() ? (*span)->block->sampleTimes[(*span)->first + i] : kNoTime;
            away_ = sampled != kNoTime ? sampled - nominal : away_;
            last_ = std::max(last_, nominal + away_);
            times_[i] = last_;
        }
        return times_;
    }

private:
    RecordGrid const& grid_;
    std::int64_t away_ = 0;
    std::int64_t last_ = std::numeric_limits<std::int64_t>::min();
    std::vector<std::int64_t> times_;
};

/// The name of a channel, with the svID as far as there is room for it: with the name of a quality
/// bit after it, there are 64 characters. The ends of both tell them apart.
std::string channelId(std::string const& svID, std::string const& name) {
    constexpr std::size_t kLongest = 48;
    constexpr std::size_t kLongestPrefix = 40;
    constexpr std::size_t kShortestPrefix = 8;
    std::size_t const room =
        std::clamp(kLongest - std::min(kLongest, name.size() + 1), kShortestPrefix, kLongestPrefix);
    std::string const prefix = svID.substr(svID.size() > room ? svID.size() - room : 0);
    std::size_t const left = kLongest - 1 - prefix.size();
    return prefix + "_" + name.substr(name.size() > left ? name.size() - left : 0);
}

/// The integer that an extent is; the double next to the largest one is beyond it.
std::int64_t toInteger(double extent) {
    constexpr double kBeyond = 0x1p63;
    return extent < kBeyond ? static_cast<std::int64_t>(extent)
                            : std::numeric_limits<std::int64_t>::max();
}

/// 50 or 60, where smpRate counts samples of a period.
std::optional<double> frequencyOf(TrafficIndex const& index, TrafficStream const& stream,
                                  SampleRate const& rate) {
    StreamPart const& part = stream.parts.back();
    StreamAttributes const& all = index.attributes(part, part.changes.back());
    auto const* const declared = valueIn(all.smpRate);
    auto const* const unit = valueIn(all.smpMod);
    bool const isOfPeriods = declared != nullptr && (unit == nullptr || *unit == 0);
    for (std::uint32_t const frequency : {50U, 60U}) {
        if (isOfPeriods && rate.isKnown() && rate.seconds == 1 &&
            *declared * frequency == rate.samples) {
            return frequency;
        }
    }
    return std::nullopt;
}

}  // namespace

SampleRecord::SampleRecord(TrafficIndex const& index, RecordWish wish,
                           GridStream::PlaceText placeText, GridStream::Wanted isWanted)
    : index_(index),
      wish_(std::move(wish)),
      placeText_(std::move(placeText)),
      isWanted_(std::move(isWanted)),
      extents_(wish_.sources.size()) {
    findGrid();
    for (std::size_t source = 0; source < wish_.sources.size(); ++source) {
        surveySource(source);
    }
    describe();
}

SampleOptions SampleRecord::optionsOf(RecordSource const& source, bool withValues) const {
    SampleOptions options = wish_.options;
    options.withValues = withValues;
    options.layout = source.given;
    return options;
}

GridStream SampleRecord::open(RecordSource const& source, std::optional<RecordGrid> grid,
                              bool withValues) const {
    return {index_,    *source.stream, optionsOf(source, withValues),
            grid,      wish_.placing,  placeText_,
            isWanted_, nullptr,        source.before.get()};
}

/// Opens all sources, to be gone through row by row.
std::vector<GridStream> SampleRecord::openTogether() const {
    std::vector<GridStream> streams;
    streams.reserve(wish_.sources.size());
    for (RecordSource const& source : wish_.sources) {
        SampleOptions options = optionsOf(source, true);
        options.together = wish_.sources.size();
        streams.emplace_back(index_, *source.stream, std::move(options), survey_.grid,
                             wish_.placing, placeText_, isWanted_,
                             streams.empty() ? nullptr : &streams.front(), source.before.get());
    }
    return streams;
}

bool SampleRecord::needsExtents() const {
    if (wish_.format.data != ComtradeData::binary32) {
        return true;
    }
    for (RecordSource const& source : wish_.sources) {
        for (std::size_t const channel : source.channels) {
            if (source.layout.channels()[channel].valueType() != ValueType::int32) {
                return true;
            }
        }
    }
    return false;
}

/// Finds the layout of a stream's first sample, and the channels that it has.
/// @return false where there is no sample
bool SampleRecord::findMake(RecordSource& source, GridStream& stream,
                            GridStream::PlaceText const& placeText) {
    auto const span = stream.at(0);
    if (!span) {
        return false;
    }
    SampleBlock const& block = *span->block;
    if (!block.layout.layout) {
        throw RecordRefusal(fmt::format("{}: {}: {} of samples have no known layout: see --layout",
                                        placeText(block, 0), escapeText(source.stream->key.name),
                                        plural(block.dataSize, "octet")));
    }
    source.layout = *block.layout.layout;
    std::size_t const count = source.layout.channels().size();
    if (source.channels.empty()) {
        for (std::size_t channel = 0; channel < count; ++channel) {
            source.channels.push_back(channel);
        }
    }
    std::erase_if(source.channels, [&](std::size_t channel) { return channel >= count; });
    return true;
}

/// The first row is at the earliest sample of all streams, at the phase of the first stream.
/// Streams without samples in the window are left out.
void SampleRecord::findGrid() {
    std::vector<RecordSource> sources;
    std::optional<RecordGrid> grid;
    std::int64_t earliest = 0;
    for (RecordSource& source : wish_.sources) {
        GridStream stream = open(source, std::nullopt, true);
        if (!findMake(source, stream, placeText_)) {
            continue;
        }
        for (RecordSource const& other : sources) {
            if (other.stream->key.name == source.stream->key.name) {
                throw RecordRefusal(fmt::format(
                    "{}: another stream has the svID {}, too: choose one, by --source, "
                    "--destination, --vlan or --appid",
                    placeText_(*stream.at(0)->block, 0), escapeText(source.stream->key.name)));
            }
        }
        RecordGrid const own = *stream.grid();
        if (grid && own.rate != grid->rate) {
            throw RecordRefusal(fmt::format(
                "{} has {} samples a second, {} has {}: choose streams of one rate, by --svid",
                escapeText(sources.front().stream->key.name), grid->rate.perSecond(),
                escapeText(source.stream->key.name), own.rate.perSecond()));
        }
        earliest = grid ? std::min(earliest, own.start) : own.start;
        grid = grid ? grid : own;
        sources.push_back(std::move(source));
    }
    wish_.sources = std::move(sources);
    if (!grid) {
        return;
    }
    if (earliest < grid->start) {
        // The instant is that of a sample, unless streams are of different phase.
        grid->start =
            wish_.placing == GridPlacing::exact ? earliest : grid->timeOf(grid->nearest(earliest));
    }
    survey_.grid = *grid;
}

void SampleRecord::surveySource(std::size_t number) {
    RecordSource& source = wish_.sources[number];
    bool const withValues = needsExtents();
    SynchCounts synch;
    GridStream stream = open(source, survey_.grid, withValues);
    extents_[number].resize(source.layout.channels().size());
    std::int64_t row = 0;
    while (auto const span = stream.at(row)) {
        row = span->row + static_cast<std::int64_t>(span->count);
        if (span->block == nullptr) {
            continue;
        }
        countSamples(*span, synch);
        if (withValues) {
            for (std::size_t const channel : source.channels) {
                extents_[number][channel].add(*span, channel);
            }
        }
    }
    survey_.rows = std::max(survey_.rows, static_cast<std::uint64_t>(row));
    source.isSynchMixed = synch.global != 0 && synch.other != 0;
    survey_.isGlobal = survey_.isGlobal && synch.other == 0;
    survey_.alignment.leftOut += stream.alignment().leftOut;
    survey_.alignment.inTwoRows += stream.alignment().inTwoRows;
    source.upToEnd = std::make_shared<SampleReader>(stream.takeReader());
}

void SampleRecord::countSamples(GridSpan const& span, SynchCounts& synch) {
    SampleBlock const& block = *span.block;
    survey_.rateSource = block.run.rateSource;
    survey_.areLeapSecondsKnown = survey_.areLeapSecondsKnown && block.areLeapSecondsKnown;
    for (std::size_t i = span.first; i < span.first + span.count; ++i) {
        if (block.states[i] != SampleState::missing) {
            ++survey_.received;
            ++survey_.timeSources[static_cast<std::size_t>(block.timeSources[i])];
            ++(block.smpSynchs[i] == kGlobal ? synch.global : synch.other);
        }
    }
}

void SampleRecord::Extent::add(GridSpan const& span, std::size_t channel) {
    SampleBlock const& block = *span.block;
    if (channel >= block.channels.size()) {
        return;
    }
    auto const addAll = [&](auto const& values) {
        for (std::size_t i = span.first; i < span.first + span.count; ++i) {
            auto const value = static_cast<double>(values[i]);
            if (block.states[i] == SampleState::missing || !std::isfinite(value)) {
                continue;
            }
            smallest = isKnown ? std::min(smallest, value) : value;
            largest = isKnown ? std::max(largest, value) : value;
            isKnown = true;
        }
    };
    std::visit(addAll, block.channels[channel].values);
}

namespace {

/// Half years since 1970: leap seconds are inserted between them.
std::int64_t halfYearOf(std::int64_t time) {
    std::chrono::year_month_day const date{
        std::chrono::floor<std::chrono::days>(CaptureTime(std::chrono::nanoseconds(time)))};
    return 2 * std::int64_t{static_cast<int>(date.year())} +
           (static_cast<unsigned>(date.month()) > 6 ? 1 : 0);
}

/// The clocks of the publishers know that there is none, but for where one may be.
ComtradeLeapSecond leapSecondOf(RecordSurvey const& survey) {
    bool const isKnown = survey.received != 0 && survey.areLeapSecondsKnown &&
                         halfYearOf(survey.grid.start) ==
                             halfYearOf(survey.grid.timeOf(static_cast<std::int64_t>(survey.rows)));
    return isKnown ? ComtradeLeapSecond::none : ComtradeLeapSecond::unknown;
}

}  // namespace

void SampleRecord::describe() {
    constexpr std::uint8_t kLocked = 0;
    constexpr std::uint8_t kNotReliable = 15;
    record_.format = wish_.format;
    record_.rate = {.samples = survey_.grid.rate.samples, .seconds = survey_.grid.rate.seconds};
    record_.rows = survey_.rows;
    record_.start = CaptureTime(std::chrono::nanoseconds(survey_.grid.start));
    record_.trigger = wish_.trigger.value_or(record_.start);
    record_.timeQuality = survey_.isGlobal ? kLocked : kNotReliable;
    record_.leapSecond = leapSecondOf(survey_);
    if (wish_.sources.empty()) {
        return;
    }
    survey_.missing = survey_.rows * wish_.sources.size() - survey_.received;
    TrafficStream const& first = *wish_.sources.front().stream;
    record_.station = wish_.station.empty() ? first.key.name : wish_.station;
    record_.device = first.key.name;
    record_.lineFrequency =
        wish_.frequency ? wish_.frequency : frequencyOf(index_, first, survey_.grid.rate);
    for (std::size_t source = 0; source < wish_.sources.size(); ++source) {
        describeSource(source);
    }
    if (wish_.states != nullptr) {
        std::vector<std::string> ids = stateIds(*wish_.states);
        for (std::size_t state = 0; state < ids.size(); ++state) {
            record_.digitals.push_back({.id = std::move(ids[state]),
                                        .phase = {},
                                        .component = (*wish_.states)[state].component,
                                        .normal = false});
        }
    }
}

/// A channel of a source as it is stored.
/// @param meaning  null where it is not known
ComtradeAnalog SampleRecord::analogOf(std::size_t number, std::size_t channel,
                                      ChannelMeaning const* meaning) const {
    RecordSource const& source = wish_.sources[number];
    ComtradeAnalog analog;
    analog.id = channelId(source.stream->key.name,
                          meaning == nullptr ? fmt::format("ch{}", channel + 1) : meaning->name);
    if (!source.scales.empty()) {
        std::size_t const place = source.scales.size() == 1 ? 0 : channel;
        analog.scale = place < source.scales.size() ? source.scales[place] : 1;
    } else if (meaning != nullptr && meaning->scale) {
        analog.scale = meaning->scale->unitsPerCount();
        analog.offset = meaning->scale->offset;
        analog.unit = meaning->unit;
    }
    if (meaning != nullptr) {
        analog.phase = meaning->phase;
        analog.component = meaning->component;
    }
    if (needsExtents() && extents_[number][channel].isKnown) {
        Extent const& extent = extents_[number][channel];
        ValueType const type = source.layout.channels()[channel].valueType();
        bool const isReal = type == ValueType::float32 || type == ValueType::float64;
        analog.step = isReal ? stepForReals(wish_.format, extent.smallest, extent.largest)
                             : stepForIntegers(wish_.format, toInteger(extent.smallest),
                                               toInteger(extent.largest));
    }
    return analog;
}

void SampleRecord::describeSource(std::size_t number) {
    RecordSource const& source = wish_.sources[number];
    bool const isDescribed =
        source.described != nullptr && source.described->layout == source.layout;
    auto const& meanings = isDescribed ? source.described->channels : meaningsOf(source.layout);
    for (std::size_t const channel : source.channels) {
        record_.analogs.push_back(
            analogOf(number, channel, channel < meanings.size() ? &meanings[channel] : nullptr));
        if (source.layout.channels()[channel].qualityOffset) {
            describeQuality(record_.analogs.back().id);
        }
    }
    if (source.isSynchMixed) {
        record_.digitals.push_back({.id = channelId(source.stream->key.name, "smpSynch not 2"),
                                    .phase = {},
                                    .component = {},
                                    .normal = false});
    }
}

void SampleRecord::describeQuality(std::string const& channel) {
    for (QualityBit const& bit : bitsOf(wish_.quality)) {
        record_.digitals.push_back({.id = fmt::format("{} {}", channel, bit.name),
                                    .phase = {},
                                    .component = {},
                                    .normal = false});
    }
}

/// Streams whose samples were taken at the same instants may drift apart. That both drift from the
/// nominal rate does no harm.
void SampleRecord::checkDrift(std::span<std::optional<GridSpan> const> spans) const {
    if (wish_.placing != GridPlacing::exact) {
        return;
    }
    constexpr std::int64_t kSecondNs = 1'000'000'000;
    std::int64_t const half = kSecondNs * survey_.grid.rate.seconds / survey_.grid.rate.samples / 2;
    std::optional<std::size_t> other;
    for (std::size_t i = 0; i < spans.size(); ++i) {
        if (!spans[i] || spans[i]->block == nullptr ||
            spans[i]->block->sampleTimes[spans[i]->first] == kNoTime) {
            continue;
        }
        if (!other) {
            other = i;
            continue;
        }
        SampleBlock const& block = *spans[i]->block;
        std::int64_t const away = block.sampleTimes[spans[i]->first] -
                                  spans[*other]->block->sampleTimes[spans[*other]->first];
        if (away > half || away < -half) {
            throw RecordRefusal(fmt::format(
                "{}: {}: drifts away from {}: in one row, their samples are {} us apart from here "
                "on: see --align nearest",
                placeText_(block, spans[i]->first), escapeText(wish_.sources[i].stream->key.name),
                escapeText(wish_.sources[*other].stream->key.name), std::abs(away) / 1000));
        }
    }
}

std::vector<SampleCounts> SampleRecord::write(ComtradeRows& rows, Look const& look) const {
    std::vector<GridStream> streams = openTogether();
    for (std::size_t number = 0; look && number < streams.size(); ++number) {
        streams[number].showTo([&look, number](SampleBlock const& block) { look(number, block); });
    }
    RowColumns columns(wish_);
    std::size_t const stateCount = wish_.states == nullptr ? 0 : wish_.states->size();
    std::vector<std::size_t> cursors(stateCount);
    std::vector<std::vector<std::uint8_t>> states(stateCount);
    RowTimes times(survey_.grid);
    std::vector<std::optional<GridSpan>> spans(streams.size());
    for (std::uint64_t row = 0; row < survey_.rows;) {
        std::size_t count = std::min<std::uint64_t>(survey_.rows - row, kRows);
        for (std::size_t i = 0; i < streams.size(); ++i) {
            spans[i] = streams[i].at(static_cast<std::int64_t>(row));
            count = spans[i] ? std::min(count, spans[i]->count) : count;
        }
        checkDrift(spans);
        columns.clear();
        for (std::size_t i = 0; i < streams.size(); ++i) {
            columns.addSource(i, spans[i], count);
        }
        auto const instants =
            stateCount > 0 ? times.of(row, count, spans) : std::span<std::int64_t const>();
        for (std::size_t i = 0; i < stateCount; ++i) {
            (*wish_.states)[i].at(instants, states[i], cursors[i]);
            columns.addState(states[i]);
        }
        rows.add(columns.analogs(), columns.digitals());
        row += count;
    }
    std::vector<SampleCounts> counts;
    counts.reserve(streams.size());
    for (GridStream const& stream : streams) {
        counts.push_back(stream.counts());
    }
    return counts;
}

}  // namespace TalIec61850Tools
