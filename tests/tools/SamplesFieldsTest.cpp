// What `samples` writes of each sample, in each format.

#include <gtest/gtest.h>

#include <set>

#include "support/CaptureFile.hpp"
#include "support/Data.hpp"
#include "support/TempFile.hpp"
#include "tools/MemberTraffic.hpp"
#include "tools/SampleTraffic.hpp"
#include "tools/StreamsTraffic.hpp"

namespace TalTest::SamplesFieldsTest {
namespace {

std::string const kSamplesCommonFields =
    "time,timeNs,sampleTime,sampleTimeNs,sampleTimeSource,file,position,source,svID,appId,asdu,"
    "smpCnt,smpSynch,missing";

/// A capture of one stream.
TempFile samplesFile(WaveformSettings const& settings, std::size_t frames = kWaveFrames) {
    return TempFile(WaveformStream(settings).send(frames).captures()[0]);
}

WaveformSettings waveOf(std::vector<WaveMember> const& members, std::size_t times) {
    WaveformSettings settings = declaredWave();
    settings.members = repeatedMembers(members, times);
    return settings;
}

std::string headOf(ProcessResult const& result) {
    EXPECT_EQ(result.status, 0) << result.err;
    return linesOf(result.out).at(0);
}

std::string hexOf(Bytes const& octets) {
    std::string text;
    for (std::uint8_t const octet : octets) {
        text += "0123456789abcdef"[octet >> 4U];
        text += "0123456789abcdef"[octet & 15U];
    }
    return text;
}

/// The names of a JSON object in the order in which they are written.
std::vector<std::string> namesOf(std::string const& line) {
    std::vector<std::string> names;
    auto const row = nlohmann::ordered_json::parse(line);
    for (auto const& [name, value] : row.items()) {
        names.push_back(name);
    }
    return names;
}

TEST(SamplesJson, HasItsFieldsInOneOrder) {
    TempFile const file = samplesFile(declaredWave());
    auto const lines = linesOf(runCompanion({"samples", "-f", "json", file.path()}).out);
    std::vector<std::string> const expected = {
        "time",   "timeNs",   "sampleTime", "sampleTimeNs", "sampleTimeSource",
        "file",   "position", "source",     "svID",         "appId",
        "asdu",   "smpCnt",   "smpSynch",   "missing",      "values",
        "quality"};
    EXPECT_EQ(namesOf(lines.at(0)), expected);
    auto const row = Json::parse(lines.at(0));
    EXPECT_EQ(row["time"], "2023-11-14T22:13:20.000300000Z");
    EXPECT_EQ(row["timeNs"], 1'700'000'000'000'300'000);
    EXPECT_EQ(row["sampleTime"], "2023-11-14T22:13:20.000000000Z");
    EXPECT_EQ(row["sampleTimeSource"], "smpCnt");
    EXPECT_EQ(row["file"], file.path());
    EXPECT_EQ(row["source"], "02:00:00:00:00:01");
    EXPECT_EQ(row["svID"], "MU01");
    EXPECT_EQ(row["appId"], "0x4000");
    EXPECT_EQ(row["asdu"], 1);
    EXPECT_EQ(row["smpSynch"], 2);
    EXPECT_EQ(row["missing"], false);
    EXPECT_EQ(row["values"].size(), 8U);
    EXPECT_EQ(row["quality"].size(), 8U);
}

TEST(SamplesJson, SaysWhereTimesComeFrom) {
    for (auto const& [source, hasRefrTm, synch] :
         {std::tuple("refrTm", true, 2), std::tuple("smpCnt", false, 2),
          std::tuple("fit", false, 1), std::tuple("fit", false, 0)}) {
        WaveformSettings settings = declaredWave();
        settings.hasRefrTm = hasRefrTm;
        settings.smpSynch = static_cast<std::uint8_t>(synch);
        TempFile const file = samplesFile(settings);
        for (Json const& row : samplesOf({file.path()})) {
            ASSERT_EQ(row["sampleTimeSource"], source);
        }
    }
}

TEST(SamplesJson, TakesNoTimeOfAClockThatFailedOrIsNotSet) {
    for (Bytes const& refrTm : {utcTime(1'600'000'000, 0, 0x40), utcTime(0, 0, 0)}) {
        CaptureBuilder capture(CaptureVariant::nanoLittle);
        for (std::uint32_t i = 0; i < 4000; ++i) {
            SvMessage message = svCalled("MU01");
            message.asdus[0].smpCnt = Unsigned<2>(i);
            message.asdus[0].smpSynch = Unsigned<1>(2);
            message.asdus[0].smpRate = Unsigned<2>(4000);
            message.asdus[0].smpMod = Unsigned<2>(1);
            message.asdus[0].refrTm = refrTm;
            capture.add(1'700'000'000, 300'000 + i * 249'900, svFrame(svEthernet(), message));
        }
        TempFile const file(capture.bytes());
        std::string ignored;
        auto const rows = samplesOf({"--limit", "8", file.path()}, &ignored);
        ASSERT_EQ(rows.size(), 8U);
        EXPECT_EQ(rows[4]["sampleTimeSource"], "smpCnt");
        EXPECT_EQ(rows[4]["sampleTimeNs"], 1'700'000'000'001'000'000);
    }
}

TEST(SamplesCsv, HasAValueAndAQualityForEachChannel) {
    TempFile const file = samplesFile(waveOf({WaveMember::int32, WaveMember::quality}, 3));
    auto const result = runCompanion({"samples", "-f", "csv", file.path()});
    EXPECT_EQ(headOf(result),
              kSamplesCommonFields + ",value1,quality1,value2,quality2,value3,quality3");
    auto const json = samplesOf({file.path()});
    auto const rows = csvRows(result.out);
    ASSERT_EQ(rows.size(), json.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i].at("value2"), json[i]["values"][1].dump());
        EXPECT_EQ(rows[i].at("quality3"), json[i]["quality"][2].dump());
        EXPECT_EQ(rows[i].at("sampleTimeNs"), json[i]["sampleTimeNs"].dump());
        EXPECT_EQ(rows[i].at("missing"), "false");
    }
}

TEST(SamplesCsv, NamesChannelsWhereTheyAreKnown) {
    TempFile const file = samplesFile(declaredWave());
    EXPECT_EQ(headOf(runCompanion({"samples", "-f", "csv", file.path()})),
              kSamplesCommonFields +
                  ",Ia,Ia.quality,Ib,Ib.quality,Ic,Ic.quality,In,In.quality"
                  ",Ua,Ua.quality,Ub,Ub.quality,Uc,Uc.quality,Un,Un.quality");
    EXPECT_EQ(headOf(runCompanion({"samples", "-f", "csv", "--channels", "5,1", file.path()})),
              kSamplesCommonFields + ",Ua,Ua.quality,Ia,Ia.quality");
}

TEST(SamplesCsv, HasNumbersForNamesWhereStreamsDiffer) {
    WaveformStream le(declaredWave());
    WaveformSettings other = waveOf({WaveMember::int32, WaveMember::quality}, 9);
    other.svID = "MU02";
    WaveformStream nine(other);
    TempFile const file(captureOf({&le.send(kWaveFrames), &nine.send(kWaveFrames)}));
    auto const result = runCompanion({"samples", "-f", "csv", file.path()});
    EXPECT_TRUE(headOf(result).ends_with(",value9,quality9"));
    auto const rows = csvRows(result.out);
    EXPECT_EQ(rows.at(0).at("svID"), "MU01");
    EXPECT_EQ(rows.at(0).at("value9"), std::nullopt);
    EXPECT_NE(rows.at(kWaveFrames).at("value9"), std::nullopt);
}

TEST(SamplesCsv, LeavesCellsOfQualityEmptyWhereThereIsNone) {
    TempFile const file = samplesFile(waveOf({WaveMember::float32}, 6));
    auto const rows = csvRows(runCompanion({"samples", "-f", "csv", file.path()}).out);
    ASSERT_EQ(rows.size(), kWaveFrames);
    EXPECT_EQ(rows[0].at("quality1"), std::nullopt);
    EXPECT_NE(rows[0].at("value6"), std::nullopt);
    EXPECT_TRUE(samplesOf({file.path()}).at(0)["quality"].is_null());
}

TEST(SamplesLong, HasARowForEachChannel) {
    TempFile const file = samplesFile(declaredWave());
    auto const result = runCompanion({"samples", "-f", "csv", "--long", file.path()});
    EXPECT_EQ(headOf(result), kSamplesCommonFields + ",channel,name,value,quality,qualityText");
    auto const wide = samplesOf({file.path()});
    auto const rows = csvRows(result.out);
    ASSERT_EQ(rows.size(), 8 * wide.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        Json const& sample = wide[i / 8];
        EXPECT_EQ(rows[i].at("smpCnt"), sample["smpCnt"].dump());
        EXPECT_EQ(rows[i].at("channel"), std::to_string(i % 8 + 1));
        EXPECT_EQ(rows[i].at("value"), sample["values"][i % 8].dump());
        EXPECT_EQ(rows[i].at("quality"), sample["quality"][i % 8].dump());
    }
    EXPECT_EQ(rows[0].at("name"), "Ia");
    EXPECT_EQ(rows[7].at("name"), "Un");
    EXPECT_EQ(rows[0].at("qualityText"), "good, derived");
    // In the second sample, the first channel is under test, see the generator.
    EXPECT_EQ(rows[8].at("quality"), "2051");
    EXPECT_EQ(rows[8].at("qualityText"), "questionable, test");
}

TEST(SamplesLong, IsTheSameInJson) {
    TempFile const file = samplesFile(declaredWave());
    auto const rows = samplesOf({"--long", "--limit", "9", "--channels", "2,8", file.path()});
    ASSERT_EQ(rows.size(), 9U);
    EXPECT_EQ(rows[0]["channel"], 2);
    EXPECT_EQ(rows[0]["name"], "Ib");
    EXPECT_EQ(rows[1]["channel"], 8);
    EXPECT_TRUE(rows[0]["value"].is_number_integer());
    EXPECT_FALSE(rows[0].contains("values"));
}

TEST(SamplesChannels, AreThoseAskedForInTheirOrder) {
    TempFile const file = samplesFile(declaredWave());
    auto const all = samplesOf({file.path()});
    auto const some = samplesOf({"--channels", "7-8, 1", file.path()});
    for (std::size_t i = 0; i < all.size(); ++i) {
        Json const& values = all[i]["values"];
        Json const& qualities = all[i]["quality"];
        EXPECT_EQ(some[i]["values"], (Json{values[6], values[7], values[0]}));
        EXPECT_EQ(some[i]["quality"], (Json{qualities[6], qualities[7], qualities[0]}));
    }
    EXPECT_EQ(samplesOf({"--channels", "8-9", file.path()}).at(0)["values"].size(), 1U);
    expectUsageError({"samples", "--channels", "9", file.path()});
}

TEST(SamplesScaled, AreAmperesAndVoltsOf92Le) {
    TempFile const file = samplesFile(declaredWave());
    auto const raw = samplesOf({file.path()});
    auto const scaled = samplesOf({"--scaled", file.path()});
    for (std::size_t i = 0; i < raw.size(); ++i) {
        for (std::size_t channel = 0; channel < 8; ++channel) {
            double const divisor = channel < 4 ? 1000 : 100;
            EXPECT_EQ(scaled[i]["values"][channel].get<double>(),
                      raw[i]["values"][channel].get<double>() / divisor);
        }
        EXPECT_EQ(scaled[i]["quality"], raw[i]["quality"]);
    }
    // A thousandth is written as one.
    auto const csv = csvRows(runCompanion({"samples", "--scaled", "-f", "csv", file.path()}).out);
    for (auto const& row : csv) {
        std::string const value = row.at("Ia").value();
        EXPECT_LE(value.size() - std::min(value.find('.'), value.size()), 4U) << value;
    }
}

TEST(SamplesScaled, AreRawAndSaySoWhereUnitsAreNotKnown) {
    TempFile const file = samplesFile(waveOf({WaveMember::int32, WaveMember::quality}, 3));
    std::string notes;
    EXPECT_EQ(fieldOf(samplesOf({"--scaled", file.path()}, &notes), "values"),
              fieldOf(samplesOf({file.path()}), "values"));
    EXPECT_EQ(notes, complaint("MU01: units of 3 x (INT32, quality) are not known: raw counts; "
                               "see --scale"));
}

TEST(SamplesScale, IsOneFactorOrOneForEachChannel) {
    TempFile const file = samplesFile(waveOf({WaveMember::int32, WaveMember::quality}, 3));
    auto const raw = samplesOf({file.path()});
    auto const one = samplesOf({"--scale", "0.01", file.path()});
    auto const each = samplesOf({"--scale", "0.001,2.5,-1", "--scaled", file.path()});
    auto const two = samplesOf({"--scale", "2,4", "--channels", "2-3", file.path()});
    for (std::size_t i = 0; i < raw.size(); ++i) {
        auto const value = [&](std::size_t channel) {
            return raw[i]["values"][channel].get<double>();
        };
        EXPECT_EQ(one[i]["values"], (Json{value(0) / 100, value(1) / 100, value(2) / 100}));
        EXPECT_EQ(each[i]["values"], (Json{value(0) / 1000, value(1) * 2.5, -value(2)}));
        // A channel that no factor is given for stays as it is.
        EXPECT_EQ(two[i]["values"], (Json{value(1) * 4, value(2)}));
    }
}

struct NamedMember {
    std::string name;
    WaveMember member;
};

std::vector<NamedMember> const kNamedMembers = {
    {"boolean", WaveMember::boolean}, {"int8", WaveMember::int8},
    {"int16", WaveMember::int16},     {"int24", WaveMember::int24},
    {"int32", WaveMember::int32},     {"int64", WaveMember::int64},
    {"int8u", WaveMember::int8u},     {"int16u", WaveMember::int16u},
    {"int24u", WaveMember::int24u},   {"int32u", WaveMember::int32u},
    {"float32", WaveMember::float32}, {"float64", WaveMember::float64},
    {"enum", WaveMember::enumerated}};

TEST(SamplesLayout, IsWhatTheCallerSays) {
    for (NamedMember const& named : kNamedMembers) {
        for (std::string const after : {"", ",quality", ",timestamp"}) {
            std::vector<WaveMember> members = {named.member};
            if (!after.empty()) {
                members.push_back(after == ",quality" ? WaveMember::quality
                                                      : WaveMember::timestamp);
            }
            WaveformSettings const settings = waveOf(members, 1);
            WaveformStream stream(settings);
            stream.send(40);
            TempFile const file(stream.captures()[0]);
            SCOPED_TRACE(named.name + after);
            expectWaveform(samplesOf({"--layout", named.name + after, file.path()}),
                           stream.rows(false), settings);
        }
    }
}

TEST(SamplesLayout, HasEveryTypeAtOnce) {
    WaveformSettings settings = declaredWave();
    settings.members.clear();
    std::string layout;
    for (NamedMember const& named : kNamedMembers) {
        settings.members.push_back(named.member);
        layout += (layout.empty() ? "" : ", ") + named.name;
    }
    settings.members.push_back(WaveMember::timestamp);
    WaveformStream stream(settings);
    stream.send(kWaveFrames);
    TempFile const file(stream.captures()[0]);
    expectWaveform(samplesOf({"--layout", layout + ",TIMESTAMP", file.path()}), stream.rows(false),
                   settings);
}

TEST(SamplesLayout, IsInferred) {
    for (auto const& [members, times] :
         {std::pair(std::vector{WaveMember::int32, WaveMember::quality}, 5),
          std::pair(std::vector{WaveMember::float32, WaveMember::quality}, 4),
          std::pair(std::vector{WaveMember::float32}, 12),
          std::pair(std::vector{WaveMember::float32, WaveMember::timestamp}, 1)}) {
        WaveformSettings const settings = waveOf(members, static_cast<std::size_t>(times));
        WaveformStream stream(settings);
        stream.send(kWaveFrames);
        TempFile const file(stream.captures()[0]);
        expectWaveform(samplesOf({file.path()}), stream.rows(false), settings);
    }
}

TEST(SamplesLayout, IsThatOfAShortStretchOfALongStreamToo) {
    // None of the places that are looked at all over the stream is in it.
    WaveformStream stream(declaredWave());
    stream.send(2601).revise(2).send(5);
    TempFile const file(stream.captures()[0]);
    std::string ignored;
    expectWaveform(samplesOf({file.path()}, &ignored), stream.rows(false), stream.settings());
    auto const csv = runCompanion({"samples", "-f", "csv", "--confrev", "2", file.path()});
    EXPECT_EQ(csvRows(csv.out).at(4).at("Ia"), std::to_string(stream.rows(false).back().values[0]));
}

TEST(SamplesChannels, AreAllOfEachSampleWhereNoneIsAskedFor) {
    WaveformSettings settings = declaredWave();
    WaveformStream first(settings);
    settings.members = repeatedMembers({WaveMember::int32, WaveMember::quality}, 10);
    settings.firstCount = 3000;
    WaveformStream second(settings);
    TempFile const file(captureOf({&first.send(3000), &second.send(3)}));
    std::string notes;
    auto const rows = samplesOf({file.path()}, &notes);
    ASSERT_EQ(rows.size(), 3003U);
    EXPECT_EQ(rows[2999]["values"].size(), 8U);
    EXPECT_EQ(rows[3000]["values"].size(), 10U);
    EXPECT_EQ(rows[3000]["quality"].size(), 10U);
    EXPECT_EQ(notes.find("are written"), std::string::npos) << notes;
    std::string ignored;
    auto const channels = samplesOf({"--long", "--from", "1700000000.75", file.path()}, &ignored);
    ASSERT_EQ(channels.size(), 30U);
    EXPECT_EQ(channels.back()["channel"], 10);
}

TEST(SamplesLayout, OfOtherSizeIsNotTaken) {
    TempFile const file = samplesFile(declaredWave());
    EXPECT_EQ(fieldOf(samplesOf({"--layout", "float32,quality", file.path()}), "values"),
              fieldOf(samplesOf({file.path()}), "values"));
}

TEST(SamplesLayout, IsOneOfTheNames) {
    TempFile const file = samplesFile(declaredWave(), 3);
    for (std::string const layout : {"", "int32,", ",int32", "int32;quality", "int33", "float",
                                     "int32 quality", "int32,,quality", "\n"}) {
        expectUsageError({"samples", "--layout", layout, file.path()});
    }
    auto const err = runCompanion({"samples", "--layout", "int32,qualty", file.path()}).err;
    EXPECT_NE(err.find("did you mean quality?"), std::string::npos) << err;
    std::string many = "int8";
    for (int i = 0; i < 9000; ++i) {
        many += ",int8";
    }
    expectUsageError({"samples", "--layout", many, file.path()});
}

TEST(SamplesOctets, AreHexadecimalWhereThereIsNoLayout) {
    // The length is of no layout that is inferred.
    WaveformSettings const settings = waveOf({WaveMember::int16, WaveMember::int8}, 3);
    WaveformStream stream(settings);
    stream.send(kWaveFrames);
    TempFile const file(stream.captures()[0]);
    std::string notes;
    auto const rows = samplesOf({file.path()}, &notes);
    auto const expected = stream.rows(false);
    ASSERT_EQ(rows.size(), expected.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i]["values"], hexOf(expected[i].octets));
        EXPECT_TRUE(rows[i]["quality"].is_null());
    }
    EXPECT_NE(notes.find("9 octets look like no known layout; see --layout"), std::string::npos)
        << notes;
    auto const csv = runCompanion({"samples", "-f", "csv", file.path()});
    EXPECT_EQ(headOf(csv), kSamplesCommonFields + ",value1,quality1");
    EXPECT_EQ(csvRows(csv.out).at(3).at("value1"), hexOf(expected[3].octets));
    EXPECT_EQ(csvRows(csv.out).at(3).at("quality1"), std::nullopt);
    auto const wide = runCompanion({"samples", "-f", "csv", "--long", file.path()});
    auto const longRows = csvRows(wide.out);
    ASSERT_EQ(longRows.size(), expected.size());
    EXPECT_EQ(longRows[3].at("channel"), std::nullopt);
    EXPECT_EQ(longRows[3].at("value"), hexOf(expected[3].octets));
}

TEST(SamplesColumns, AreThoseAskedFor) {
    TempFile const file = samplesFile(declaredWave());
    auto const result = runCompanion(
        {"samples", "-f", "csv", "--columns", "smpCnt,svID", "--limit", "2", file.path()});
    EXPECT_EQ(result.out, "smpCnt,svID\n0,MU01\n1,MU01\n");
    EXPECT_EQ(result.err, "");
    expectUsageError({"samples", "--columns", "nothing", file.path()});
}

TEST(SamplesColumns, MayBeThoseOfChannels) {
    WaveformStream stream(declaredWave());
    stream.send(kWaveFrames).lose().send();
    TempFile const file(stream.captures()[0]);
    Arguments const chosen = {"samples", file.path(), "--missing", "--columns",
                              "smpCnt,Ub,ia.quality,Ia"};
    auto const csv = runCompanion(joined(chosen, {"-f", "csv"}));
    EXPECT_EQ(headOf(csv), "smpCnt,Ub,Ia.quality,Ia");
    std::string ignored;
    auto const all = samplesOf({"--missing", file.path()}, &ignored);
    auto const rows = csvRows(csv.out);
    ASSERT_EQ(rows.size(), all.size());
    for (std::size_t i = 0; i < kWaveFrames; ++i) {
        EXPECT_EQ(rows[i].at("Ub"), all[i]["values"][5].dump());
        EXPECT_EQ(rows[i].at("Ia"), all[i]["values"][0].dump());
        EXPECT_EQ(rows[i].at("Ia.quality"), all[i]["quality"][0].dump());
    }
    EXPECT_EQ(rows[kWaveFrames].at("smpCnt"), "300");
    EXPECT_EQ(rows[kWaveFrames].at("Ia"), std::nullopt);
    EXPECT_EQ(rows[kWaveFrames].at("Ia.quality"), std::nullopt);
    auto const json = Json::parse(linesOf(runCompanion(joined(chosen, {"-f", "json"})).out).at(1));
    EXPECT_EQ(json["Ub"], all[1]["values"][5]);
    auto const table = linesOf(runCompanion(chosen).out);
    EXPECT_NE(table.at(0).find("UB"), std::string::npos) << table[0];
    // Only the channels that are asked for have columns, and by number where they have no name.
    expectUsageError({"samples", file.path(), "--channels", "2", "--columns", "Ia"});
    TempFile const other = samplesFile(waveOf({WaveMember::float32}, 6));
    auto const numbered =
        runCompanion({"samples", "-f", "csv", other.path(), "--columns", "value6,quality6,asdu"});
    EXPECT_EQ(headOf(numbered), "value6,quality6,asdu");
    EXPECT_EQ(csvRows(numbered.out).at(0).at("quality6"), std::nullopt);
    EXPECT_NE(csvRows(numbered.out).at(0).at("value6"), std::nullopt);
}

TEST(SamplesTable, FitsTheTerminal) {
    WaveformStream stream(declaredWave());
    WaveformSettings other = waveOf({WaveMember::int32, WaveMember::quality}, 20);
    other.svID = "A_RATHER_LONG_NAME_OF_A_STREAM_IN_SOME_STATION/MU01";
    WaveformStream twenty(other);
    stream.send(kWaveFrames).lose(3).send(3);
    TempFile const file(captureOf({&stream, &twenty.send(kWaveFrames)}));
    for (Arguments const& options :
         {Arguments{}, {"--missing"}, {"--long"}, {"--scaled"}, {"--channels", "1-3"}}) {
        for (int const columns : {80, 120}) {
            auto const result = runCompanion(joined({"samples", file.path()}, options),
                                             {.output = StandardOutputIs::terminal,
                                              .outputColumns = columns,
                                              .environment = {{"NO_COLOR", "1"}, {"LC_ALL", "C"}}});
            EXPECT_EQ(result.status, 0);
            auto const lines = linesOf(result.out);
            EXPECT_GT(lines.size(), kWaveFrames);
            for (auto const& line : lines) {
                ASSERT_LE(line.size(), static_cast<std::size_t>(columns)) << line;
            }
            EXPECT_EQ(lines[0].find("SAMPLE TIME"), 0U) << lines[0];
        }
    }
}

TEST(SamplesTable, SumsUp) {
    TempFile const file = samplesFile(declaredWave());
    EXPECT_EQ(summaryOf(runCompanion({"samples", file.path()}).out),
              "300 rows of 1 stream in 1 file");
    EXPECT_EQ(summaryOf(runCompanion({"samples", "--limit", "7", file.path()}).out),
              "7 rows of 1 stream in 1 file; more may be there");
    EXPECT_EQ(runCompanion({"samples", "-q", file.path()}).out.find("rows of"), std::string::npos);
}

}  // namespace
}  // namespace TalTest::SamplesFieldsTest
