// Samples and records whose channels and members are named by a description of the station.

#include <gtest/gtest.h>

#include <algorithm>

#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionRows.hpp"
#include "tools/DescribedStation.hpp"
#include "tools/SampleTraffic.hpp"
#include "tools/SclTraffic.hpp"
#include "tools/StreamsTraffic.hpp"
#include "tools/names/ChannelNames.hpp"

namespace TalTest::NamedSamplesTest {
namespace {

std::string const kCurrent = "LD0/InnATCTR1.Amp.instMag.i";
std::string const kVoltage = "LD0/UnnATVTR1.Vol.instMag.f";
std::string const kOneMoreSample =
    "<FCDA ldInst='LD0' prefix='InnA' lnClass='TCTR' lnInst='1' doName='Amp' daName='instMag.i' "
    "fc='MX'/>";

/// A folder with a capture of MU01 and its description.
struct DescribedUnit {
    explicit DescribedUnit(std::string const& description = describedStation())
        : capture(folder.write("a.pcap", describedSamples())),
          scd(folder.write("station.scd", octetsOfText(description))) {}

    [[nodiscard]] Arguments command(Arguments const& words) const {
        return joined(words, {"--scl", scd, capture});
    }

    TempDir folder;
    std::string capture;
    std::string scd;
};

TEST(NamedSamples, HaveNamesInTheHeading) {
    DescribedUnit const unit;
    auto const result = runCompanion(unit.command({"samples", "-f", "csv"}));
    EXPECT_EQ(result.status, 0);
    auto const heading = linesOf(result.out).at(0);
    EXPECT_TRUE(heading.ends_with(",missing," + kCurrent + "," + kCurrent + ".quality," + kVoltage +
                                  "," + kVoltage + ".quality"))
        << heading;
    auto const table = runCompanion(unit.command({"samples", "--limit", "1"})).out;
    EXPECT_NE(linesOf(table).at(0).find(kCurrent), std::string::npos) << table;
}

TEST(NamedSamples, AreOfTheLayoutThatIsDescribed) {
    DescribedUnit const unit;
    std::string notes;
    auto const rows = samplesOf(joined(Arguments{"--scl", unit.scd}, {unit.capture}), &notes);
    ASSERT_EQ(rows.size(), kWaveFrames);
    WaveformStream stream(describedWave());
    stream.send(kWaveFrames);
    auto const expected = stream.rows(false);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        ASSERT_EQ(rows[i]["values"].size(), 2U);
        EXPECT_EQ(rows[i]["values"][0], expected[i].values[0]);
        EXPECT_EQ(rows[i]["values"][1].get<float>(),
                  static_cast<float>(toReal(WaveMember::float32, expected[i].values[1])));
    }
}

TEST(NamedSamples, HaveTheUsualUnitWhereTheScaleHasNone) {
    TalIec61850Scl::DataSet dataSet;
    for (std::uint32_t channel = 0; channel < 8; ++channel) {
        TalIec61850Scl::DataSetMember value;
        value.name = std::string(channel < 4 ? "LD0/TCTR1.Amp" : "LD0/TVTR1.Vol") + ".instMag.i";
        value.type = TalIec61850Scl::BasicType::int32;
        value.scale = {.factor = 0.5, .offset = 0};
        dataSet.members.push_back(value);
        TalIec61850Scl::DataSetMember quality;
        quality.type = TalIec61850Scl::BasicType::quality;
        dataSet.members.push_back(quality);
    }
    dataSet.members[2].unit = "kA";
    auto const binding = TalIec61850Scl::bindSamples(dataSet, 64);
    ASSERT_TRUE(binding.has_value());
    auto const meanings = TalIec61850Tools::meaningsOf(dataSet, *binding);
    ASSERT_EQ(meanings.size(), 8U);
    EXPECT_EQ(meanings[0].unit, "A");
    EXPECT_EQ(meanings[1].unit, "kA");
    EXPECT_EQ(meanings[7].unit, "V");
}

TEST(NamedSamples, HaveNamesInRowsOfAChannel) {
    DescribedUnit const unit;
    auto const rows = rowsOf(unit.command({"samples", "--long", "--limit", "2"}));
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0]["name"], kCurrent);
    EXPECT_EQ(rows[1]["name"], kVoltage);
}

TEST(NamedSamples, AreScaledAsDescribed) {
    DescribedUnit const unit;
    auto const raw = rowsOf(unit.command({"samples"}));
    auto const scaled = rowsOf(unit.command({"samples", "--scaled"}));
    ASSERT_EQ(raw.size(), scaled.size());
    for (std::size_t i = 0; i < raw.size(); ++i) {
        EXPECT_DOUBLE_EQ(scaled[i]["values"][0].get<double>(),
                         raw[i]["values"][0].get<double>() / 1000);
        EXPECT_EQ(scaled[i]["values"][1].get<double>(), raw[i]["values"][1].get<double>());
    }
}

TEST(NamedSamples, HaveNoNamesWhereTheirLengthIsAnother) {
    DescribedUnit const unit(describedStation("BOOLEAN", kOneMoreSample));
    auto const result = runCompanion(unit.command({"samples", "-f", "csv"}));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(linesOf(result.out).at(0).find("LD0/"), std::string::npos);
    auto const first = rowsOf({"packets", "--limit", "1", unit.capture}).at(0)["position"].dump();
    EXPECT_NE(result.err.find(complaint(unit.capture + "@" + first +
                                        ": MU01: samples have 16 octets, 20 are described: "
                                        "channels have no names")),
              std::string::npos)
        << result.err;
}

/// As described, but for a channel whose type the description does not have.
std::string stationOfUnknownType() {
    std::string const unknown = "doName='Vox'";
    std::string const known = "doName='Vol'";
    return replaced(replaced(describedStation(), known, unknown), known, unknown);
}

TEST(NamedSamples, HaveNamesUpToATypeOfUnknownWidth) {
    DescribedUnit const unit(stationOfUnknownType());
    auto const result = runCompanion(unit.command({"samples", "-f", "csv", "--limit", "1"}));
    EXPECT_EQ(result.status, 0);
    // What is not described is read as it looks like.
    EXPECT_TRUE(linesOf(result.out)
                    .at(0)
                    .ends_with("," + kCurrent + "," + kCurrent + ".quality,value2,quality2"))
        << result.out;
    auto const first = rowsOf({"packets", "--limit", "1", unit.capture}).at(0)["position"].dump();
    EXPECT_NE(result.err.find(complaint(unit.capture + "@" + first +
                                        ": MU01: the width of LD0/UnnATVTR1.Vox.instMag.f is not "
                                        "known: no names from there on")),
              std::string::npos)
        << result.err;
    auto const scaled = runCompanion(unit.command({"samples", "--scaled", "--limit", "1"})).err;
    EXPECT_NE(scaled.find("the scale is of 1 channel not described"), std::string::npos) << scaled;
}

TEST(NamedSamples, OfUnknownWidthAreNamedByEachCommand) {
    DescribedUnit const unit(stationOfUnknownType());
    std::string const base = unit.folder.file("record");
    EXPECT_EQ(runCompanion(unit.command({"comtrade", "-o", base})).status, 0);
    auto const lines = linesOf(textOf(base + ".cfg"));
    EXPECT_TRUE(lines.at(2).starts_with("1,MU01_" + kCurrent + ",A,MU01LD0/InnATCTR1,A,0.001,0,"))
        << lines[2];
    EXPECT_TRUE(lines.at(3).starts_with("2,MU01_ch2,,,raw,1,0,")) << lines[3];
    auto const shown = runCompanion(unit.command({"show", "-f", "json", "--limit", "1"})).out;
    EXPECT_NE(shown.find(kCurrent), std::string::npos) << shown;
    auto const picture = unit.folder.file("a.svg");
    EXPECT_EQ(runCompanion(unit.command({"plot", "-o", picture})).status, 0);
    EXPECT_NE(textOf(picture).find(kCurrent), std::string::npos);
}

TEST(NamedSamples, AreOctetsAfterAnUnknownWidthWhereTheyLookLikeSomethingElse) {
    DescribedUnit const unit(describedStation("BOOLEAN", replaced(kOneMoreSample, "Amp", "Amx")));
    WaveformSettings settings = describedWave();
    settings.members.insert(settings.members.end(), {WaveMember::int32, WaveMember::quality});
    WaveformStream stream(settings);
    stream.send(kWaveFrames);
    auto const capture = unit.folder.write("more.pcap", captureOf({&stream}));
    auto const result = runCompanion({"samples", "-f", "json", "--limit", "1", "--columns",
                                      "values", "--scl", unit.scd, capture});
    EXPECT_EQ(Json::parse(result.out)["values"].size(), 2U) << result.out;
    auto const summary = runCompanion({"samples", "--summary", "--scl", unit.scd, capture}).out;
    EXPECT_NE(summary.find("(INT32, quality, FLOAT32, quality) and 8 octets"), std::string::npos)
        << summary;
}

TEST(NamedSamples, AreReadAsTheUserSays) {
    DescribedUnit const unit;
    auto const result = runCompanion(unit.command(
        {"samples", "-f", "csv", "--limit", "1", "--layout", "int32,int32,int32,int32"}));
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(linesOf(result.out).at(0).find("value4"), std::string::npos) << result.out;
}

TEST(NamedSamples, AreSelectedByIed) {
    DescribedUnit const unit;
    EXPECT_EQ(rowsOf(unit.command({"samples", "--ied", "MU*"})).size(), kWaveFrames);
    auto const none = runCompanion(unit.command({"samples", "--ied", "RELAY1"}));
    EXPECT_EQ(none.status, 0);
    EXPECT_EQ(none.err, complaint("no stream matches --ied RELAY1; there is MU01"));
}

TEST(NamedRecord, HasNamesUnitsAndScales) {
    DescribedUnit const unit;
    std::string const base = unit.folder.file("record");
    auto const result = runCompanion(unit.command({"comtrade", "-o", base, "--quality", "bits"}));
    ASSERT_EQ(result.status, 0) << result.err;
    auto const lines = linesOf(textOf(base + ".cfg"));
    EXPECT_TRUE(lines.at(2).starts_with("1,MU01_" + kCurrent + ",A,MU01LD0/InnATCTR1,A,0.001,0,"))
        << lines[2];
    EXPECT_TRUE(lines.at(3).starts_with("2,MU01_" + kVoltage + ",A,MU01LD0/UnnATVTR1,V,"))
        << lines[3];
    EXPECT_TRUE(lines.at(4).starts_with("1,MU01_" + kCurrent + " invalid,")) << lines[4];
    auto const header = textOf(base + ".hdr");
    EXPECT_NE(header.find("as described"), std::string::npos) << header;
    EXPECT_NE(header.find("as the description of the station has them"), std::string::npos);
}

TEST(NamedRecord, HasMembersOfGooseByTheirNames) {
    DescribedUnit const unit;
    auto const trips = unit.folder.write("trips.pcap", describedTrips());
    auto const digitals = [&](Arguments const& options) {
        std::string const base = unit.folder.file("record");
        auto const result = runCompanion(
            joined(joined({"comtrade", "-o", base, "--goose", "*", "--scl", unit.scd}, options),
                   {unit.capture, trips}));
        EXPECT_EQ(result.status, 0) << result.err;
        auto lines = linesOf(textOf(base + ".cfg"));
        lines.erase(lines.begin(), lines.begin() + 4);
        return lines;
    };
    auto const all = digitals({});
    EXPECT_TRUE(
        all.at(0).starts_with("1,RELAY1LD0/LLN0$GO$gcb1 LD0/PTRC1.Tr.general,,RELAY1LD0/PTRC1,0"))
        << all[0];
    EXPECT_TRUE(all.at(1).starts_with("2,RELAY1LD0/LLN0$GO$gcb1 LD0/PTRC1.Op.general,"));
    EXPECT_TRUE(all.at(2).starts_with("3,RELAY2LD0/LLN0$GO$gcb2 LD0/PTRC2.Tr.general,"));
    auto const some = digitals({"--member", "PTRC*.Op.*"});
    EXPECT_TRUE(some.at(0).starts_with("1,RELAY1LD0/LLN0$GO$gcb1 LD0/PTRC1.Op.general,"));
    EXPECT_FALSE(some.at(1).starts_with("2,"));
    auto const byPlace = digitals({"--member", "3.1"});
    EXPECT_EQ(byPlace, some);
}

TEST(NamedRecord, TakesMembersWithGooseAlone) {
    DescribedUnit const unit;
    expectUsageError(
        unit.command({"comtrade", "-o", unit.folder.file("record"), "--member", "PTRC*"}));
}

TEST(NamedFindings, TellTheChannel) {
    WaveformSettings settings;
    settings.members = repeatedMembers({WaveMember::int32, WaveMember::quality}, 2);
    WaveformStream stream(settings);
    stream.send(kWaveFrames);
    CaptureBuilder capture(CaptureVariant::nanoLittle);
    std::size_t number = 0;
    for (auto const& each : stream.captured()) {
        // The frame ends with a value and a quality, and again.
        Bytes frame = each.frame;
        std::fill(frame.end() - 12, frame.end() - 8, std::uint8_t{0});
        std::fill(frame.end() - 4, frame.end(), std::uint8_t{0});
        frame.back() = ++number > kWaveFrames / 2 ? 1 : 0;
        capture.add(static_cast<std::uint32_t>(each.time / 1'000'000'000),
                    static_cast<std::uint32_t>(each.time % 1'000'000'000), frame);
    }
    TempDir const folder;
    auto const path = folder.write("a.pcap", capture.bytes());
    auto const scd = folder.write("station.scd", octetsOfText(describedStation()));
    auto const rows =
        rowsOf({"check", "--fail-on", "none", "--kind", "qualityChanged", "--scl", scd, path});
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0]["name"], kVoltage);
    EXPECT_EQ(rows[0]["text"], "quality of channel 2 (" + kVoltage + ") went from good to invalid");
    EXPECT_EQ(rows[0]["ied"], "MU01");
}

}  // namespace
}  // namespace TalTest::NamedSamplesTest
