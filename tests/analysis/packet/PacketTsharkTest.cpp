// Every GOOSE and SV frame of the captures, and frames made up to hold what those lack,
// field by field against tshark. Where tshark is known to be mistaken, that is said and held.

#include <gtest/gtest.h>

#include <TalIec61850Parser/store/Db.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "analysis/packet/PacketFrames.hpp"
#include "analysis/packet/TsharkTerms.hpp"
#include "index/Indexing.hpp"
#include "index/KnownCaptures.hpp"
#include "index/Tshark.hpp"
#include "support/Ber.hpp"
#include "support/CaptureFile.hpp"
#include "support/Data.hpp"
#include "support/Process.hpp"
#include "support/TempFile.hpp"

namespace TalTest::PacketTsharkTest {
namespace {

using namespace TalIec61850Analysis;
using TalIec61850Parser::Db;

/// Has tshark read each eight octets of seqData as a value and its quality.
std::string const asSamples = "sv.decode_data_as_phsmeas:TRUE";

/// A frame, what tshark says of it, and the place of its packet in the index, if it has one.
struct ToldFrame {
    CaptureRecord const* record = nullptr;
    TsharkFields told = {};
    std::optional<std::size_t> offset = {};

    [[nodiscard]] bool isSv() const { return !told.at("sv.appid").empty(); }
    [[nodiscard]] GoosePacket goose() const {
        return offset ? decodeGoose(record->frame, *offset) : decodeGoose(record->frame);
    }
    [[nodiscard]] SvPacket sv() const {
        return offset ? decodeSv(record->frame, *offset) : decodeSv(record->frame);
    }
    [[nodiscard]] Told inTerms() const {
        return isSv() ? inTsharkTerms(sv()) : inTsharkTerms(goose());
    }
};

/// A capture as it is indexed, and as tshark tells it.
class ToldCapture {
public:
    ToldCapture(std::string const& program, std::string const& path,
                std::vector<std::string> const& preferences)
        : records_(readCapture(path)) {
        indexInto(db_, path);
        auto const packets = packetsByPosition(db_);
        for (TsharkFields const& told :
             dissect(program, path, fieldNames(), Occurrence::all, preferences)) {
            ToldFrame frame{.record = &records_.at(std::stoul(told.at("frame.number")) - 1),
                            .told = told};
            auto const begin = frame.record->position + recordHeaderSize;
            auto const found = packets.lower_bound(begin);
            if (found != packets.end() && found->first < begin + frame.record->inclLen)
                frame.offset = found->first - begin;
            frames.push_back(frame);
        }
    }

    std::vector<ToldFrame> frames = {};

private:
    static std::vector<std::string> fieldNames() {
        std::set<std::string> names = {"frame.number"};
        names.insert(tsharkGooseFields().begin(), tsharkGooseFields().end());
        names.insert(tsharkSvFields().begin(), tsharkSvFields().end());
        return {names.begin(), names.end()};
    }

    std::vector<CaptureRecord> records_;
    Db db_;
};

/// All that tshark says of the frame is what was read, and the other way round.
void expectAgreement(ToldFrame const& frame, std::set<std::string> const& leftOut = {}) {
    SCOPED_TRACE("frame " + frame.told.at("frame.number"));
    Told read = frame.inTerms();
    for (auto const& [field, told] : frame.told) {
        if (field == "frame.number" || leftOut.count(field) != 0) continue;
        EXPECT_EQ(read[field], told) << field;
    }
    for (auto const& [field, value] : read)
        EXPECT_EQ(frame.told.count(field), 1U) << field << " is not asked for";
}

std::set<std::string> sampleFields() {
    std::set<std::string> names;
    for (std::string const& field : tsharkSvFields())
        if (field.rfind("sv.meas_", 0) == 0) names.insert(field);
    return names;
}

/// Fields that tshark does not tell of a capture, though they are there.
struct Untold {
    std::set<std::string> fields = {};
    std::string why = {};
};

Untold untoldIn(std::string const& capture) {
    static std::map<std::string, Untold> const captures = {
        {"goose-crafted-missing-confrev.pcap",
         {{"goose.ndsCom"}, "tshark expects confRev in its place"}},
        {"goose-crafted-unknown-context-tag.pcap",
         {{"goose.allData", "goose.Data", "goose.boolean", "goose.bit_string",
           "ber.bitstring.padding"},
          "tshark reads nothing behind an element that it does not know"}},
    };
    auto const found = captures.find(capture);
    return found == captures.end() ? Untold() : found->second;
}

class InspectedAsTsharkDoes : public KnownCaptureTest {
protected:
    void SetUp() override {
        program = tsharkProgram();
        if (!program) GTEST_SKIP() << "no tshark on PATH";
        KnownCaptureTest::SetUp();
    }

    std::optional<std::string> program;
};

class InspectedSvAsTsharkDoes : public InspectedAsTsharkDoes {};
class InspectedTrailersAsTsharkDoes : public InspectedAsTsharkDoes {};

bool isCompared(KnownCapture const& capture) {
    return capture.frames() != 0 && capture.dissected == Dissected::inFull;
}

INSTANTIATE_TEST_SUITE_P(Captures, InspectedAsTsharkDoes,
                         testing::ValuesIn(capturesWith(isCompared)), testName);
INSTANTIATE_TEST_SUITE_P(Captures, InspectedSvAsTsharkDoes,
                         testing::ValuesIn(capturesWith([](KnownCapture const& capture) {
                             return isCompared(capture) && capture.svFrames > 0;
                         })),
                         testName);

INSTANTIATE_TEST_SUITE_P(Captures, InspectedTrailersAsTsharkDoes,
                         testing::ValuesIn(capturesWith([](KnownCapture const& capture) {
                             bool const hasTrailers =
                                 capture.name.find("-prp-") != std::string::npos ||
                                 capture.name.find("-signed-") != std::string::npos;
                             return isCompared(capture) && (hasTrailers || !capture.isOwn);
                         })),
                         testName);

/// Only a frame that was cut is faulty, and has no place in the index.
void expectFaultsOfCutAlone(ToldFrame const& frame) {
    Faults const faults = frame.isSv() ? frame.sv().faults : frame.goose().faults;
    bool const isCut = frame.record->inclLen < frame.record->origLen;
    // goosePdu and datSet, where the cut falls.
    EXPECT_EQ(kinds(faults), std::vector(isCut ? 2 : 0, FaultKind::pastCapture));
    EXPECT_EQ(frame.offset.has_value(), !isCut);
}

TEST_P(InspectedAsTsharkDoes, InEveryField) {
    ToldCapture const capture(*program, wholePath(), {});
    EXPECT_EQ(capture.frames.size(), GetParam().frames());
    Untold const untold = untoldIn(GetParam().name);
    // Samples are told by their octets here, below by themselves.
    std::set<std::string> leftOut = sampleFields();
    leftOut.insert(untold.fields.begin(), untold.fields.end());
    for (ToldFrame const& frame : capture.frames) {
        expectAgreement(frame, leftOut);
        expectFaultsOfCutAlone(frame);
        Told read = frame.inTerms();
        for (std::string const& field : untold.fields) {
            EXPECT_EQ(frame.told.at(field), "") << untold.why;
            EXPECT_NE(read[field], "");
        }
        if (HasFailure()) return;
    }
}

TEST_P(InspectedSvAsTsharkDoes, InEverySample) {
    ToldCapture const capture(*program, wholePath(), {asSamples});
    bool const isOfSamples = GetParam().name != "sv-13asdu-goose-mixed-testbed.pcap" &&
                             GetParam().name != "own-sv-13-asdus-of-12-octets.pcap";
    std::set<std::string> leftOut = {"sv.seqData"};  // not told beside samples
    // Of data that are no samples, twelve octets, tshark reads the first eight as one.
    if (!isOfSamples) leftOut.merge(sampleFields());
    for (ToldFrame const& frame : capture.frames) {
        expectAgreement(frame, leftOut);
        if (!frame.isSv()) continue;
        for (AsduContent const& asdu : frame.sv().asdus)
            EXPECT_EQ(std::holds_alternative<OctetString>(asdu.seqData.value()), !isOfSamples);
        if (HasFailure()) return;
    }
}

TEST_P(InspectedTrailersAsTsharkDoes, InTheLanAndTheSequence) {
    // In this order; tshark looks for trailers only where it is told to.
    std::vector<std::string> const fields = {"frame.number", "prp.trailer.prp_sequence_nr",
                                             "prp.trailer.prp_lan", "prp.trailer.prp_size"};
    std::vector<std::string> command = {
        *program,    "-n", "-r",     wholePath(), "--enable-protocol", "prp", "-Y",
        "goose||sv", "-T", "fields", "-E",        "separator=/s"};
    for (std::string const& field : fields) command.insert(command.end(), {"-e", field});
    std::istringstream told(run(command, {{"LC_ALL", "C"}}).out);
    auto const records = readCapture(wholePath());
    std::size_t frames = 0;
    for (std::string line; std::getline(told, line); ++frames) {
        Bytes const& frame = records.at(std::stoul(line) - 1).frame;
        FrameHeader const header = readFrameHeader(frame);
        std::string read = line.substr(0, line.find(' ')) + "   ";
        if (header.prp) {
            read.resize(read.size() - 2);
            read += std::to_string(header.prp->sequence) + " " + std::to_string(header.prp->lanId) +
                    " " + std::to_string(header.prp->lsduSize);
            EXPECT_EQ(header.etherType == 0x88BA ? decodeSv(frame).header.prp
                                                 : decodeGoose(frame).header.prp,
                      header.prp);
        }
        ASSERT_EQ(read, line);
    }
    EXPECT_EQ(frames, GetParam().frames());
}

/// The frames of a made-up capture as tshark tells them.
class MadeFrames : public testing::Test {
protected:
    void SetUp() override {
        program = tsharkProgram();
        if (!program) GTEST_SKIP() << "no tshark on PATH";
    }

    void tell(std::vector<Bytes> const& frames, std::vector<std::string> const& preferences = {}) {
        CaptureBuilder builder;
        for (Bytes const& frame : frames) builder.add(1, 2, frame);
        file.emplace(builder.bytes());
        capture.emplace(*program, file->path(), preferences);
        ASSERT_EQ(capture->frames.size(), frames.size());
    }

    std::optional<std::string> program;
    std::optional<TempFile> file;
    std::optional<ToldCapture> capture;
};

TEST_F(MadeFrames, OfEveryKindOfValueAreReadAlike) {
    GooseMessage message;
    message.reserved1 = 0x8000;
    message.reserved2 = 0xBEEF;
    message.timeAllowedtoLive = 40'000;
    message.stNum = {0xFFFFFFFF, 5};
    message.sqNum = {0x80000000, 5};
    message.simulation = true;
    message.ndsCom = true;
    message.t = utcTime(0xFFFFFFFF, 0xFFFFFF, 0xFF);
    message.setData({dataBoolean(true),
                     dataBitString({0x80}, 6),
                     dataBitString({0xC1, 0x08}, 3),
                     dataInteger(-129),
                     dataInteger(-2'147'483'648),
                     dataUnsigned(2'147'483'647),
                     dataFloat(1.1F),
                     dataFloat(-0.0F),
                     dataFloat(0.5F),
                     ber(0x87, {11, 0xBF, 0xB9, 0x99, 0x99, 0x99, 0x99, 0x99, 0x9A}),
                     dataOctetString({0x00, 0xFF}),
                     dataVisibleString("closed"),
                     ber(0x8C, {0x00, 0x00, 0x00, 0x01}),
                     ber(0x8C, {0x05, 0x26, 0x5B, 0xFF, 0x39, 0x30}),
                     ber(0x8D, {0x12}),
                     ber(0x8E, {0x04, 0xA0}),
                     ber(0x8F, {0x2B, 0x06, 0x01, 0x84, 0x0C}),
                     ber(0x90, text("open")),
                     dataUtcTime(1'700'000'000, 1, 0x0A),
                     dataStructure({dataBoolean(false), dataStructure({}),
                                    dataArray({dataInteger(1), dataInteger(2)})})});
    tell({gooseFrame(Ethernet().withVlan(4095, 7, true).withHsr('B', 65'535), message)});
    expectAgreement(capture->frames.at(0));
    EXPECT_EQ(capture->frames.at(0).told.at("goose.objId"), "1.3.6.1.524");
}

TEST_F(MadeFrames, OfEveryBitOfASamplesQualityAreReadAlike) {
    std::vector<Sample> channels = {{0, 0}, {-1, 1}, {2'147'483'647, 2}, {-2'147'483'648, 3}};
    for (unsigned bit = 2; bit < 32; ++bit) channels.emplace_back(bit, std::uint32_t{1} << bit);
    Asdu asdu;
    asdu.datSet = "MU01LD0/LLN0$PhsMeas";
    asdu.smpCnt = 65'535;
    asdu.confRev = 0xFFFFFFFF;
    asdu.refrTm = utcTime(1'700'000'000, 0x123456, 0x0A);
    asdu.smpSynch = 127;
    asdu.smpRate = 14'400;
    asdu.seqData = samples(channels);
    asdu.smpMod = 2;
    asdu.extraLast = ber(0x89, {1, 2, 3, 4, 5, 6, 7, 8});
    SvMessage message;
    message.reserved1 = 0x8000;
    message.asdus.assign(60, asdu);
    for (std::size_t i = 0; i < message.asdus.size(); ++i) message.asdus[i].smpCnt = i;
    tell({svFrame(svEthernet().withVlan(0), message)}, {asSamples});
    expectAgreement(capture->frames.at(0), {"sv.seqData"});
    EXPECT_EQ(separated(capture->frames.at(0).told.at("sv.meas_value")).size(), 60 * 34U);
}

/// A value of which tshark says something else.
struct Mistake {
    Bytes element;
    std::string field;
    std::string told;
    std::string read;
};

TEST_F(MadeFrames, AreReadOtherwiseWhereTsharkIsMistaken) {
    std::vector<Mistake> const mistakes = {
        // Numbers are shown in 32 bits, with a sign.
        {dataUnsigned(3'000'000'000), "goose.unsigned", "-1294967296", "3000000000"},
        {dataInteger(std::int64_t{1} << 40), "goose.integer", "0", "1099511627776"},
        // The count of unused bits is taken for the content where there is no other.
        {dataBitString({}), "goose.bit_string", "00", ""},
        // UTF-8 is taken for ASCII.
        {ber(0x90, text("ö")), "goose.mMSString", "\xEF\xBF\xBD\xEF\xBF\xBD", "ö"},
    };
    std::vector<Bytes> frames;
    for (Mistake const& mistake : mistakes) {
        GooseMessage message;
        message.setData({mistake.element});
        frames.push_back(gooseFrame(Ethernet(), message));
    }
    tell(frames);
    for (std::size_t i = 0; i < mistakes.size(); ++i) {
        ToldFrame const& frame = capture->frames.at(i);
        std::string const& told = frame.told.at(mistakes[i].field);
        // A later tshark may do better.
        EXPECT_TRUE(told == mistakes[i].told || told == mistakes[i].read) << told;
        EXPECT_EQ(frame.inTerms().at(mistakes[i].field), mistakes[i].read);
        expectAgreement(frame, {mistakes[i].field, "ber.bitstring.padding"});
    }
}

TEST_F(MadeFrames, HaveAnUnsignedSynchronisationThatTsharkShowsWithASign) {
    SvMessage message;
    message.asdus[0].smpSynch = 254;
    tell({svFrame(svEthernet(), message)});
    ToldFrame const& frame = capture->frames.at(0);
    std::string const& told = frame.told.at("sv.smpSynch");
    EXPECT_TRUE(told == "-2" || told == "254") << told;  // a later tshark may do better
    EXPECT_EQ(frame.inTerms().at("sv.smpSynch"), "254");
}

}  // namespace
}  // namespace TalTest::PacketTsharkTest
