#include <TalIec61850Analysis/samples/AsduReader.hpp>
#include <TalIec61850Analysis/samples/ChannelDecoder.hpp>
#include <TalIec61850Analysis/samples/PartAttributes.hpp>
#include <TalIec61850Analysis/samples/SampleReader.hpp>
#include <TalIec61850Analysis/samples/SampleSequence.hpp>
#include <TalIec61850Analysis/samples/StreamLayouts.hpp>
#include <TalIec61850Analysis/time/UtcTime.hpp>
#include <algorithm>
#include <array>
#include <limits>
#include <span>
#include <utility>

namespace TalIec61850Analysis {

namespace {

/// Octets of a block, about.
constexpr std::size_t kBlockOctets = std::size_t{512} << 10U;
constexpr std::size_t kMostBlockRows = 4096;
constexpr std::size_t kFewestRows = 16;

std::optional<std::int64_t> boundOf(std::optional<CaptureTime> const& time) {
    return time ? std::optional(time->time_since_epoch().count()) : std::nullopt;
}

/// How many rows a block of such samples has at most.
/// @param together  streams that are gone through block by block
std::size_t rowsOf(std::size_t dataSize, std::size_t together) {
    constexpr std::size_t kOtherColumns = 64;
    constexpr std::size_t kFewestTogether = 128;
    // A value of an octet is kept in four.
    std::size_t const row = kOtherColumns + 4 * dataSize;
    std::size_t const alone = std::clamp(kBlockOctets / row, kFewestRows, kMostBlockRows);
    return std::clamp(alone / together, std::min(kFewestTogether, alone), alone);
}

/// Whether packets are in the order of their times, file after file.
bool doTimesGrow(TrafficStream const& stream) {
    std::int64_t last = std::numeric_limits<std::int64_t>::min();
    for (StreamPart const& part : stream.parts) {
        PacketColumns const& packets = part.packets;
        bool const isInOrder = packets.timeOrder().empty() && packets.timedSize() > 0;
        if (!isInOrder || packets.times()[0] < last) {
            return false;
        }
        last = packets.times()[packets.size() - 1];
    }
    return true;
}

/// What is kept of each capture: of several streams together, what their blocks take, and as much
/// again for streams that are ahead.
constexpr std::size_t kPiecesTogether = 16;

std::shared_ptr<detail::CaptureWindow> windowFor(TrafficIndex const& index, std::size_t together) {
    return std::make_shared<detail::CaptureWindow>(index, together > 1 ? kPiecesTogether : 1);
}

}  // namespace

struct SampleReader::State {
    State(TrafficIndex const& index, TrafficStream const& stream, SampleOptions given,
          std::shared_ptr<detail::CaptureWindow> captures)
        : window(std::move(captures)),
          stream_(stream),
          from_(boundOf(given.from)),
          end_(boundOf(given.end)),
          sequence_(std::in_place, index, stream, given.rate,
                    given.rows == SampleRows::everySample),
          attributes_(index, stream),
          asdus_(index, stream, window),
          layouts_(index, stream, std::move(given.layout)),
          withValues_(given.withValues),
          together_(std::max<std::size_t>(given.together, 1)),
          timesGrow_(doTimesGrow(stream)) {}

    /// Goes on where the window of another one ended, if that was met.
    void startAfter(State const& before) {
        if (before.mark_) {
            sequence_.emplace(before.mark_->sequence);
            sample_ = before.mark_->sample;
            hasSample_ = before.mark_->hasSample;
            lastRefrTm_ = before.mark_->lastRefrTm;
            lastNumber_ = before.mark_->lastNumber;
            isNewRun_ = true;
        }
    }

    SampleBlock const* next() {
        if (isOver_) {
            return nullptr;
        }
        isOver_ = true;  // unless all goes well
        clear();
        while ((room_ == 0 || rows_ < room_) && (hasSample_ || fetch())) {
            std::size_t const rows = rows_;
            if (!add()) {
                break;
            }
            hasSample_ = false;
            if (rows_ > rows && !sample_.isMissing) {
                addRest();
            }
        }
        trim();
        isOver_ = block_.empty();
        return isOver_ ? nullptr : &block_;
    }

    [[nodiscard]] SampleCounts const& counts() const { return sequence_->counts(); }

    /// What is read of the captures.
    std::shared_ptr<detail::CaptureWindow> window;

private:
    using LayoutKey = detail::LayoutKey;
    using ReadAsdu = detail::ReadAsdu;

    /// Where the first sample after the window is, or the end of the stream.
    struct Mark {
        detail::SampleSequence sequence;
        detail::SequencedSample sample;
        bool hasSample = false;
        std::int64_t lastRefrTm = kNoTime;
        std::int64_t lastNumber = 0;
    };

    /// The next sample that may be in the window, by what the columns tell.
    bool fetch() {
        while (sequence_->next(sample_)) {
            isNewRun_ = isNewRun_ || sample_.startsRun;
            if (mayBeWanted()) {
                hasSample_ = true;
                return true;
            }
            markEnd(timeOrArrival(sample_.time));
            if (isPastWindow()) {
                return false;
            }
            passUnwanted();
        }
        if (end_ && !mark_) {
            mark(false);
        }
        return false;
    }

    /// Marks the first sample after the window: all before it are before its end.
    void markEnd(std::int64_t time) {
        if (end_ && !mark_ && time != kNoTime && time >= *end_) [[unlikely]] {
            mark(true);
        }
    }

    void mark(bool hasSample) {
        mark_ = std::make_unique<Mark>(Mark{.sequence = *sequence_,
                                            .sample = sample_,
                                            .hasSample = hasSample,
                                            .lastRefrTm = lastRefrTm_,
                                            .lastNumber = lastNumber_});
    }

    /// Whether all samples from this one on are after the window. They are taken some time before
    /// they arrive, or by another clock after that, but never as much as this.
    [[nodiscard]] bool isPastWindow() const {
        constexpr std::int64_t kMostApart = 10'000'000'000;
        return end_ && timesGrow_ && arrival() - kMostApart > *end_;
    }

    /// Passes over samples that follow one that is out of the window, where all of them are.
    void passUnwanted() {
        auto const rest = sequence_->rest();
        if (rest.count == 0 || sample_.time == kNoTime) {
            return;
        }
        std::int64_t last = 0;
        sequence_->fillTimes(rest.number + rest.count - 1, sample_, {&last, 1});
        bool const isBefore = from_ && last < *from_;
        bool const isAfter = end_ && sample_.time >= *end_;
        if (isBefore || isAfter) {
            sequence_->takeRest(rest.count);
        }
    }

    /// Adds samples that follow the one that was added last, at once.
    void addRest() {
        auto const rest = sequence_->rest();
        std::size_t count = std::min<std::size_t>(rest.count, room_ - rows_);
        bool const byFrame = layouts_.haveTimes();
        if (count == 0 || (hasWindow() && byFrame)) {
            return;
        }
        std::span const times(block_.sampleTimes.data() + rows_, count);
        sequence_->fillTimes(rest.number, sample_, times);
        if (hasWindow()) {
            // Times only grow; without them the window goes by arrival, sample by sample.
            count = sample_.time == kNoTime
                        ? 0
                        : static_cast<std::size_t>(
                              std::find_if(times.begin(), times.end(),
                                           [&](std::int64_t time) { return !isInWindow(time); }) -
                              times.begin());
        }
        std::fill_n(block_.timeSources.begin() + offsetOf(rows_), count, sample_.source);
        count = readRest(rest, count);
        if (count == 0) {
            return;
        }
        StreamPart const& part = stream_.parts[rest.first.part];
        PacketColumns const& packets = part.packets;
        std::size_t const packet = rest.first.packet;
        std::copy_n(packets.times().begin() + offsetOf(packet), count,
                    block_.arrivals.begin() + offsetOf(rows_));
        std::copy_n(packets.smpCnts().begin() + offsetOf(packet), count,
                    block_.smpCnts.begin() + offsetOf(rows_));
        std::fill_n(block_.smpSynchs.begin() + offsetOf(rows_), count,
                    std::uint16_t{packets.smpSynchs()[packet]});
        std::fill_n(block_.states.begin() + offsetOf(rows_), count, SampleState::received);
        rows_ += count;
        sequence_->takeRest(static_cast<std::uint32_t>(count));
    }

    /// Reads the ASDUs of samples that follow each other into rows, as long as they are alike.
    /// @return of how many samples
    std::size_t readRest(detail::SampleSequence::Rest const& rest, std::size_t count) {
        StreamPart const& part = stream_.parts[rest.first.part];
        ColumnView<std::uint16_t> const asdus = part.packets.asdus();
        std::uint64_t const* const frames = part.packets.frameOffsets().data();
        bool const isRead = withValues_ || layouts_.haveTimes();
        // Else one is of another shape than the one before.
        bool const mayBeAlike = decoder_ && asdus.values() == nullptr;
        for (std::size_t i = 0; i < count; ++i) {
            i += mayBeAlike ? readAlike(rest, i, count) : 0;
            if (i == count) {
                break;
            }
            PacketRef const ref{.part = rest.first.part,
                                .packet = rest.first.packet + static_cast<std::uint32_t>(i)};
            SamplePlace& place = block_.places[rows_ + i];
            place = {
                .fileOffset = frames[ref.packet], .file = part.file, .asdu = asdus[ref.packet]};
            if (!isRead) {
                continue;
            }
            ReadAsdu const asdu = asdus_.read(ref);
            std::size_t const size = withValues_ ? asdu.data.size() : 0;
            if (size != key_.size) {
                return i;
            }
            place.fileOffset = asdu.fileOffset;
            if (asdu.refrTm != kNoTime) {
                block_.sampleTimes[rows_ + i] = asdu.refrTm;
                block_.timeSources[rows_ + i] = SampleTimeSource::refrTm;
            }
            lastRefrTm_ = asdu.refrTm;
            lookAtLeapSeconds(asdu);
            lastNumber_ = rest.number + static_cast<std::int64_t>(i);
            if (decoder_) [[likely]] {
                decoder_->decode(asdu.data.data(), rows_ + i);
            } else {
                block_.octets.insert(block_.octets.end(), asdu.data.begin(),
                                     asdu.data.begin() + offsetOf(size));
            }
        }
        return count;
    }

    /// Reads those of them that have what is usual, strip by strip: see readRest.
    /// @param first  the first one to read, of `count`
    /// @return how many were read
    std::size_t readAlike(detail::SampleSequence::Rest const& rest, std::size_t first,
                          std::size_t count) {
        std::uint32_t const file = stream_.parts[rest.first.part].file;
        ColumnView<std::uint16_t> const asdus = stream_.parts[rest.first.part].packets.asdus();
        std::size_t done = 0;
        std::size_t met = strip_.size();
        while (met == strip_.size()) {
            std::size_t const number = first + done;
            PacketRef const ref{.part = rest.first.part,
                                .packet = rest.first.packet + static_cast<std::uint32_t>(number)};
            SamplePlace* const places = block_.places.data() + rows_ + number;
            met = asdus_.readAlike(
                ref, key_.size, std::span(strip_).first(std::min(strip_.size(), count - number)),
                [&](std::size_t i, std::uint64_t fileOffset) {
                    places[i] = {
                        .fileOffset = fileOffset, .file = file, .asdu = asdus[ref.packet + i]};
                });
            decoder_->decodeRows(std::span(strip_).first(met), rows_ + number);
            done += met;
        }
        if (done != 0) {
            areLeapSecondsKnown_ = false;
            lastRefrTm_ = kNoTime;
            lastNumber_ = rest.number + static_cast<std::int64_t>(first + done) - 1;
        }
        return done;
    }

    [[nodiscard]] static std::ptrdiff_t offsetOf(std::size_t index) {
        return static_cast<std::ptrdiff_t>(index);
    }

    [[nodiscard]] bool hasWindow() const { return from_ || end_; }

    [[nodiscard]] bool isInWindow(std::int64_t time) const {
        if (time == kNoTime) {
            return !hasWindow();
        }
        return (!from_ || *from_ <= time) && (!end_ || time < *end_);
    }

    [[nodiscard]] std::int64_t arrival() const {
        return stream_.parts[sample_.packet.part].packets.times()[sample_.packet.packet];
    }

    [[nodiscard]] std::int64_t timeOrArrival(std::int64_t time) const {
        return time == kNoTime && !sample_.isMissing ? arrival() : time;
    }

    /// Only the frame tells a refrTm.
    bool mayBeWanted() {
        return !hasWindow() || layouts_.haveTimes() || isInWindow(timeOrArrival(sample_.time));
    }

    /// @return false where the sample begins the next block
    bool add() {
        if (isNewRun_ && rows_ > 0) {
            return false;
        }
        return sample_.isMissing ? addMissing() : addReceived();
    }

    [[nodiscard]] ReadAsdu readAsdu() {
        ReadAsdu asdu;
        if (withValues_ || layouts_.haveTimes()) {
            asdu = asdus_.read(sample_.packet);
        } else {
            PacketColumns const& packets = stream_.parts[sample_.packet.part].packets;
            asdu.fileOffset = packets.frameOffsets()[sample_.packet.packet];
        }
        if (!withValues_) {
            asdu.data = {};
        }
        return asdu;
    }

    bool addReceived() {
        ReadAsdu const asdu = readAsdu();
        bool const hasRefrTm = asdu.refrTm != kNoTime;
        std::int64_t const time = hasRefrTm ? asdu.refrTm : sample_.time;
        std::int64_t const placedAt = timeOrArrival(time);
        markEnd(placedAt);  // with what was read before it
        lastRefrTm_ = asdu.refrTm;
        lastNumber_ = sample_.number;
        if (hasWindow() && !isInWindow(placedAt)) {
            return true;
        }
        if (attributes_.isChangedAt(sample_.packet) || asdu.data.size() != key_.size || isNewRun_)
            [[unlikely]] {
            if (!startBlock(asdu)) {
                return false;
            }
        }
        StreamPart const& part = stream_.parts[sample_.packet.part];
        PacketColumns const& packets = part.packets;
        PacketFlags const flags = packets.flags()[sample_.packet.packet];
        block_.sampleTimes[rows_] = time;
        block_.timeSources[rows_] = hasRefrTm ? SampleTimeSource::refrTm : sample_.source;
        block_.arrivals[rows_] = packets.times()[sample_.packet.packet];
        block_.smpCnts[rows_] = packets.smpCnts()[sample_.packet.packet];
        block_.smpSynchs[rows_] = flags.secondCounter() == CounterState::held
                                      ? packets.smpSynchs()[sample_.packet.packet]
                                      : SampleBlock::kNoSynch;
        block_.states[rows_] = sample_.isCounted ? SampleState::received : SampleState::uncounted;
        block_.places[rows_] = {.fileOffset = asdu.fileOffset,
                                .file = part.file,
                                .asdu = packets.asdus()[sample_.packet.packet]};
        if (decoder_) [[likely]] {
            decoder_->decode(asdu.data.data(), rows_);
        } else {
            block_.octets.insert(block_.octets.end(), asdu.data.begin(), asdu.data.end());
        }
        lookAtLeapSeconds(asdu);
        ++rows_;
        return true;
    }

    void lookAtLeapSeconds(ReadAsdu const& asdu) {
        UtcTime const ofQuality{.quality = asdu.timeQuality};
        areLeapSecondsKnown_ =
            areLeapSecondsKnown_ && asdu.refrTm != kNoTime && ofQuality.leapSecondsKnown();
        hasReceived_ = true;
    }

    bool addMissing() {
        bool const byRefrTm = lastRefrTm_ != kNoTime && sequence_->run().rate.isKnown();
        std::int64_t const time =
            byRefrTm ? lastRefrTm_ + sequence_->run().rate.timeOf(sample_.number - lastNumber_)
                     : sample_.time;
        if (!isInWindow(time)) {
            markEnd(time);
            return true;
        }
        StreamPart const& part = stream_.parts[sample_.packet.part];
        PacketColumns const& packets = part.packets;
        if (room_ == 0 || isNewRun_) {
            // The samples before it are in no block.
            static_cast<void>(startBlock(readAsdu()));
        }
        PacketFlags const flags = packets.flags()[sample_.packet.packet];
        block_.sampleTimes[rows_] = time;
        block_.timeSources[rows_] = byRefrTm ? SampleTimeSource::fit : sample_.source;
        block_.arrivals[rows_] = kNoTime;
        block_.smpCnts[rows_] =
            static_cast<std::uint32_t>(sample_.number % std::int64_t{sequence_->wrap()});
        block_.smpSynchs[rows_] = flags.secondCounter() == CounterState::held
                                      ? packets.smpSynchs()[sample_.packet.packet]
                                      : SampleBlock::kNoSynch;
        block_.states[rows_] = SampleState::missing;
        block_.places[rows_] = {
            .fileOffset = 0, .file = part.file, .asdu = packets.asdus()[sample_.packet.packet]};
        if (decoder_) {
            decoder_->decode(nullptr, rows_);
        } else {
            block_.octets.resize(block_.octets.size() + block_.dataSize);
        }
        ++rows_;
        return true;
    }

    /// Looks at whether the sample is of the same make as the rows of the block, and makes it one
    /// of that where there are none.
    /// @return false where there are rows of another
    bool startBlock(ReadAsdu const& asdu) {
        LayoutKey const key{.size = asdu.data.size(),
                            .attributes = &attributes_.at(sample_.packet)};
        if (!isNewRun_ && room_ != 0 && key == key_) {
            return true;
        }
        if (rows_ > 0) {
            // Asked for again, this packet is as another as it is now.
            key_.size = static_cast<std::size_t>(-1);
            return false;
        }
        key_ = key;
        block_.attributes = key.attributes;
        block_.layout = layouts_.of(key, sample_.packet);
        prepare();
        return true;
    }

    void prepare() {
        isNewRun_ = false;
        block_.run = sequence_->run();
        block_.dataSize = key_.size;
        room_ = roomNow();
        resize(room_);
        decoder_.reset();
        block_.channels.clear();
        if (block_.layout.layout) {
            for (SampleChannel const& channel : block_.layout.layout->channels()) {
                block_.channels.push_back(
                    {.values = detail::noValues(channel.valueType()), .qualities = {}});
            }
            decoder_.emplace(*block_.layout.layout, block_.channels, room_);
        }
    }

    void resize(std::size_t rows) {
        block_.sampleTimes.resize(rows);
        block_.timeSources.resize(rows);
        block_.arrivals.resize(rows);
        block_.smpCnts.resize(rows);
        block_.smpSynchs.resize(rows);
        block_.states.resize(rows);
        block_.places.resize(rows);
    }

    /// After a short block others may be as short: what is not filled is not made.
    [[nodiscard]] std::size_t roomNow() const {
        return std::clamp(4 * lastRows_, kFewestRows, rowsOf(block_.dataSize, together_));
    }

    void clear() {
        rows_ = 0;
        areLeapSecondsKnown_ = true;
        hasReceived_ = false;
        block_.octets.clear();
        if (room_ != 0) {
            room_ = roomNow();
            resize(room_);
            if (block_.layout.layout) {
                decoder_.emplace(*block_.layout.layout, block_.channels, room_);
            }
        }
    }

    void trim() {
        lastRows_ = rows_;
        block_.areLeapSecondsKnown = areLeapSecondsKnown_ && hasReceived_;
        resize(rows_);
        for (ChannelColumn& channel : block_.channels) {
            std::visit([&](auto& values) { values.resize(rows_); }, channel.values);
            channel.qualities.resize(channel.qualities.empty() ? 0 : rows_);
        }
    }

    TrafficStream const& stream_;
    std::optional<std::int64_t> from_;
    std::optional<std::int64_t> end_;
    std::optional<detail::SampleSequence> sequence_;
    detail::PartAttributes attributes_;
    detail::AsduReader asdus_;
    detail::StreamLayouts layouts_;

    bool withValues_;
    std::size_t together_;
    bool timesGrow_;

    SampleBlock block_;
    std::size_t rows_ = 0;
    /// 0 before there is a block.
    std::size_t room_ = 0;
    /// Of the block before.
    std::size_t lastRows_ = kMostBlockRows;
    LayoutKey key_;
    std::optional<detail::ChannelDecoder> decoder_;
    /// Where the octets of samples are that are read at once.
    std::array<std::uint8_t const*, 64> strip_{};
    /// The sample that is to be added next.
    detail::SequencedSample sample_;
    bool hasSample_ = false;
    bool isNewRun_ = false;
    bool isOver_ = false;
    /// Of the samples of the block that came.
    bool areLeapSecondsKnown_ = true;
    bool hasReceived_ = false;
    std::unique_ptr<Mark const> mark_;
    /// Of the sample that was read last.
    std::int64_t lastRefrTm_ = kNoTime;
    std::int64_t lastNumber_ = 0;
};

SampleReader::SampleReader(TrafficIndex const& index, TrafficStream const& stream,
                           SampleOptions options) {
    auto window = windowFor(index, options.together);
    state_ = std::make_unique<State>(index, stream, std::move(options), std::move(window));
}

SampleReader::SampleReader(TrafficIndex const& index, TrafficStream const& stream,
                           SampleOptions options, SampleReader const& beside)
    : state_(std::make_unique<State>(index, stream, std::move(options), beside.state_->window)) {}

SampleReader::SampleReader(SampleReader&& other) noexcept = default;
SampleReader& SampleReader::operator=(SampleReader&& other) noexcept = default;
SampleReader::~SampleReader() = default;

void SampleReader::startAfter(SampleReader const& before) { state_->startAfter(*before.state_); }

SampleBlock const* SampleReader::next() { return state_->next(); }

SampleCounts SampleReader::counts() const noexcept { return state_->counts(); }

}  // namespace TalIec61850Analysis
