// The samples of whole captures, the project's own and recorded ones, against a plain reading of
// their octets, and against tshark.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/samples/SampleReader.hpp>
#include <bit>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "analysis/samples/ReadRows.hpp"
#include "index/Tshark.hpp"
#include "support/CaptureFile.hpp"
#include "support/Captures.hpp"
#include "support/OwnCaptures.hpp"

namespace TalIec61850Analysis::SampleCapturesTest {
namespace {

using namespace TalTest;

/// An element as it is in a file; nothing where it does not fit in what it is in.
struct PlainElement {
    std::uint8_t tag = 0;
    std::size_t start = 0;
    std::size_t value = 0;
    std::size_t end = 0;
};

std::optional<PlainElement> plainElement(Bytes const& file, std::size_t at, std::size_t limit) {
    if (at + 2 > limit) return std::nullopt;
    PlainElement element{.tag = file[at], .start = at, .value = at + 2, .end = 0};
    std::size_t size = file[at + 1];
    if (size > 0x80 && size <= 0x84) {
        std::size_t const octets = size - 0x80;
        if (at + 2 + octets > limit) return std::nullopt;
        size = 0;
        for (std::size_t i = 0; i < octets; ++i) size = size * 256 + file[at + 2 + i];
        element.value += octets;
    } else if (size >= 0x80) {
        return std::nullopt;
    }
    element.end = element.value + size;
    if (element.end > limit) return std::nullopt;
    return element;
}

/// What an ASDU says.
struct PlainAsdu {
    std::optional<std::uint64_t> smpCnt = {};
    std::optional<std::uint64_t> smpSynch = {};
    Bytes data = {};
};

/// The ASDU at an octet 30; nothing where any of it is damaged.
std::optional<PlainAsdu> plainAsdu(Bytes const& file, std::size_t at) {
    auto const asdu = plainElement(file, at, file.size());
    if (!asdu || asdu->tag != 0x30) return std::nullopt;
    PlainAsdu plain;
    bool hasData = false;
    for (std::size_t next = asdu->value; next < asdu->end;) {
        auto const field = plainElement(file, next, asdu->end);
        if (!field) return std::nullopt;
        std::uint64_t number = 0;
        for (std::size_t i = field->value; i < field->end; ++i) number = number * 256 + file[i];
        std::size_t const size = field->end - field->value;
        if (field->tag == 0x82 && !plain.smpCnt && size <= 4) plain.smpCnt = number;
        if (field->tag == 0x85 && !plain.smpSynch && size == 1) plain.smpSynch = number;
        if (field->tag == 0x87 && !hasData) {
            hasData = true;
            plain.data.assign(file.begin() + static_cast<std::ptrdiff_t>(field->value),
                              file.begin() + static_cast<std::ptrdiff_t>(field->end));
        }
        next = field->end;
    }
    return plain;
}

/// Values and qualities of a sample by the members of its data set, one by one.
void expectDecoded(SampleLayout const& layout, Bytes const& data, ReadRow const& row) {
    std::size_t at = 0;
    std::size_t channel = 0;
    std::size_t qualities = 0;
    bool isAfterValue = false;
    for (SampleType const member : layout.members()) {
        ASSERT_LE(at + sizeOf(member), data.size());
        std::uint64_t bits = 0;
        for (std::size_t i = 0; i < sizeOf(member); ++i) bits = bits * 256 + data[at + i];
        at += sizeOf(member);
        if (member == SampleType::quality) {
            if (isAfterValue) {
                ASSERT_EQ(row.qualities.at(qualities++), bits);
            }
            isAfterValue = false;
        } else if (member == SampleType::timestamp) {
            isAfterValue = false;
        } else {
            // Without a given layout, values have 32 bits.
            auto const word = static_cast<std::uint32_t>(bits);
            std::int64_t const expected =
                member == SampleType::float32
                    ? std::bit_cast<std::int64_t>(static_cast<double>(std::bit_cast<float>(word)))
                    : std::int64_t{static_cast<std::int32_t>(word)};
            ASSERT_EQ(row.values.at(channel++), expected);
            isAfterValue = true;
        }
    }
    EXPECT_EQ(at, data.size());
}

/// The captures that are indexed at all.
std::vector<std::string> sampleCaptures() {
    std::vector<std::string> paths = ownCapturePaths();
    for (std::string const& path : recordedCapturePaths()) paths.push_back(path);
    return paths;
}

/// Reads a stream block by block, and compares each sample that came with the octets of the file.
/// @return how many were compared
std::size_t compareWithOctets(TrafficIndex const& index, TrafficStream const& stream,
                              Bytes const& file) {
    std::set<std::uint64_t> cut;
    std::size_t once = 0;
    PacketColumns const& packets = stream.parts.at(0).packets;
    for (std::size_t i = 0; i < packets.size(); ++i) {
        PacketFlags const flags = packets.flags()[i];
        once += flags.isCopy() || flags.isDuplicate() ? 0 : 1;
        if (flags.isCut()) cut.insert(packets.frameOffsets()[i]);
    }
    std::size_t compared = 0;
    std::set<std::uint64_t> places;
    ReadStream const read = readRows(index, stream);
    std::size_t row = 0;
    for (std::size_t block = 0; block < read.layouts.size(); ++block) {
        for (std::size_t i = 0; i < read.blockSizes[block]; ++i, ++row) {
            ReadRow const& sample = read.rows.at(row);
            EXPECT_TRUE(places.insert(sample.place.fileOffset).second);
            auto const plain = plainAsdu(file, sample.place.fileOffset);
            if (!plain || !cut.empty()) continue;
            ++compared;
            if (plain->smpCnt) {
                EXPECT_EQ(sample.smpCnt, *plain->smpCnt);
                EXPECT_EQ(sample.state, SampleState::received);
            } else {
                EXPECT_EQ(sample.state, SampleState::uncounted);
            }
            EXPECT_EQ(sample.smpSynch, plain->smpSynch ? *plain->smpSynch : SampleBlock::kNoSynch);
            if (read.layouts[block].layout) {
                expectDecoded(*read.layouts[block].layout, plain->data, sample);
                if (testing::Test::HasFatalFailure()) return compared;
            } else {
                EXPECT_EQ(sample.octets, plain->data);
            }
        }
    }
    EXPECT_EQ(read.counts.received, read.rows.size());
    EXPECT_EQ(read.counts.received + read.counts.repeated, once);
    return compared;
}

TEST(SamplesOfCaptures, AreTheOctetsOfTheirFiles) {
    std::size_t streams = 0;
    std::size_t compared = 0;
    for (std::string const& path : sampleCaptures()) {
        SCOPED_TRACE(std::filesystem::path(path).filename());
        Bytes const file = readFile(path);
        TrafficIndex const index = indexCapture(path);
        for (TrafficStream const& stream : index.streams()) {
            if (stream.key.protocol != StreamProtocol::sv) continue;
            SCOPED_TRACE(stream.key.name);
            ++streams;
            compared += compareWithOctets(index, stream, file);
        }
    }
    EXPECT_GE(streams, 10U);
    // The project's own captures have few samples; a recorded one has thousands.
    EXPECT_GE(compared, capture("sv-92le-4000hz-three-phase-fault.pcap") ? 10'000U : 600U);
}

TEST(SamplesOfCaptures, AreThoseOfTheRecordedFault) {
    auto const path = capture("sv-92le-4000hz-three-phase-fault.pcap");
    if (!path) {
        if (requireCaptures()) FAIL() << "the recorded capture is missing";
        GTEST_SKIP() << "no recorded captures";
    }
    TrafficIndex const index = indexCapture(*path);
    ASSERT_EQ(index.streams().size(), 1U);
    SampleOptions options;
    options.rows = SampleRows::everySample;
    ReadStream const read = readRows(index, index.streams()[0], options);
    ASSERT_EQ(read.rows.size(), 12'000U);
    ASSERT_EQ(read.runs.size(), 1U);
    EXPECT_EQ(read.runs[0].rate, (SampleRate{.samples = 4000}));
    EXPECT_EQ(read.runs[0].rateSource, RateSource::counter);
    EXPECT_EQ(read.counts.lost, 0U);
    for (std::size_t i = 0; i < read.rows.size(); ++i) {
        ReadRow const& row = read.rows[i];
        ASSERT_EQ(row.time, read.rows[0].time + static_cast<std::int64_t>(i) * 250'000);
        ASSERT_EQ(row.source, SampleTimeSource::smpCnt);
        ASSERT_EQ(row.time % 1'000'000'000, std::int64_t{row.smpCnt} * 250'000);
        ASSERT_EQ(row.values.size(), 8U);
    }
}

TEST(SamplesOfCaptures, AreThoseThatTsharkTells) {
    auto const program = tsharkProgram();
    if (!program) GTEST_SKIP() << "no tshark on PATH";
    std::size_t frames = 0;
    std::vector<std::string> paths;
    for (OwnCapture const& own : ownCaptures()) {
        if (own.svFrames > 0 && own.dissected == Dissected::inFull) {
            paths.push_back(ownCapture(own.name));
        }
    }
    for (std::string const& path :
         recorded({"sv-92le-4000hz-three-phase-fault.pcap", "reencoded-le-ns-sv-92le.pcap",
                   "derived-sv-prp-both-lans.pcap"})) {
        paths.push_back(path);
    }
    for (std::string const& path : paths) {
        SCOPED_TRACE(std::filesystem::path(path).filename());
        std::map<std::uint64_t, std::uint64_t> numbers;
        std::vector<TalTest::CaptureRecord> const records = readCapture(path);
        for (std::size_t i = 0; i < records.size(); ++i) {
            numbers[records[i].position + recordHeaderSize] = i + 1;
        }
        // By frame and number of the ASDU, where values are integers with a quality: the counter,
        // then a value and a quality for each channel.
        std::map<std::uint64_t, std::map<std::size_t, std::vector<std::string>>> read;
        std::set<std::uint64_t> others;
        TrafficIndex const index = indexCapture(path);
        for (TrafficStream const& stream : index.streams()) {
            if (stream.key.protocol != StreamProtocol::sv) continue;
            ReadStream const all = readRows(index, stream);
            std::size_t row = 0;
            for (std::size_t block = 0; block < all.layouts.size(); ++block) {
                auto const& layout = all.layouts[block].layout;
                bool const isPlain = layout && layout->members().size() >= 2 &&
                                     layout->members()[0] == SampleType::int32 &&
                                     layout->members()[1] == SampleType::quality;
                for (std::size_t i = 0; i < all.blockSizes[block]; ++i, ++row) {
                    ReadRow const& sample = all.rows[row];
                    auto const record = std::prev(numbers.upper_bound(sample.place.fileOffset));
                    if (!isPlain) {
                        others.insert(record->second);
                        continue;
                    }
                    std::vector<std::string>& told = read[record->second][sample.place.asdu];
                    for (std::size_t channel = 0; channel < sample.values.size(); ++channel) {
                        told.push_back(std::to_string(sample.values[channel]));
                        told.push_back(std::to_string(sample.qualities[channel]));
                    }
                    told.push_back(std::to_string(sample.smpCnt));
                }
            }
        }
        for (TsharkFields const& fields :
             dissect(*program, path,
                     {"frame.number", "sv.smpCnt", "sv.meas_value", "sv.meas_quality", "sv.appid"},
                     Occurrence::all, {"sv.decode_data_as_phsmeas:TRUE"})) {
            std::uint64_t const record = *number(fields.at("frame.number"));
            // Copies and repeated samples are in no row.
            if (others.contains(record) || !read.contains(record)) continue;
            auto const counters = separated(fields.at("sv.smpCnt"));
            auto const values = separated(fields.at("sv.meas_value"));
            auto const qualities = separated(fields.at("sv.meas_quality"));
            ASSERT_EQ(values.size(), qualities.size());
            if (read[record].size() != counters.size()) continue;
            ++frames;
            std::vector<std::string> told;
            std::vector<std::string> asRead;
            std::size_t next = 0;
            for (auto const& [asdu, fieldsRead] : read[record]) {
                asRead.insert(asRead.end(), fieldsRead.begin(), fieldsRead.end());
                for (std::size_t i = 0; i + 1 < fieldsRead.size(); i += 2, ++next) {
                    ASSERT_LT(next, values.size());
                    told.push_back(values[next]);
                    told.push_back(std::to_string(*number(qualities[next])));
                }
                told.push_back(std::to_string(*number(counters.at(asdu))));
            }
            EXPECT_EQ(next, values.size());
            ASSERT_EQ(asRead, told) << record;
        }
    }
    EXPECT_GE(frames, 100U);
}

}  // namespace
}  // namespace TalIec61850Analysis::SampleCapturesTest
