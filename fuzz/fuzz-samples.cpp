// A whole capture file, its samples read: those that came and every one, in parts of time and
// whole; and pictures of them.

#include <TalIec61850Analysis/pictures/MeasureCycle.hpp>
#include <TalIec61850Analysis/pictures/StreamPicture.hpp>
#include <TalIec61850Analysis/samples/SampleReader.hpp>
#include <TalIec61850Analysis/samples/SummarizeSamples.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

#include "fuzz/CaptureInput.hpp"
#include "fuzz/Check.hpp"
#include "fuzz/Tally.hpp"
#include "index/Indexing.hpp"

namespace {

using namespace TalIec61850Analysis;
using namespace TalFuzz;

/// A capture of two packets can lack the samples of minutes.
constexpr std::uint64_t kMostRowsRead = 50'000;

/// A row, in numbers that can be compared: values by their octets.
using Row = std::vector<std::uint64_t>;

template <typename Number>
void addOctets(Row& row, Number number) {
    std::uint64_t octets = 0;
    static_assert(sizeof number <= sizeof octets);
    std::memcpy(&octets, &number, sizeof number);
    row.push_back(octets);
}

Row rowOf(SampleBlock const& block, std::size_t row) {
    Row all;
    addOctets(all, block.sampleTimes.at(row));
    addOctets(all, block.timeSources.at(row));
    addOctets(all, block.arrivals.at(row));
    addOctets(all, block.smpCnts.at(row));
    addOctets(all, block.smpSynchs.at(row));
    addOctets(all, block.states.at(row));
    addOctets(all, block.places.at(row).fileOffset);
    addOctets(all, block.places.at(row).asdu);
    for (ChannelColumn const& channel : block.channels) {
        std::visit([&](auto const& values) { addOctets(all, values.at(row)); }, channel.values);
        if (!channel.qualities.empty()) addOctets(all, channel.qualities.at(row));
    }
    for (std::uint8_t const octet : block.octetsOf(row)) all.push_back(octet);
    return all;
}

/// What was read of a stream.
struct Reading {
    /// Those that came.
    std::vector<Row> came;
    std::uint64_t missing = 0;
    SampleCounts counts;
    /// Whether there was more than is read here.
    bool isCut = false;
};

Reading readingOf(TrafficIndex const& index, TrafficStream const& stream,
                  SampleOptions const& options) {
    Reading reading;
    SampleReader reader(index, stream, options);
    while (SampleBlock const* const block = reader.next()) {
        require(!block->empty(), "no block is empty");
        for (std::size_t row = 0; row < block->size(); ++row) {
            if (block->states[row] == SampleState::missing) {
                ++reading.missing;
                require(options.rows == SampleRows::everySample, "missing rows were asked for");
                require(block->arrivals[row] == kNoTime, "a missing sample did not arrive");
            } else {
                reading.came.push_back(rowOf(*block, row));
            }
        }
        if (reading.came.size() + reading.missing > kMostRowsRead) {
            reading.isCut = true;
            break;
        }
    }
    reading.counts = reader.counts();
    return reading;
}

/// Reads before and after a time; together that is all that has one.
void requireSameInParts(TrafficIndex const& index, TrafficStream const& stream,
                        Reading const& whole) {
    constexpr std::size_t kTime = 0;
    constexpr std::size_t kArrival = 2;
    auto const timeIn = [](Row const& row) {
        auto const time = static_cast<std::int64_t>(row[kTime]);
        return time != kNoTime ? time : static_cast<std::int64_t>(row[kArrival]);
    };
    std::int64_t const middle = timeIn(whole.came[whole.came.size() / 2]);
    if (middle == kNoTime) return;
    std::vector<Row> before;
    std::vector<Row> after;
    for (Row const& row : whole.came) {
        std::int64_t const time = timeIn(row);
        if (time != kNoTime) (time < middle ? before : after).push_back(row);
    }
    SampleOptions first;
    first.end = captureTimeOf(middle);
    require(readingOf(index, stream, first).came == before, "a window ends where it should");
    SampleOptions second;
    second.from = captureTimeOf(middle);
    require(readingOf(index, stream, second).came == after, "a window begins where it should");
}

void requireSoundLevel(EnvelopeLevel const& level, std::size_t channels) {
    std::size_t const columns = level.size();
    require(level.width > 0 && level.missing.size() == columns, "levels have whole columns");
    require(level.channels.size() == channels, "levels have all channels");
    for (EnvelopeChannel const& channel : level.channels) {
        for (auto const* const values :
             {&channel.least, &channel.largest, &channel.first, &channel.last}) {
            require(values->size() == columns, "each column has a value");
            for (std::size_t i = 0; i < columns; ++i) {
                require(std::isfinite(values->at(i)) == (channel.counts.at(i) != 0),
                        "values are finite where there are any");
            }
        }
        require(channel.qualities.size() == columns, "each column has a quality");
        for (std::size_t i = 0; i < columns; ++i) {
            require(channel.counts[i] == 0 || channel.least[i] <= channel.largest[i],
                    "the least value is not above the largest");
            require(channel.counts[i] <= level.received[i], "values are of samples");
        }
    }
}

void requireSoundSpans(std::vector<SampleSpan> const& spans, std::size_t most) {
    require(spans.size() <= most, "spans are bounded");
    for (SampleSpan const& span : spans) {
        require(span.samples > 0 && span.joined > 0 && span.from <= span.to, "spans have samples");
    }
}

/// All that pictures show of a stream, and cycles of its waveform.
void requireSoundPicture(TrafficIndex const& index, TrafficStream const& stream,
                         Reading const& all) {
    StreamPictureOptions const options{
        .columns = 64, .fewestColumns = 16, .mostSamples = kMostRowsRead, .mostSpans = 16};
    StreamPicture const picture = readStreamPicture(index, stream, options);
    require(picture.extent.received == all.came.size() && picture.extent.missing == all.missing,
            "pictures have all samples");
    Envelopes const& envelopes = picture.envelopes;
    for (EnvelopeLevel const& level : envelopes.levels) {
        require(level.size() <= options.columns, "columns are bounded");
        requireSoundLevel(level, envelopes.channelNumbers.size());
    }
    requireSoundSpans(picture.spans.missing, options.mostSpans);
    for (auto const& spans : picture.spans.qualities) requireSoundSpans(spans, options.mostSpans);
    Waveform const& waveform = picture.waveform;
    require(!waveform.isTooLong && waveform.size() == all.came.size() + all.missing,
            "a waveform has each sample");
    for (std::size_t const row : {std::size_t{0}, waveform.size() / 2, waveform.size() - 1}) {
        auto const reading = measureCycleAt(waveform, captureTimeOf(waveform.times[row]));
        if (!reading) continue;
        require(reading->channels.size() == waveform.channels.size(), "each channel is measured");
        require(std::isfinite(reading->frequency), "a cycle has a frequency");
        for (auto const& channel : reading->channels) {
            require(!channel || !std::isnan(channel->rms), "finite values have an RMS");
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static Tally read("captures have samples");
    static TalTest::ScratchFile file;
    CaptureInput const input = captureInput({data, size});
    file.assign(input.capture);
    TrafficIndex const index = indexCapture(file.path());
    bool hasSamples = false;
    for (TrafficStream const& stream : index.streams()) {
        if (stream.key.protocol != StreamProtocol::sv) continue;
        static_cast<void>(summarizeSamples(index, stream));
        SampleOptions options;
        Reading const came = readingOf(index, stream, options);
        options.rows = SampleRows::everySample;
        Reading const all = readingOf(index, stream, options);
        if (came.isCut || all.isCut) continue;
        require(all.came == came.came, "the samples that came are the same among missing ones");
        require(all.counts == came.counts, "so are counts");
        require(all.missing == came.counts.lost, "each lost sample is a row");
        require(came.counts.received == came.came.size(), "each sample is counted");
        require(came.counts.received + came.counts.repeated == stream.packets,
                "each packet is a sample, or a repeated one");
        if (!came.came.empty()) {
            hasSamples = true;
            requireSameInParts(index, stream, came);
            requireSoundPicture(index, stream, all);
        }
    }
    read.add(hasSamples ? 1 : 0, 1);
    return 0;
}
