// What `comtrade` writes, read back and compared with what `samples` says.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <set>
#include <tuple>

#include "support/CaptureFile.hpp"
#include "support/SampledValues.hpp"
#include "support/TempFile.hpp"
#include "tools/SampleTraffic.hpp"
#include "tools/StreamsTraffic.hpp"

namespace TalTest::ComtradeValuesTest {
namespace {

/// Writes a record of a capture, and reads it back.
class WrittenRecord {
public:
    explicit WrittenRecord(Bytes const& capture, Arguments const& options = {})
        : capture_(capture), base_(folder_.file("rec")) {
        write(options);
    }

    void write(Arguments const& options) {
        for (char const* const end : {".cff", ".cfg", ".dat", ".hdr"}) {
            std::filesystem::remove(base_ + end);
        }
        result_ = runCompanion(joined({"comtrade", "-o", base_, capture_.path()}, options));
        ASSERT_EQ(result_.status, 0) << result_.err;
        ASSERT_EQ(result_.out, "");
        record_ = recordAt(base_);
    }

    [[nodiscard]] ReadComtrade const& record() const { return record_; }
    [[nodiscard]] std::string const& err() const { return result_.err; }
    [[nodiscard]] std::string const& base() const { return base_; }
    [[nodiscard]] TempDir const& folder() const { return folder_; }
    [[nodiscard]] std::string const& capture() const { return capture_.path(); }

    /// The rows of `samples` for the same capture, with the missing ones.
    [[nodiscard]] std::vector<Json> samples(Arguments const& options = {}) const {
        std::string ignored;
        return samplesOf(joined({"--missing", capture_.path()}, options), &ignored);
    }

private:
    TempFile capture_;
    TempDir folder_;
    std::string base_;
    ProcessResult result_;
    ReadComtrade record_;
};

/// Each kind of record, by its options.
struct RecordKind {
    std::string data;
    std::string edition;
    bool isOneFile = false;

    [[nodiscard]] Arguments options() const {
        Arguments options = {"--data", data, "--edition", edition};
        if (isOneFile) {
            options.push_back("--cff");
        }
        return options;
    }
    [[nodiscard]] bool isExact() const { return data == "binary32"; }
};

std::vector<RecordKind> const kRecordKinds = {
    {"binary32", "2013", false}, {"binary", "2013", false}, {"ascii", "2013", false},
    {"binary32", "2013", true},  {"binary", "2013", true},  {"ascii", "2013", true},
    {"binary", "1999", false},   {"ascii", "1999", false}};

/// A stream of 9-2LE of which samples are lost.
WaveformStream lossyWave() {
    WaveformStream stream(declaredWave());
    stream.send(kWaveFrames).lose(5).send(100).lose().send(20);
    return stream;
}

TEST(ComtradeValues, AreThoseOfSamplesInEveryKind) {
    WrittenRecord written(lossyWave().captures()[0]);
    auto const rows = written.samples();
    ASSERT_EQ(rows.size(), kWaveFrames + 126);
    for (RecordKind const& kind : kRecordKinds) {
        SCOPED_TRACE(kind.data + " " + kind.edition + (kind.isOneFile ? " cff" : ""));
        written.write(kind.options());
        ReadComtrade const& record = written.record();
        EXPECT_EQ(record.edition, std::stoi(kind.edition));
        EXPECT_EQ(record.rate, 4000);
        EXPECT_EQ(record.start, 1'700'000'000'000'000'000);
        EXPECT_EQ(record.trigger, record.start);
        ASSERT_EQ(record.rows.size(), rows.size());
        ASSERT_EQ(record.analogs.size(), 8U);
        for (std::size_t row = 0; row < rows.size(); ++row) {
            ASSERT_EQ(record.rows[row].stamp, row * 250);
            for (std::size_t channel = 0; channel < 8; ++channel) {
                auto const& stored = record.rows[row].analogs[channel];
                if (rows[row]["missing"].get<bool>()) {
                    ASSERT_FALSE(stored.has_value()) << row;
                    continue;
                }
                auto const count = rows[row]["values"][channel].get<std::int64_t>();
                if (kind.isExact()) {
                    ASSERT_EQ(stored, count) << row;
                }
                // Half a step is the most that is lost.
                double const unit = channel < 4 ? 0.001 : 0.01;
                ASSERT_NEAR(record.value(row, channel).value(), static_cast<double>(count) * unit,
                            kind.isExact() ? 1e-9 : record.analogs[channel].a * 0.5001)
                    << row;
            }
        }
        EXPECT_EQ(written.err(), complaint("MU01: of 426 samples 6 lost, 0 late, 0 repeated"));
    }
}

TEST(ComtradeValues, HaveTheFilesOfTheirKind) {
    WrittenRecord written(lossyWave().captures()[0]);
    EXPECT_EQ(namesIn(written.folder().path()),
              (std::vector<std::string>{"rec.cfg", "rec.dat", "rec.hdr"}));
    std::string const header = textOf(written.base() + ".hdr");
    written.write({"--cff"});
    EXPECT_EQ(namesIn(written.folder().path()), std::vector<std::string>{"rec.cff"});
    // In words: times, scales, names, what is missing; and the same in one file.
    EXPECT_EQ(written.record().header.substr(0, header.size()), header);
    for (std::string const& words :
         {written.capture(), std::string("BINARY32"), std::string("edition 2013"),
          std::string("Rows: 426, from 2023-11-14T22:13:20.000000000Z"),
          std::string("Rate: 4000 samples a second, by smpRate"),
          std::string("Layout: MU01: 8 x (INT32, quality), inferred from "),
          std::string("420 by smpSynch 2 and smpCnt"), std::string("1 mA and 10 mV"),
          std::string("6 missing")}) {
        EXPECT_NE(header.find(words), std::string::npos) << words << "\n" << header;
    }
}

TEST(ComtradeConfigurationOf92Le, HasItsNamesUnitsAndPhases) {
    WrittenRecord const written(lossyWave().captures()[0]);
    ReadComtrade const& record = written.record();
    EXPECT_EQ(record.station, "MU01");
    EXPECT_EQ(record.device, "MU01");
    std::vector<std::string> const names = {"Ia", "Ib", "Ic", "In", "Ua", "Ub", "Uc", "Un"};
    std::vector<std::string> const phases = {"A", "B", "C", "N", "A", "B", "C", "N"};
    for (std::size_t i = 0; i < 8; ++i) {
        ReadAnalog const& analog = record.analogs[i];
        EXPECT_EQ(analog.id, "MU01_" + names[i]);
        EXPECT_EQ(analog.phase, phases[i]);
        EXPECT_EQ(analog.unit, i < 4 ? "A" : "V");
        EXPECT_EQ(analog.a, i < 4 ? 0.001 : 0.01);
        EXPECT_EQ(analog.b, 0);
        EXPECT_EQ(analog.side, 'P');
    }
    EXPECT_TRUE(record.digitals.empty());
    EXPECT_EQ(record.timeCode, "0");
    EXPECT_EQ(record.timeQuality, "0");
    EXPECT_FALSE(record.lineFrequency.has_value());
}

TEST(ComtradeConfiguration, IsAsAskedFor) {
    WrittenRecord const written(lossyWave().captures()[0],
                                {"--station", "Bay, 1", "--frequency", "60", "--channels", "3,1",
                                 "--scale", "2,3,4", "--trigger", "1700000000.0205"});
    ReadComtrade const& record = written.record();
    EXPECT_EQ(record.station.find(','), std::string::npos);
    EXPECT_TRUE(record.station.starts_with("Bay")) << record.station;
    EXPECT_EQ(record.lineFrequency, 60);
    EXPECT_EQ(record.trigger, 1'700'000'000'020'500'000);
    ASSERT_EQ(record.analogs.size(), 2U);
    EXPECT_EQ(record.analogs[0].id, "MU01_Ic");
    EXPECT_EQ(record.analogs[0].a, 4);
    EXPECT_EQ(record.analogs[1].id, "MU01_Ia");
    EXPECT_EQ(record.analogs[1].a, 2);
}

TEST(ComtradeConfiguration, HasTheFrequencyThatSmpRateTells) {
    for (auto const& [rate, smpRate, frequency] :
         {std::tuple(4000U, 80, 50.0), std::tuple(4800U, 80, 60.0),
          std::tuple(12800U, 256, 50.0)}) {
        WaveformSettings settings = declaredWave(rate);
        settings.smpRate = static_cast<std::uint16_t>(smpRate);
        settings.smpMod = 0;
        WrittenRecord const written(WaveformStream(settings).send(kWaveFrames).captures()[0]);
        EXPECT_EQ(written.record().lineFrequency, frequency);
        EXPECT_EQ(written.record().rate, rate);
    }
}

TEST(ComtradeStart, HasSixDecimalsOrNine) {
    WaveformSettings settings = declaredWave();
    settings.firstCount = 10;
    WrittenRecord whole(WaveformStream(settings).send(kWaveFrames).captures()[0]);
    EXPECT_FALSE(whole.record().isInNanoseconds);
    EXPECT_EQ(whole.record().start, 1'700'000'000'002'500'000);
    EXPECT_EQ(whole.record().rows[3].stamp, 750U);

    settings = declaredWave(4800);
    settings.firstCount = 1;
    WrittenRecord cut(WaveformStream(settings).send(kWaveFrames).captures()[0]);
    EXPECT_TRUE(cut.record().isInNanoseconds);
    EXPECT_EQ(cut.record().start, 1'700'000'000'000'208'333);
    EXPECT_EQ(cut.record().rows[3].stamp, 625'000U);
    // The edition of 1999 has no nanoseconds.
    cut.write({"--edition", "1999"});
    EXPECT_FALSE(cut.record().isInNanoseconds);
    EXPECT_NEAR(static_cast<double>(cut.record().start - 1'700'000'000'000'000'000), 208'333, 1000);
}

TEST(ComtradeTimeQuality, IsTheWorstOfTheRecord) {
    for (auto const& [synch, code] :
         {std::pair(2, "0"), std::pair(1, "F"), std::pair(0, "F"), std::pair(5, "F")}) {
        WaveformSettings settings = declaredWave();
        settings.smpSynch = static_cast<std::uint8_t>(synch);
        WrittenRecord const written(WaveformStream(settings).send(kWaveFrames).captures()[0]);
        EXPECT_EQ(written.record().timeQuality, code) << synch;
    }
}

/// A capture in which the clocks of samples know leap seconds, from one of them on.
/// @param second  in which it begins, since 1970
Bytes knowingLeapSeconds(std::uint32_t second, std::size_t from = 0) {
    WaveformSettings settings = declaredWave();
    settings.hasRefrTm = true;
    settings.second = second;
    settings.firstCount = 3900;
    WaveformStream stream(settings);
    stream.send(kWaveFrames);
    CaptureBuilder capture(CaptureVariant::nanoLittle);
    for (auto const& each : stream.captured()) {
        Bytes frame = each.frame;
        Bytes const tag = {0x84, 0x08};
        auto const refrTm = std::search(frame.begin(), frame.end(), tag.begin(), tag.end());
        bool const isKnown = from == 0;
        from -= isKnown ? 0U : 1U;
        if (isKnown) {
            refrTm[9] = static_cast<std::uint8_t>(refrTm[9] | 0x80U);
        }
        capture.add(static_cast<std::uint32_t>(each.time / 1'000'000'000),
                    static_cast<std::uint32_t>(each.time % 1'000'000'000), frame);
    }
    return capture.bytes();
}

TEST(ComtradeLeapSeconds, AreNoneWhereTheTimesOfAllSamplesKnowThem) {
    constexpr std::uint32_t kMiddle = 1'700'000'000;
    constexpr std::uint32_t kNewYear = 1'704'067'200;
    EXPECT_EQ(WrittenRecord(knowingLeapSeconds(kMiddle)).record().leapSecond, "0");
    EXPECT_EQ(WrittenRecord(knowingLeapSeconds(kMiddle, 1)).record().leapSecond, "3");
    EXPECT_EQ(WrittenRecord(knowingLeapSeconds(kMiddle, kWaveFrames)).record().leapSecond, "3");
    // One may have been inserted between these samples.
    EXPECT_EQ(WrittenRecord(knowingLeapSeconds(kNewYear - 1)).record().leapSecond, "3");
    EXPECT_EQ(WrittenRecord(lossyWave().captures()[0]).record().leapSecond, "3");
}

TEST(ComtradeTimeQuality, IsThatOfTheWindow) {
    WaveformStream stream(declaredWave());
    stream.send(kWaveFrames).synchronize(std::uint8_t{0}).send(kWaveFrames);
    WrittenRecord written(stream.captures()[0], {"--to", "1700000000.05"});
    EXPECT_EQ(written.record().timeQuality, "0");
}

TEST(ComtradeTimeQuality, IsTheWorstOfAMixtureWithAChannelThatTellsWhere) {
    WaveformStream stream(declaredWave());
    stream.send(kWaveFrames).synchronize(std::uint8_t{0}).send(100).lose(5).send(kWaveFrames);
    stream.synchronize(std::uint8_t{2}).send(100);
    for (Arguments const& kind : {Arguments{}, {"--quality", "bits"}, {"--cff"}}) {
        WrittenRecord const written(stream.captures()[0], kind);
        EXPECT_EQ(written.record().timeQuality, "F");
        ASSERT_FALSE(written.record().digitals.empty());
        std::size_t const last = written.record().digitals.size() - 1;
        EXPECT_EQ(written.record().digitals[last].id, "MU01_smpSynch not 2");
        auto const rows = stream.rows(true);
        ASSERT_EQ(written.record().rows.size(), rows.size());
        for (std::size_t row = 0; row < rows.size(); ++row) {
            bool const isOther = !rows[row].isMissing && rows[row].smpSynch != 2;
            ASSERT_EQ(written.record().rows[row].digitals[last], isOther) << row;
        }
    }
}

TEST(ComtradeQuality, BecomesDigitalChannels) {
    WrittenRecord written(lossyWave().captures()[0], {"--quality", "bits", "--channels", "1-2"});
    std::vector<std::string> names;
    for (ReadDigital const& digital : written.record().digitals) {
        names.push_back(digital.id);
        EXPECT_FALSE(digital.normal);
    }
    EXPECT_EQ(names, (std::vector<std::string>{"MU01_Ia invalid", "MU01_Ia questionable",
                                               "MU01_Ia test", "MU01_Ib invalid",
                                               "MU01_Ib questionable", "MU01_Ib test"}));
    auto const rows = written.samples({"--channels", "1-2"});
    std::size_t set = 0;
    for (std::size_t row = 0; row < rows.size(); ++row) {
        for (std::size_t channel = 0; channel < 2; ++channel) {
            bool const isMissing = rows[row]["missing"];
            std::uint32_t const word =
                isMissing ? 0 : rows[row]["quality"][channel].get<std::uint32_t>();
            auto const& digitals = written.record().rows[row].digitals;
            ASSERT_EQ(digitals[3 * channel], (word & 3U) == 1U);
            ASSERT_EQ(digitals[3 * channel + 1], (word & 3U) == 3U);
            ASSERT_EQ(digitals[3 * channel + 2], (word & 0x800U) != 0);
            set += digitals[3 * channel + 2] ? 1 : 0;
        }
    }
    EXPECT_GT(set, 50U);
    written.write({"--quality", "all", "--data", "ascii"});
    EXPECT_EQ(written.record().digitals.size(), 8U * 14U);
    // "derived" is the last one: good ones are, in these streams.
    for (std::size_t row = 0; row < 20; ++row) {
        std::uint32_t const word = rows[row]["quality"][0].get<std::uint32_t>();
        EXPECT_EQ(written.record().rows[row].digitals[13], (word & 0x2000U) != 0);
    }
    written.write({"--quality", "none"});
    EXPECT_EQ(written.record().digitals.size(), 0U);
}

TEST(ComtradeValues, OfFloatsAreScaledIntoIntegers) {
    for (auto const& members : {std::vector{WaveMember::float32, WaveMember::quality},
                                std::vector{WaveMember::float32}}) {
        WaveformSettings settings = declaredWave();
        settings.members = repeatedMembers(members, 6);
        WaveformStream stream(settings);
        stream.send(kWaveFrames).lose(2).send(10);
        WrittenRecord written(stream.captures()[0]);
        for (RecordKind const& kind : kRecordKinds) {
            written.write(kind.options());
            ReadComtrade const& record = written.record();
            auto const expected = stream.rows(true);
            ASSERT_EQ(record.rows.size(), expected.size());
            for (std::size_t row = 0; row < expected.size(); ++row) {
                for (std::size_t channel = 0; channel < 6; ++channel) {
                    auto const value = record.value(row, channel);
                    ASSERT_EQ(value.has_value(), !expected[row].isMissing);
                    if (value) {
                        ASSERT_NEAR(*value,
                                    toReal(WaveMember::float32, expected[row].values[channel]),
                                    record.analogs[channel].a * 0.5001);
                    }
                }
            }
            if (!kind.isOneFile) {
                EXPECT_NE(textOf(written.base() + ".hdr").find("MU01_ch1: stored in steps of "),
                          std::string::npos);
            }
        }
        // 32 bits hold what FLOAT32 does of waves of 1000, to a millionth.
        written.write({});
        EXPECT_LT(written.record().analogs[0].a, 1e-6);
    }
}

TEST(ComtradeValues, OfEveryTypeAreWithinHalfAStep) {
    for (auto const& [name, member] :
         {std::pair("boolean", WaveMember::boolean), std::pair("int8", WaveMember::int8),
          std::pair("int24", WaveMember::int24), std::pair("int64", WaveMember::int64),
          std::pair("int16u", WaveMember::int16u), std::pair("int32u", WaveMember::int32u),
          std::pair("float64", WaveMember::float64), std::pair("enum", WaveMember::enumerated)}) {
        SCOPED_TRACE(name);
        WaveformSettings settings = declaredWave();
        settings.members = {member, WaveMember::quality};
        WaveformStream stream(settings);
        stream.send(kWaveFrames).lose(2).send(10);
        Arguments const layout = {"--layout", std::string(name) + ",quality"};
        WrittenRecord written(stream.captures()[0], layout);
        auto const expected = stream.rows(true);
        for (RecordKind const& kind : kRecordKinds) {
            written.write(joined(kind.options(), layout));
            ReadComtrade const& record = written.record();
            ASSERT_EQ(record.rows.size(), expected.size());
            for (std::size_t row = 0; row < expected.size(); ++row) {
                auto const value = record.value(row, 0);
                ASSERT_EQ(value.has_value(), !expected[row].isMissing);
                if (value) {
                    double const sent = toReal(member, expected[row].values[0]);
                    // A double has 53 bits of such a number.
                    double const rounding = std::abs(sent) * 1e-15;
                    ASSERT_NEAR(*value, sent, record.analogs[0].a * 0.5001 + rounding);
                }
            }
        }
    }
}

TEST(ComtradeValues, BeyondTheRangeAreClampedAndCounted) {
    CaptureBuilder capture(CaptureVariant::nanoLittle);
    for (std::uint32_t i = 0; i < kWaveFrames; ++i) {
        SvMessage message;
        message.asdus[0].smpCnt = Unsigned<2>(i);
        message.asdus[0].seqData =
            samples({{i % 100 == 7 ? INT32_MIN : static_cast<std::int32_t>(i), 0},
                     {INT32_MAX, 0},
                     {INT32_MIN + 1, 0}});
        capture.add(1'700'000'000, 300'000 + i * 250'000, svFrame(svEthernet(), message));
    }
    Arguments const layout = {"--layout", "int32,quality,int32,quality,int32,quality"};
    WrittenRecord const written(capture.bytes(), layout);
    ReadComtrade const& record = written.record();
    EXPECT_EQ(record.rows[7].analogs[0], -2147483647);
    EXPECT_EQ(record.rows[8].analogs[0], 8);
    EXPECT_EQ(record.rows[8].analogs[1], 2147483647);
    EXPECT_EQ(record.rows[8].analogs[2], -2147483647);
    std::string const words = "MU01_ch1: 3 samples beyond the range, stored as its end";
    EXPECT_EQ(written.err(), complaint(words));
    EXPECT_NE(textOf(written.base() + ".hdr").find(words), std::string::npos);
}

TEST(ComtradeValues, AtTheEndsOf64BitsAreWithinAStep) {
    std::vector<std::int64_t> const sent = {INT64_MAX, INT64_MIN, 0, INT64_MAX - 1, -1};
    CaptureBuilder capture(CaptureVariant::nanoLittle);
    for (std::uint32_t i = 0; i < kWaveFrames; ++i) {
        auto const value = static_cast<std::uint64_t>(sent[i % sent.size()]);
        Bytes data;
        for (unsigned octet = 8; octet-- > 0;) {
            data.push_back(static_cast<std::uint8_t>(value >> (8 * octet)));
        }
        SvMessage message;
        message.asdus[0].smpCnt = Unsigned<2>(i);
        message.asdus[0].seqData = data;
        capture.add(1'700'000'000, 300'000 + i * 250'000, svFrame(svEthernet(), message));
    }
    WrittenRecord written(capture.bytes(), {"--layout", "int64"});
    for (RecordKind const& kind : kRecordKinds) {
        written.write(joined(kind.options(), {"--layout", "int64"}));
        for (std::size_t row = 0; row < kWaveFrames; ++row) {
            ASSERT_NEAR(written.record().value(row, 0).value(),
                        static_cast<double>(sent[row % sent.size()]),
                        written.record().analogs[0].a * 1.01);
        }
    }
}

TEST(ComtradeValues, ThatAreNoNumbersAreMissingAndCounted) {
    CaptureBuilder capture(CaptureVariant::nanoLittle);
    for (std::uint32_t i = 0; i < kWaveFrames; ++i) {
        SvMessage message;
        message.asdus[0].smpCnt = Unsigned<2>(i);
        // 1.5, not a number, an infinite one.
        message.asdus[0].seqData = i == 5   ? Bytes{0x7F, 0xC0, 0, 0}
                                   : i == 6 ? Bytes{0x7F, 0x80, 0, 0}
                                            : Bytes{0x3F, 0xC0, 0, 0};
        capture.add(1'700'000'000, 300'000 + i * 250'000, svFrame(svEthernet(), message));
    }
    Arguments const layout = {"--layout", "float32"};
    WrittenRecord const written(capture.bytes(), layout);
    ReadComtrade const& record = written.record();
    EXPECT_EQ(record.value(4, 0), 1.5);
    EXPECT_FALSE(record.rows[5].analogs[0].has_value());
    EXPECT_NE(written.err().find("1 sample no number, stored as missing"), std::string::npos)
        << written.err();
    // Texts have no such numbers but csv.
    EXPECT_EQ(written.samples(layout).at(5)["values"], Json::array({nullptr}));
    EXPECT_EQ(written.samples(layout).at(4)["values"], Json::array({1.5}));
    auto const csv =
        csvRows(runCompanion(joined({"samples", "-f", "csv", written.capture()}, layout)).out);
    EXPECT_EQ(csv.at(5).at("value1"), "nan");
    EXPECT_EQ(csv.at(6).at("value1"), "inf");
}

TEST(ComtradeNames, HoldNothingThatAFieldCannot) {
    for (std::string const& svID :
         {std::string("MU,01;\r\n\t\x01x"), std::string(" MU 01 "), std::string(200, 'L') + "1",
          std::string("Sch\xc3\xa4lt\xff"), std::string("MU\0_1", 5)}) {
        WaveformSettings settings = declaredWave();
        settings.svID = svID;
        WaveformStream stream(settings);
        stream.send(kWaveFrames);
        WrittenRecord written(stream.captures()[0], {"--quality", "all"});
        for (RecordKind const& kind : kRecordKinds) {
            written.write(joined(kind.options(), {"--quality", "all"}));
        }
        std::set<std::string> names;
        for (ReadAnalog const& analog : written.record().analogs) {
            EXPECT_LE(analog.id.size(), 64U);
            EXPECT_TRUE(analog.id.ends_with("_I" + analog.id.substr(analog.id.size() - 1)) ||
                        analog.id.ends_with("_U" + analog.id.substr(analog.id.size() - 1)))
                << analog.id;
            names.insert(analog.id);
        }
        for (ReadDigital const& digital : written.record().digitals) {
            names.insert(digital.id);
        }
        EXPECT_EQ(names.size(), 8U + 8U * 14U) << "names are told apart";
        EXPECT_EQ(written.err(), "");
    }
}

TEST(ComtradeWindow, IsOneOfSampleTimesWithItsEndInside) {
    WrittenRecord written(lossyWave().captures()[0],
                          {"--from", "1700000000.0745", "--to", "1700000000.0765"});
    ReadComtrade const& record = written.record();
    EXPECT_EQ(record.start, 1'700'000'000'074'500'000);
    ASSERT_EQ(record.rows.size(), 9U);
    for (std::size_t row = 0; row < 9; ++row) {
        EXPECT_EQ(record.rows[row].analogs[0].has_value(), row < 2 || row >= 7) << row;
    }
    written.write({"--around", "1700000000.01", "--span", "2ms"});
    EXPECT_EQ(written.record().rows.size(), 9U);
    EXPECT_EQ(written.record().start, 1'700'000'000'009'000'000);
}

}  // namespace
}  // namespace TalTest::ComtradeValuesTest
