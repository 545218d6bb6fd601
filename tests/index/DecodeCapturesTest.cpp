// Every packet of the captures decoded, against its stream's record and the octets of its
// frame; and packets of captures that were damaged after they had been indexed.

#include <gtest/gtest.h>

#include <TalIec61850Parser/goose/GooseParser.hpp>
#include <TalIec61850Parser/store/Db.hpp>
#include <TalIec61850Parser/sv/SvParser.hpp>
#include <algorithm>
#include <cstdint>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "goose/GoosePduText.hpp"
#include "index/Indexing.hpp"
#include "index/KnownCaptures.hpp"
#include "index/PlainDecode.hpp"
#include "support/CaptureFile.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"
#include "sv/AsduText.hpp"

namespace TalTest::DecodeCapturesTest {
namespace {

using namespace TalIec61850Parser;

class DecodedCapture : public KnownCaptureTest {
protected:
    void SetUp() override {
        KnownCaptureTest::SetUp();
        if (HasFatalFailure()) return;
        indexInto(db, path());
        packets = packetsByPosition(db);
        if (!packets.empty()) records = readCapture(wholePath());
    }

    /// The record that holds a position.
    [[nodiscard]] CaptureRecord const& recordAt(std::uint64_t position) const {
        auto const behind = std::upper_bound(
            records.begin(), records.end(), position,
            [](std::uint64_t at, CaptureRecord const& record) { return at < record.position; });
        return *std::prev(behind);
    }

    static std::size_t indexIn(CaptureRecord const& record, std::uint64_t position) {
        return position - record.position - recordHeaderSize;
    }

    Db db;
    std::map<std::uint64_t, IndexedPacket> packets;
    std::vector<CaptureRecord> records;
};

std::string orNone(std::optional<std::string> const& text) { return text.value_or(""); }

TEST_P(DecodedCapture, HasAPositionForEveryFrameWithAWholePdu) {
    EXPECT_EQ(packets.size(), GetParam().frames() - GetParam().withoutPosition);
}

TEST_P(DecodedCapture, HoldsInItsGooseFramesWhatTheirStreamsAreKnownBy) {
    for (auto const& [position, packet] : packets) {
        if (packet.goose == nullptr) continue;
        Goose const& stream = *packet.goose;
        GoosePdu const pdu = GooseParser::parseGoosePDUFromFile(path(), position);
        EXPECT_EQ(pdu.gocbRef, orNone(stream.gocbRef));
        EXPECT_EQ(pdu.datSet, orNone(stream.datSet));
        EXPECT_EQ(pdu.goID, orNone(stream.goID));
        EXPECT_EQ(pdu.confRev, stream.confRev ? std::to_string(*stream.confRev) : "");
        // The index sets it for the element's presence, the decoder reads it.
        EXPECT_EQ(pdu.simulation.empty(), !stream.simulation.has_value());
        if (HasFailure()) FAIL() << "at " << position;
    }
}

TEST_P(DecodedCapture, HoldsInItsGooseFramesWhatTheirOctetsSay) {
    Bytes const file = readFile(path());
    for (auto const& [position, packet] : packets) {
        if (packet.goose == nullptr) continue;
        GoosePdu const pdu = GooseParser::parseGoosePDUFromFile(path(), position);
        ASSERT_EQ(textOf(pdu), textOf(expectedGoosePdu(file, position))) << "at " << position;
        Bytes const& frame = recordAt(position).frame;
        auto const start = static_cast<std::ptrdiff_t>(indexIn(recordAt(position), position));
        auto fields = plainFields(plainElements({frame.begin() + start, frame.end()}).at(0).value);
        ASSERT_EQ(pdu.allData, fields[0xAB]) << "at " << position;
        ASSERT_EQ(pdu.goID, std::string(fields[0x83].begin(), fields[0x83].end()));
        std::vector<float> booleans;
        for (PlainElement const& entry : plainElements(pdu.allData))
            if (entry.tag == 0x83) booleans.push_back(entry.value.at(0) == 0 ? 0.0F : 1.0F);
        ASSERT_EQ(GooseParser::parseBooleanValues(pdu.allData), booleans) << "at " << position;
    }
}

TEST_P(DecodedCapture, HoldsInItsSvFramesWhatTheirOctetsSay) {
    for (auto const& [position, packet] : packets) {
        if (packet.sv == nullptr) continue;
        CaptureRecord const& record = recordAt(position);
        auto expected = plainAsdus(record.frame, indexIn(record, position));
        std::vector<ASDUData> const asdus = SvParser::parseASDUFromFile(path(), position);
        ASSERT_EQ(asdus.size(), expected.size()) << "at " << position;
        ASSERT_FALSE(asdus.empty()) << "at " << position;
        for (std::size_t i = 0; i < asdus.size(); ++i) {
            auto& fields = expected[i];
            EXPECT_EQ(text(asdus[i].svID), fields[0x80]);
            EXPECT_EQ(text(asdus[i].datSet), fields[0x81]);
            EXPECT_EQ(asdus[i].smpCnt, plainNumber(fields[0x82]));
            EXPECT_EQ(asdus[i].confRev, plainNumber(fields[0x83]));
            EXPECT_EQ(asdus[i].refrTm, fields[0x84]);
            EXPECT_EQ(asdus[i].smpSynch, plainNumber(fields[0x85]));
            EXPECT_EQ(asdus[i].smpRate, plainNumber(fields[0x86]));
            EXPECT_EQ(asdus[i].samples.size(), fields[0x87].size() / 8);
        }
        EXPECT_LE(asdus.back().smpCnt, packet.sv->maxSmpCnt);
        EXPECT_EQ(asdus.back().svID, packet.sv->svID);
        EXPECT_EQ(asdus.back().confRev, packet.sv->confRev);
        EXPECT_EQ(asdus.size(), packet.sv->maxNoASDU);
        if (HasFailure()) FAIL() << "at " << position;
    }
}

TEST_P(DecodedCapture, HoldsTheSamplesOfItsFrames) {
    Bytes const file = readFile(path());
    for (auto const& [position, packet] : packets) {
        if (packet.sv == nullptr) continue;
        ASSERT_EQ(textOf(SvParser::parseASDUFromFile(path(), position)),
                  textOf(expectedAsdus(file, position)))
            << "at " << position;
    }
}

TEST_P(DecodedCapture, GivesNothingForThePacketsOfTheOtherProtocolOrWithoutAPosition) {
    EXPECT_EQ(textOf(GooseParser::parseGoosePDUFromFile(path(), 0)), "");
    EXPECT_EQ(textOf(SvParser::parseASDUFromFile(path(), 0)), "");
    std::size_t left = 100;
    for (auto const& [position, packet] : packets) {
        if (left-- == 0) break;
        if (packet.goose != nullptr) {
            EXPECT_EQ(textOf(SvParser::parseASDUFromFile(path(), position)), "");
        } else {
            EXPECT_EQ(textOf(GooseParser::parseGoosePDUFromFile(path(), position)), "");
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Captures, DecodedCapture,
                         testing::ValuesIn(capturesWith([](KnownCapture const& capture) {
                             return capture.whyNotDecoded.empty();
                         })),
                         testName);

/// Captures that are not decoded to what their frames hold.
class OtherwiseDecodedCapture : public DecodedCapture {};

INSTANTIATE_TEST_SUITE_P(Captures, OtherwiseDecodedCapture,
                         testing::ValuesIn(capturesWith([](KnownCapture const& capture) {
                             return !capture.whyNotDecoded.empty();
                         })),
                         testName);

TEST_P(OtherwiseDecodedCapture, HoldsWhatStandsAtItsPositions) {
    Bytes const file = readFile(path());
    for (auto const& [position, packet] : packets) {
        EXPECT_EQ(textOf(GooseParser::parseGoosePDUFromFile(path(), position)),
                  textOf(expectedGoosePdu(file, position)));
        EXPECT_EQ(textOf(SvParser::parseASDUFromFile(path(), position)),
                  textOf(expectedAsdus(file, position)));
    }
}

/// The names of the data sets in all packets of an own capture, in the order of the file.
std::vector<std::string> decodedDataSets(std::string const& capture) {
    std::string const path = ownCapture(capture);
    Db db;
    indexInto(db, path);
    std::vector<std::string> names;
    for (auto const& [position, packet] : packetsByPosition(db))
        names.push_back(GooseParser::parseGoosePDUFromFile(path, position).datSet);
    return names;
}

TEST(DecodedCutRecord, HoldsNothing) {
    std::vector<std::string> names(8, "BAY1_PROTLD0/LLN0$dsTrip");
    for (std::size_t frame = 1; frame < names.size(); frame += 2) names[frame][3] = '2';
    names.back() = "";
    EXPECT_EQ(decodedDataSets("own-goose-cut-last-record.pcap"), names);
}

TEST(DecodedLengths, OfThreeOctetsAndMoreHoldNothing) {
    EXPECT_EQ(decodedDataSets("own-goose-longest-lengths.pcap"), std::vector<std::string>(2));
}

TEST(DecodedTrailers, HoldTheirOwnElementsAlone) {
    EXPECT_EQ(
        decodedDataSets("own-goose-trailers-as-elements.pcap"),
        (std::vector<std::string>{"BAY1_PROTLD0/LLN0$dsTrip", "", "", "SIGNED/AS$datSet", ""}));
}

class DecodedFrames : public testing::TestWithParam<ThirteenAsdus> {};

TEST_P(DecodedFrames, OfThirteenAsdusHoldTheirNames) {
    std::string const path = pathOf(GetParam().capture);
    std::vector<std::string> const& names = GetParam().svIDs;
    Db db;
    indexInto(db, path);
    std::size_t frames = 0;
    for (auto const& [position, packet] : packetsByPosition(db)) {
        if (packet.sv == nullptr || packet.sv->svID != names.back()) continue;
        std::vector<std::string> found;
        for (ASDUData const& asdu : SvParser::parseASDUFromFile(path, position)) {
            found.push_back(asdu.svID);
            ASSERT_EQ(asdu.samples.size(), 1U) << "12 octets";
        }
        ASSERT_EQ(found, names) << "at " << position;
        ++frames;
    }
    EXPECT_EQ(frames, GetParam().frames);
}

INSTANTIATE_TEST_SUITE_P(Captures, DecodedFrames, testing::ValuesIn(capturesOfThirteenAsdus()),
                         [](auto const& instance) {
                             return captureTestName(instance.param.capture.name);
                         });

/// A small capture of two GOOSE and two SV frames, and the positions of their PDUs.
class DamagedAfterIndexing : public testing::Test {
protected:
    DamagedAfterIndexing() {
        GooseMessage message;
        message.gocbRef = "C";
        message.datSet = "D";
        message.goID = "I";
        Asdu asdu;
        asdu.svID = "S";
        asdu.seqData = samples({{1, 2}, {-3, 4}});
        asdu.smpRate = 80;
        SvMessage sampled;
        sampled.asdus = {asdu, asdu};
        CaptureBuilder builder;
        builder.add(1, 0, gooseFrame({}, message)).add(2, 0, svFrame(svEthernet(), sampled));
        message.pduLengthForm = LengthForm::twoOctets;
        message.allDataLengthForm = LengthForm::oneOctet;
        sampled.sequenceLengthForm = LengthForm::oneOctet;
        builder.add(3, 0, svFrame(svEthernet(), sampled)).add(4, 0, gooseFrame({}, message));
        capture = builder.bytes();
        file.assign(capture);
        Db db;
        indexInto(db, file.path());
        for (auto const& [position, packet] : packetsByPosition(db)) positions.push_back(position);
    }

    /// The first packet that is not decoded as it should be; nothing for none.
    std::optional<std::uint64_t> wronglyDecoded() {
        for (std::uint64_t const position : positions) {
            if (textOf(GooseParser::parseGoosePDUFromFile(file.path(), position)) !=
                    textOf(expectedGoosePdu(capture, position)) ||
                textOf(SvParser::parseASDUFromFile(file.path(), position)) !=
                    textOf(expectedAsdus(capture, position)))
                return position;
        }
        return std::nullopt;
    }

    Bytes capture;
    ScratchFile file;
    std::vector<std::uint64_t> positions;
};

TEST_F(DamagedAfterIndexing, DecodesToWhatIsLeftAtEveryPrefix) {
    ASSERT_EQ(positions.size(), 4U);
    for (std::uint64_t const position : positions)
        EXPECT_NE(textOf(expectedGoosePdu(capture, position)).empty(),
                  textOf(expectedAsdus(capture, position)).empty());
    EXPECT_EQ(wronglyDecoded(), std::nullopt);
    while (!capture.empty()) {
        capture.pop_back();
        file.assign(capture);
        ASSERT_EQ(wronglyDecoded(), std::nullopt) << capture.size() << " octets";
    }
}

TEST_F(DamagedAfterIndexing, DecodesToWhatStandsThereAtEveryOtherOctet) {
    for (std::size_t at = positions.front(); at < capture.size(); ++at) {
        std::uint8_t const octet = capture[at];
        for (unsigned const other : {octet + 1U, octet - 1U, octet ^ 0x80U, octet ^ 0x20U, 0x00U,
                                     0x30U, 0x80U, 0x81U, 0x82U, 0xAFU, 0xFFU}) {
            capture[at] = static_cast<std::uint8_t>(other);
            file.assign(capture);
            ASSERT_EQ(wronglyDecoded(), std::nullopt)
                << "octet " << at << " from " << int{octet} << " to " << other;
        }
        capture[at] = octet;
    }
}

}  // namespace
}  // namespace TalTest::DecodeCapturesTest
