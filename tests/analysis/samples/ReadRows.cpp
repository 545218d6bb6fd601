#include "analysis/samples/ReadRows.hpp"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <type_traits>
#include <variant>

namespace TalTest {

using namespace TalIec61850Analysis;

namespace {

std::int64_t bitsOf(ChannelValues const& values, std::size_t row) {
    return std::visit(
        [row](auto const& column) {
            auto const value = column.at(row);
            if constexpr (std::is_floating_point_v<std::remove_cv_t<decltype(value)>>) {
                return std::bit_cast<std::int64_t>(static_cast<double>(value));
            } else {
                return static_cast<std::int64_t>(value);
            }
        },
        values);
}

std::string text(std::int64_t number) { return std::to_string(number); }

/// What is wrong with a row; nothing if it is as it should be.
std::string differenceOf(WaveformSettings const& settings, WaveformRow const& expected,
                         ReadRow const& read, RowBounds const& bounds) {
    std::string found;
    auto const compare = [&](char const* what, std::int64_t is, std::int64_t shouldBe) {
        if (is != shouldBe) {
            found += std::string(what) + " is " + text(is) + ", should be " + text(shouldBe) + "; ";
        }
    };
    compare("state", static_cast<int>(read.state),
            static_cast<int>(expected.isMissing ? SampleState::missing : SampleState::received));
    compare("smpCnt", read.smpCnt, expected.smpCnt);
    compare("smpSynch", read.smpSynch,
            expected.smpSynch ? *expected.smpSynch : SampleBlock::kNoSynch);
    compare("arrival", read.arrival, expected.arrival);
    compare("run", static_cast<std::int64_t>(read.run), static_cast<std::int64_t>(expected.run));
    if (expected.time != WaveformRow::noTime) {
        compare("time", read.time, expected.time);
        compare("source", static_cast<int>(read.source),
                static_cast<int>(settings.hasRefrTm ? SampleTimeSource::refrTm
                                                    : SampleTimeSource::smpCnt));
    } else {
        std::int64_t const about =
            settings.hasRefrTm ? expected.taken : expected.arrivalTime + settings.delay;
        compare("source", static_cast<int>(read.source), static_cast<int>(SampleTimeSource::fit));
        if (std::abs(read.time - about) > bounds.fit) {
            found += "fit is " + text(read.time) + ", off by " + text(read.time - about) + "; ";
        }
    }
    if (bounds.havePlaces) {
        compare("file", read.place.file, static_cast<std::int64_t>(expected.file));
        compare("fileOffset", static_cast<std::int64_t>(read.place.fileOffset),
                static_cast<std::int64_t>(expected.fileOffset));
        compare("asdu", read.place.asdu, static_cast<std::int64_t>(expected.asdu));
    }
    if (read.octets.empty()) {
        compare("channels", static_cast<std::int64_t>(read.values.size()),
                static_cast<std::int64_t>(expected.values.size()));
        for (std::size_t i = 0; i < std::min(read.values.size(), expected.values.size()); ++i) {
            compare("value", read.values[i], expected.values[i]);
        }
        if (read.qualities != expected.qualities) found += "qualities differ; ";
    } else if (read.octets != expected.octets) {
        found += "octets differ; ";
    }
    return found;
}

}  // namespace

ReadStream readRows(TrafficIndex const& index, TrafficStream const& stream,
                    SampleOptions const& options) {
    SampleReader reader(index, stream, options);
    return readRows(reader);
}

ReadStream readRows(SampleReader& reader) {
    ReadStream all;
    while (SampleBlock const* const block = reader.next()) {
        if (all.runs.empty() || all.runs.back() != block->run) all.runs.push_back(block->run);
        all.layouts.push_back(block->layout);
        all.blockSizes.push_back(block->size());
        for (std::size_t row = 0; row < block->size(); ++row) {
            ReadRow read{.time = block->sampleTimes.at(row),
                         .source = block->timeSources.at(row),
                         .arrival = block->arrivals.at(row),
                         .smpCnt = block->smpCnts.at(row),
                         .smpSynch = block->smpSynchs.at(row),
                         .state = block->states.at(row),
                         .place = block->places.at(row),
                         .run = all.runs.size() - 1,
                         .start = block->run.start};
            for (ChannelColumn const& channel : block->channels) {
                read.values.push_back(bitsOf(channel.values, row));
                if (!channel.qualities.empty()) {
                    read.qualities.push_back(channel.qualities.at(row));
                }
            }
            Octets const octets = block->octetsOf(row);
            read.octets.assign(octets.begin(), octets.end());
            all.rows.push_back(std::move(read));
        }
    }
    all.counts = reader.counts();
    return all;
}

IndexedWaveform::IndexedWaveform(std::vector<Bytes> const& captures) {
    for (std::size_t i = 0; i < captures.size(); ++i) {
        paths_.push_back(folder_.write(std::to_string(i) + ".pcap", captures[i]));
    }
    index_ = indexCaptures(paths_);
}

SampleLayout layoutOf(std::vector<WaveMember> const& members) {
    std::vector<SampleType> types;
    for (WaveMember const member : members) {
        switch (member) {
            case WaveMember::boolean:
                types.push_back(SampleType::boolean);
                break;
            case WaveMember::int8:
                types.push_back(SampleType::int8);
                break;
            case WaveMember::int16:
                types.push_back(SampleType::int16);
                break;
            case WaveMember::int24:
                types.push_back(SampleType::int24);
                break;
            case WaveMember::int32:
                types.push_back(SampleType::int32);
                break;
            case WaveMember::int64:
                types.push_back(SampleType::int64);
                break;
            case WaveMember::int8u:
                types.push_back(SampleType::int8u);
                break;
            case WaveMember::int16u:
                types.push_back(SampleType::int16u);
                break;
            case WaveMember::int24u:
                types.push_back(SampleType::int24u);
                break;
            case WaveMember::int32u:
                types.push_back(SampleType::int32u);
                break;
            case WaveMember::float32:
                types.push_back(SampleType::float32);
                break;
            case WaveMember::float64:
                types.push_back(SampleType::float64);
                break;
            case WaveMember::enumerated:
                types.push_back(SampleType::enumerated);
                break;
            case WaveMember::quality:
                types.push_back(SampleType::quality);
                break;
            case WaveMember::timestamp:
                types.push_back(SampleType::timestamp);
                break;
        }
    }
    return SampleLayout(std::move(types));
}

testing::AssertionResult areRowsOf(WaveformSettings const& settings,
                                   std::vector<WaveformRow> const& expected, ReadStream const& read,
                                   RowBounds const& bounds) {
    std::size_t const rows = std::min(expected.size(), read.rows.size());
    for (std::size_t row = 0; row < rows; ++row) {
        std::string const wrong = differenceOf(settings, expected[row], read.rows[row], bounds);
        if (!wrong.empty()) {
            return testing::AssertionFailure()
                   << "row " << row << " of " << expected.size() << ": " << wrong;
        }
    }
    if (expected.size() != read.rows.size()) {
        return testing::AssertionFailure()
               << read.rows.size() << " rows instead of " << expected.size();
    }
    return testing::AssertionSuccess();
}

void expectRowsOf(WaveformStream const& stream, SampleOptions const& options,
                  RowBounds const& bounds) {
    IndexedWaveform const indexed(stream);
    ASSERT_EQ(indexed.index().streams().size(), 1U);
    WaveformCounts const counts = stream.counts();
    for (bool const withMissing : {false, true}) {
        SampleOptions these = options;
        these.rows = withMissing ? SampleRows::everySample : SampleRows::received;
        ReadStream const read = indexed.read(these);
        EXPECT_TRUE(areRowsOf(stream.settings(), stream.rows(withMissing), read, bounds))
            << (withMissing ? "every sample" : "received");
        EXPECT_EQ(read.counts.received, counts.received);
        EXPECT_EQ(read.counts.lost, counts.lost);
        EXPECT_EQ(read.counts.late, counts.late);
        EXPECT_EQ(read.counts.repeated, counts.repeated);
        EXPECT_EQ(read.counts.runs, counts.runs);
    }
}

}  // namespace TalTest
