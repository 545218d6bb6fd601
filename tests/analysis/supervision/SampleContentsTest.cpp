// What only the ASDUs of SV tell: clocks, and the quality of their times.

#include <gtest/gtest.h>

#include "analysis/supervision/FoundIn.hpp"
#include "support/Data.hpp"

namespace TalTest::SampleContentsTest {
namespace {

using namespace TalIec61850Analysis;

SupervisionOptions const kWithAsdus{.withSamples = true};

/// gmIdentity with this as its last octet.
Bytes grandmaster(std::uint8_t last) {
    return {0x89, 8, 0x00, 0x30, 0xA7, 0xFF, 0xFE, 0x00, 0x00, last};
}

FaultyStation asduStation(std::uint32_t asdus = 1) {
    FaultyStation station;
    station.add({.asdus = asdus, .frames = 400});
    return station;
}

/// Done to all ASDUs from a frame on.
void changeAsdusFrom(FaultyStation& station, std::size_t number,
                     std::function<void(Asdu&)> const& change) {
    station.changeSvFrom(0, number, [&](SvMessage& message) {
        for (Asdu& asdu : message.asdus) {
            change(asdu);
        }
    });
}

TEST(SampleContents, TellsAnotherGrandmaster) {
    for (std::uint32_t const asdus : {1U, 2U}) {
        auto station = asduStation(asdus);
        changeAsdusFrom(station, 0, [](Asdu& asdu) { asdu.extraLast = grandmaster(1); });
        changeAsdusFrom(station, 100, [](Asdu& asdu) { asdu.extraLast = grandmaster(2); });
        auto const findings = findingsIn(station.captures(), kWithAsdus);
        ASSERT_EQ(findings.size(), 1U);
        EXPECT_EQ(findings[0].kind, FindingKind::grandmasterChanged);
        EXPECT_EQ(lineOf(findings[0], station), "grandmasterChanged MU01 #100");
        EXPECT_EQ(findings[0].expected,
                  FindingValue(OctetString{0, 0x30, 0xA7, 0xFF, 0xFE, 0, 0, 1}));
        EXPECT_EQ(findings[0].found, FindingValue(OctetString{0, 0x30, 0xA7, 0xFF, 0xFE, 0, 0, 2}));
        EXPECT_EQ(findingsIn(station.captures()), std::vector<Finding>());
    }
}

TEST(SampleContents, TakesNoClockForNoOtherClock) {
    auto station = asduStation();
    changeAsdusFrom(station, 0, [](Asdu& asdu) { asdu.extraLast = grandmaster(1); });
    changeAsdusFrom(station, 100, [](Asdu& asdu) { asdu.extraLast.clear(); });
    changeAsdusFrom(station, 200, [](Asdu& asdu) { asdu.extraLast = grandmaster(1); });
    // Of another length, it is none.
    changeAsdusFrom(station, 300, [](Asdu& asdu) { asdu.extraLast = {0x89, 2, 7, 7}; });
    EXPECT_EQ(foundIn(station, kWithAsdus), Lines());
}

TEST(SampleContents, TellsWhatTimesSayOfTheirClock) {
    auto station = asduStation(2);
    auto const setFrom = [&](std::size_t number, std::uint8_t quality) {
        changeAsdusFrom(station, number,
                        [=](Asdu& asdu) { asdu.refrTm = utcTime(1'700'000'000, 0, quality); });
    };
    setFrom(0, 0x0A);
    setFrom(50, 0x2A);
    setFrom(100, 0x0A);
    setFrom(150, 0x4A);
    setFrom(200, 0x6A);
    EXPECT_EQ(foundIn(station, kWithAsdus),
              (Lines{"clockNotSynchronized MU01 #50", "clockFailure MU01 #150",
                     "clockNotSynchronized MU01 #200"}));
}

TEST(SampleContents, TellsTimesThatSayItFromTheFirstOn) {
    auto station = asduStation();
    changeAsdusFrom(station, 0, [](Asdu& asdu) { asdu.refrTm = utcTime(1'700'000'000, 0, 0x60); });
    EXPECT_EQ(foundIn(station, kWithAsdus),
              (Lines{"clockFailure MU01 #0", "clockNotSynchronized MU01 #0"}));
}

TEST(SampleContents, TellsAQualityThatIsBadFromTheFirstOn) {
    auto station = asduStation();
    changeAsdusFrom(station, 0, [](Asdu& asdu) {
        std::vector<Sample> channels(8, Sample{1000, 0});
        channels[5].second = 1;
        asdu.seqData = samples(channels);
    });
    auto const findings = findingsIn(station.captures(), kWithAsdus);
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].kind, FindingKind::qualityChanged);
    EXPECT_EQ(findings[0].member, std::vector<std::uint32_t>{5});
    EXPECT_EQ(findings[0].expected, FindingValue());
    EXPECT_EQ(lineOf(findings[0], station), "qualityChanged MU01 #0");
}

TEST(SampleContents, TellsAQualityAtAnyPlaceAmongThoseThatAreAlike) {
    for (std::uint32_t number = 1; number < 200; ++number) {
        auto station = asduStation();
        auto const setFrom = [&](std::size_t from, std::uint32_t quality) {
            changeAsdusFrom(station, from, [=](Asdu& asdu) {
                std::vector<Sample> channels(8, Sample{1000, 0});
                channels[2].second = quality;
                asdu.seqData = samples(channels);
            });
        };
        setFrom(number, 1);
        setFrom(number + 1, 0);
        auto const findings = findingsIn(station.captures(), kWithAsdus);
        ASSERT_EQ(findings.size(), 2U) << number;
        EXPECT_EQ(findings[0].kind, FindingKind::qualityChanged);
        for (std::uint32_t i = 0; i < 2; ++i) {
            EXPECT_EQ(findings[i].place->packet.packet, number + i);
            ASSERT_TRUE(findings[i].before) << number;
            EXPECT_EQ(findings[i].before->packet.packet, number + i - 1);
        }
    }
}

TEST(SampleContents, TellsAQualityOfAnyAsduOfAFrame) {
    for (std::uint32_t asdu = 0; asdu < 2; ++asdu) {
        auto station = asduStation(2);
        auto const setFrom = [&](std::size_t number, std::uint32_t quality) {
            station.changeSvFrom(0, number, [=](SvMessage& message) {
                std::vector<Sample> channels(8, Sample{1000, 0});
                channels[2].second = quality;
                message.asdus[asdu].seqData = samples(channels);
            });
        };
        setFrom(50, 1);
        setFrom(51, 0);
        auto const findings = findingsIn(station.captures(), kWithAsdus);
        ASSERT_EQ(findings.size(), 2U) << asdu;
        for (std::uint32_t i = 0; i < 2; ++i) {
            EXPECT_EQ(findings[i].kind, FindingKind::qualityChanged);
            EXPECT_EQ(findings[i].place->packet.packet, 100 + asdu + i);
        }
    }
}

TEST(SampleContents, TellsQualitiesWhereTheDescriptionHasThem) {
    struct Described {
        std::vector<SampleType> members;
        /// The last octet of the second channel's quality.
        std::size_t place;
    };
    for (Described const& described :
         {Described{
              {SampleType::int16, SampleType::quality, SampleType::int16, SampleType::quality}, 11},
          Described{{SampleType::int32, SampleType::quality, SampleType::timestamp,
                     SampleType::int32, SampleType::quality, SampleType::timestamp},
                    23}}) {
        SampleLayout const layout(described.members);
        auto station = asduStation();
        changeAsdusFrom(station, 0, [&](Asdu& asdu) { asdu.seqData = Bytes(layout.size()); });
        changeAsdusFrom(station, 100, [&](Asdu& asdu) { (*asdu.seqData)[described.place] = 1; });
        SupervisionOptions options = kWithAsdus;
        options.layoutOf = [&](StreamKey const& key) {
            return key.name == "MU01" ? std::optional(layout) : std::nullopt;
        };
        auto const findings = findingsIn(station.captures(), options);
        ASSERT_EQ(findings.size(), 1U);
        EXPECT_EQ(lineOf(findings[0], station), "qualityChanged MU01 #100");
        EXPECT_EQ(findings[0].member, std::vector<std::uint32_t>{1});
    }
}

TEST(SampleContents, InfersSamplesOfAnotherSizeThanDescribed) {
    auto station = asduStation();
    changeAsdusFrom(station, 100, [](Asdu& asdu) {
        std::vector<Sample> channels(8, Sample{1000, 0});
        channels[5].second = 1;
        asdu.seqData = samples(channels);
    });
    SupervisionOptions options = kWithAsdus;
    options.layoutOf = [](StreamKey const&) {
        return std::optional(SampleLayout({SampleType::int16, SampleType::quality}));
    };
    EXPECT_EQ(foundIn(station, options), (Lines{"qualityChanged MU01 #100"}));
}

TEST(SampleContents, TakesNoValuesForQualities) {
    auto station = asduStation();
    std::size_t number = 0;
    for (StationFrame& frame : station.frames()) {
        // Floats that vary, and nothing else.
        Bytes data;
        for (std::uint8_t channel = 0; channel < 16; ++channel) {
            data.insert(data.end(), {0x43, static_cast<std::uint8_t>(0x80 + number % 100),
                                     static_cast<std::uint8_t>(number), channel});
        }
        std::get<SvMessage>(frame.message).asdus.front().seqData = data;
        ++number;
    }
    EXPECT_EQ(foundIn(station, kWithAsdus), Lines());
}

TEST(SampleContents, GoesThroughManyStreamsAndFilesAtOnce) {
    FaultyStation station;
    for (std::size_t unit = 0; unit < 4; ++unit) {
        std::string const number = std::to_string(unit + 1);
        station.add({.svID = "MU0" + number,
                     .source = "02:00:00:00:00:0" + number,
                     .frames = 8000,
                     .start = static_cast<std::int64_t>(unit) * 50'000});
        station.changeSvFrom(unit, 3000 + 1000 * unit, [](SvMessage& message) {
            std::vector<Sample> channels(8, Sample{1000, 0});
            channels[0].second = 1;
            message.asdus.front().seqData = samples(channels);
        });
    }
    station.splitAt(900'000'000).splitAt(1'500'000'000);
    Lines const expected = {"qualityChanged MU01 #3000", "qualityChanged MU02 #4000",
                            "qualityChanged MU03 #5000", "qualityChanged MU04 #6000"};
    for (std::size_t const jobs : {1U, 2U, 8U}) {
        EXPECT_EQ(foundIn(station, {.withSamples = true, .jobs = jobs}), expected) << jobs;
    }
}

TEST(SampleContents, MakesAFloodOfQualitiesOne) {
    auto station = asduStation();
    for (StationFrame& frame : station.frames()) {
        std::vector<Sample> channels(8, Sample{1000, 0});
        channels[3].second = static_cast<std::uint32_t>(frame.number % 2);
        std::get<SvMessage>(frame.message).asdus.front().seqData = samples(channels);
    }
    auto const findings = findingsIn(station.captures(), kWithAsdus);
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].count, 399U);
}

}  // namespace
}  // namespace TalTest::SampleContentsTest
