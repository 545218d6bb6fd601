// One difference of each kind between samples and their description, and nothing else.

#include <gtest/gtest.h>

#include "scl/match/DescribedTraffic.hpp"
#include "support/Data.hpp"

namespace TalTest::CheckSvTest {
namespace {

using namespace TalIec61850Scl;

std::string const kSvMatch = "match MU1LD0/LLN0$MS$msvcb1";

std::string svDiffers(std::string const& difference) {
    return "differs MU1LD0/LLN0$MS$msvcb1: " + difference;
}

/// What comes of a change of the first ASDU from the third frame on.
SclLines checkAsdus(std::function<void(Asdu&)> const& change,
                    StationDescription const& station = describedSv()) {
    return checkLines(station, svFrames(6, [&](std::size_t number, Ethernet&, SvMessage& message) {
                          if (number >= 2) {
                              change(message.asdus.front());
                          }
                      }));
}

/// What comes of such a change of all frames.
SclLines checkAllAsdus(std::function<void(Asdu&)> const& change,
                       StationDescription const& station = describedSv()) {
    return checkLines(station, svFrames(4, [&](std::size_t, Ethernet&, SvMessage& message) {
                          change(message.asdus.front());
                      }));
}

StationDescription withOptions(std::function<void(SmvOptions&)> const& change) {
    auto station = describedSv();
    change(*station.controlBlocks[0].options);
    return station;
}

TEST(CheckSv, MatchesWhatIsDescribed) {
    EXPECT_EQ(checkLines(describedSv(), svFrames(5)), SclLines{kSvMatch});
}

TEST(CheckSv, FindsAnotherNameByItsAddress) {
    EXPECT_EQ(checkAllAsdus([](Asdu& asdu) { asdu.svID = "MU99"; }),
              SclLines{"differs MU1LD0/LLN0$MS$msvcb1 by address: svID MU01 != MU99 @0.0"});
}

TEST(CheckSv, FindsAnotherAddressByItsName) {
    EXPECT_EQ(checkLines(describedSv(),
                         svFrames(3,
                                  [](std::size_t, Ethernet& ethernet, SvMessage& message) {
                                      ethernet = ethernet.to("01:0c:cd:04:00:0f").withVlan(9);
                                      message.appId = 0x4001;
                                  })),
              SclLines{svDiffers("mac 010ccd040001 != 010ccd04000f @0.0, appId 16384 != 16385 "
                                 "@0.0, vlanId 5 != 9 @0.0")});
}

TEST(CheckSv, FindsAnotherPriority) {
    EXPECT_EQ(
        checkLines(describedSv(),
                   svFrames(5, [](std::size_t number, Ethernet& ethernet,
                                  SvMessage&) { ethernet.vlanPriority = number == 3 ? 5 : 4; })),
        SclLines{svDiffers("vlanPriority 4 != 5 @0.3")});
}

TEST(CheckSv, TakesADataSetThatIsNotNamedForTheDescribedOne) {
    auto const station = withOptions([](SmvOptions& options) { options.dataSet = true; });
    EXPECT_EQ(checkAllAsdus([](Asdu& asdu) { asdu.datSet = "MU1LD0/LLN0$PhsMeas1"; }, station),
              SclLines{kSvMatch});
    EXPECT_EQ(checkAllAsdus([](Asdu& asdu) { asdu.datSet = "MU1LD0/LLN0$else"; }, station),
              SclLines{svDiffers("datSet MU1LD0/LLN0$PhsMeas1 != MU1LD0/LLN0$else @0.0")});
}

TEST(CheckSv, FindsAnotherRevision) {
    EXPECT_EQ(checkAsdus([](Asdu& asdu) { asdu.confRev = 7; }),
              SclLines{svDiffers("confRev 1 != 7 @0.2")});
}

TEST(CheckSv, FindsAnotherSizeOfTheSample) {
    EXPECT_EQ(checkAsdus([](Asdu& asdu) { asdu.seqData = Bytes(40); }),
              SclLines{svDiffers("memberCount 32 != 40 @0.2")});
    EXPECT_EQ(checkAsdus([](Asdu& asdu) { asdu.seqData.reset(); }),
              SclLines{svDiffers("memberCount 32 != 0 @0.2")});
}

TEST(CheckSv, ComparesNoSizeThatIsNotKnown) {
    auto station = describedSv();
    station.dataSets[0].members[0].type = BasicType::visibleString;
    EXPECT_EQ(checkAllAsdus([](Asdu& asdu) { asdu.seqData = Bytes(40); }, station),
              SclLines{kSvMatch});
}

TEST(CheckSv, FindsMoreAsdusInAFrame) {
    auto const frames = svFrames(4, [](std::size_t number, Ethernet&, SvMessage& message) {
        Asdu second = message.asdus.front();
        message.asdus.front().smpCnt = 2 * number;
        second.smpCnt = 2 * number + 1;
        message.asdus.push_back(second);
    });
    EXPECT_EQ(checkLines(describedSv(), frames), SclLines{svDiffers("noASDU 1 != 2 @0.0")});
    auto station = describedSv();
    station.controlBlocks[0].nofASDU = 2;
    EXPECT_EQ(checkLines(station, frames), SclLines{kSvMatch});
    station.controlBlocks[0].nofASDU.reset();
    EXPECT_EQ(checkLines(station, frames), SclLines{kSvMatch});
}

TEST(CheckSv, FindsOptionalFieldsThatAreNotDescribed) {
    EXPECT_EQ(checkAsdus([](Asdu& asdu) { asdu.refrTm = utcTime(kDescribedStart); }),
              SclLines{svDiffers("options { smpSynch } != { refrTm smpSynch } @0.2")});
    EXPECT_EQ(checkAsdus([](Asdu& asdu) { asdu.smpRate = 80; }),
              SclLines{svDiffers("options { smpSynch } != { smpSynch smpRate } @0.2")});
    EXPECT_EQ(checkAsdus([](Asdu& asdu) { asdu.datSet = "MU1LD0/LLN0$PhsMeas1"; }),
              SclLines{svDiffers("options { smpSynch } != { smpSynch datSet } @0.2")});
    EXPECT_EQ(checkAsdus([](Asdu& asdu) { asdu.extraLast = ber(0x89, Bytes(8)); }),
              SclLines{svDiffers("options { smpSynch } != { smpSynch gmIdentity } @0.2")});
}

TEST(CheckSv, FindsDescribedFieldsThatAreNotThere) {
    auto const station = withOptions([](SmvOptions& options) {
        options = {.refreshTime = true,
                   .sampleSynchronized = true,
                   .sampleRate = true,
                   .dataSet = true,
                   .security = true,
                   .timestamp = true,
                   .synchSourceId = true};
    });
    auto const all = [](Asdu& asdu) {
        asdu.refrTm = utcTime(kDescribedStart);
        asdu.smpRate = 80;
        asdu.datSet = "MU1LD0/LLN0$PhsMeas1";
        asdu.extraLast = ber(0x89, Bytes(8));
    };
    EXPECT_EQ(checkAllAsdus(all, station), SclLines{kSvMatch});
    std::string const described =
        "options { refrTm smpSynch smpRate datSet security timestamp gmIdentity } != ";
    EXPECT_EQ(checkAllAsdus(
                  [&](Asdu& asdu) {
                      all(asdu);
                      asdu.refrTm.reset();
                  },
                  station),
              SclLines{svDiffers(described + "{ smpSynch smpRate datSet security timestamp "
                                             "gmIdentity } @0.0")});
    EXPECT_EQ(checkAllAsdus(
                  [&](Asdu& asdu) {
                      all(asdu);
                      asdu.smpRate.reset();
                  },
                  station),
              SclLines{svDiffers(described + "{ refrTm smpSynch datSet security timestamp "
                                             "gmIdentity } @0.0")});
    EXPECT_EQ(checkAllAsdus(
                  [&](Asdu& asdu) {
                      all(asdu);
                      asdu.datSet.reset();
                  },
                  station),
              SclLines{svDiffers(described + "{ refrTm smpSynch smpRate security timestamp "
                                             "gmIdentity } @0.0")});
    EXPECT_EQ(checkAllAsdus(
                  [&](Asdu& asdu) {
                      all(asdu);
                      asdu.extraLast.clear();
                  },
                  station),
              SclLines{svDiffers(described + "{ refrTm smpSynch smpRate datSet security timestamp "
                                             "} @0.0")});
    EXPECT_EQ(checkAllAsdus(
                  [&](Asdu& asdu) {
                      all(asdu);
                      asdu.smpSynch.reset();
                  },
                  station),
              SclLines{svDiffers(described + "{ refrTm smpRate datSet security timestamp "
                                             "gmIdentity } @0.0")});
}

TEST(CheckSv, AsksForSmpSynchOnlyWhereItIsDescribed) {
    auto const station =
        withOptions([](SmvOptions& options) { options.sampleSynchronized = false; });
    EXPECT_EQ(checkLines(station, svFrames(3)), SclLines{kSvMatch});
    EXPECT_EQ(checkAllAsdus([](Asdu& asdu) { asdu.smpSynch.reset(); }, station),
              SclLines{kSvMatch});
    auto none = describedSv();
    none.controlBlocks[0].options.reset();
    EXPECT_EQ(checkAllAsdus([](Asdu& asdu) { asdu.refrTm = utcTime(kDescribedStart); }, none),
              SclLines{kSvMatch});
}

TEST(CheckSv, FindsSamplesShorterThanTheTypesThatAreKnown) {
    auto station = describedSv();
    station.dataSets[0].members[3].type = BasicType::unknown;
    auto const ofSize = [&](std::size_t size) {
        return checkAsdus([=](Asdu& asdu) { asdu.seqData = Bytes(size); }, station);
    };
    EXPECT_EQ(ofSize(28), SclLines{kSvMatch});
    EXPECT_EQ(ofSize(40), SclLines{kSvMatch});
    EXPECT_EQ(ofSize(27), SclLines{svDiffers("memberCount 28 != 27 @0.2")});
}

/// The description of samples that say their rate.
StationDescription withRate(std::uint32_t rate, SampleRateUnit unit) {
    auto station = withOptions([](SmvOptions& options) { options.sampleRate = true; });
    station.controlBlocks[0].smpRate = rate;
    station.controlBlocks[0].smpRateUnit = unit;
    return station;
}

std::function<void(Asdu&)> declaring(std::uint16_t rate, std::optional<std::uint16_t> unit = {}) {
    return [=](Asdu& asdu) {
        asdu.smpRate = rate;
        if (unit) {
            asdu.smpMod = *unit;
        }
    };
}

TEST(CheckSv, FindsAnotherRateInTheElement) {
    auto const station = withRate(80, SampleRateUnit::samplesPerPeriod);
    EXPECT_EQ(checkAllAsdus(declaring(80), station), SclLines{kSvMatch});
    EXPECT_EQ(checkAllAsdus(declaring(80, 0), station), SclLines{kSvMatch});
    EXPECT_EQ(checkAllAsdus(declaring(96), station),
              SclLines{svDiffers("smpRate 4000 != 4800 @0.0")});
    EXPECT_EQ(checkAllAsdus(declaring(81), station),
              SclLines{svDiffers("smpRate 4000 != 4050 @0.0")});
    EXPECT_EQ(checkAllAsdus(declaring(0), station),
              SclLines{svDiffers("smpRate 4000 != none @0.0")});
}

TEST(CheckSv, ComparesRatesOfTwoUnits) {
    auto const perPeriod = withRate(80, SampleRateUnit::samplesPerPeriod);
    EXPECT_EQ(checkAllAsdus(declaring(4000, 1), perPeriod), SclLines{kSvMatch});
    EXPECT_EQ(checkAllAsdus(declaring(4800, 1), perPeriod), SclLines{kSvMatch});
    EXPECT_EQ(checkAllAsdus(declaring(5760, 1), perPeriod),
              SclLines{svDiffers("smpRate 4000 != 5760 @0.0")});
    auto const perSecond = withRate(4000, SampleRateUnit::samplesPerSecond);
    EXPECT_EQ(checkAllAsdus(declaring(4000, 1), perSecond), SclLines{kSvMatch});
    EXPECT_EQ(checkAllAsdus(declaring(80, 0), perSecond), SclLines{kSvMatch});
    EXPECT_EQ(checkAllAsdus(declaring(4000), perSecond), SclLines{kSvMatch});
    // Without smpMod it may be of a period.
    EXPECT_EQ(checkAllAsdus(declaring(80), perSecond), SclLines{kSvMatch});
    EXPECT_EQ(checkAllAsdus(declaring(96), perSecond),
              SclLines{svDiffers("smpRate 4000 != 96 @0.0")});
    EXPECT_EQ(checkAllAsdus(declaring(4000, 0), perSecond),
              SclLines{svDiffers("smpRate 4000 != 200000 @0.0")});
    auto const slow = withRate(5, SampleRateUnit::secondsPerSample);
    EXPECT_EQ(checkAllAsdus(declaring(5, 2), slow), SclLines{kSvMatch});
    EXPECT_EQ(checkAllAsdus(declaring(4, 2), slow),
              SclLines{svDiffers("smpRate 0.2 != 0.25 @0.0")});
}

/// Samples at a rate that no element tells.
std::vector<DescribedFrame> sampledAt(std::uint32_t rate, std::size_t count,
                                      std::size_t first = 0) {
    auto frames = svFrames(count, [&](std::size_t number, Ethernet&, SvMessage& message) {
        message.asdus.front().smpCnt = (first + number) % rate;
    });
    for (std::size_t i = 0; i < count; ++i) {
        frames[i].time = static_cast<std::int64_t>(i) * 1'000'000'000 / rate;
    }
    return frames;
}

TEST(CheckSv, FindsAnotherRateByArrival) {
    EXPECT_EQ(checkLines(describedSv(), sampledAt(4000, 400)), SclLines{kSvMatch});
    EXPECT_EQ(checkLines(describedSv(), sampledAt(4800, 400)), SclLines{kSvMatch});
    EXPECT_EQ(checkLines(describedSv(), sampledAt(5760, 400)),
              SclLines{svDiffers("smpRate 4800 != 5760 @0.0")});
    EXPECT_EQ(checkLines(describedSv(), sampledAt(3200, 400)),
              SclLines{svDiffers("smpRate 4000 != 3200 @0.0")});
}

TEST(CheckSv, FindsAnotherRateByTheCounter) {
    // It begins again after a few samples.
    EXPECT_EQ(checkLines(describedSv(), sampledAt(5760, 100, 5700)),
              SclLines{svDiffers("smpRate 4800 != 5760 @0.0")});
    EXPECT_EQ(checkLines(describedSv(), sampledAt(4000, 100, 3950)), SclLines{kSvMatch});
}

TEST(CheckSv, MeasuresNoRateOfAFewSamples) {
    EXPECT_EQ(checkLines(describedSv(), sampledAt(5760, 255)), SclLines{kSvMatch});
    EXPECT_EQ(checkLines(describedSv(), sampledAt(5760, 63, 5730)), SclLines{kSvMatch});
    EXPECT_EQ(checkLines(describedSv(), sampledAt(5760, 64, 5730)),
              SclLines{svDiffers("smpRate 4800 != 5760 @0.0")});
}

TEST(CheckSv, FindsARateThatChanges) {
    auto frames = sampledAt(4000, 4000);
    auto const faster = sampledAt(12800, 12800);
    for (DescribedFrame frame : faster) {
        frame.time += 1'000'000'000;
        frames.push_back(frame);
    }
    CheckedStation const station(describedSv(), {frames});
    ASSERT_EQ(station.rows().size(), 1U);
    ASSERT_EQ(station.rows()[0].differences.size(), 1U);
    Difference const& difference = station.rows()[0].differences[0];
    EXPECT_EQ(difference.kind, DifferenceKind::smpRate);
    EXPECT_EQ(std::get<double>(difference.expected), 4800);
    EXPECT_NEAR(std::get<double>(difference.found), 12800, 128);
    EXPECT_NEAR(difference.packet.value().packet, 4000U, 10U);
}

TEST(CheckSv, TellsElementAndMeasureAsOneDifference) {
    auto frames = svFrames(400, [](std::size_t, Ethernet&, SvMessage& message) {
        declaring(96)(message.asdus.front());
    });
    for (std::size_t i = 0; i < frames.size(); ++i) {
        frames[i].time = static_cast<std::int64_t>(i) * 1'000'000'000 / 5760;
    }
    EXPECT_EQ(checkLines(withRate(80, SampleRateUnit::samplesPerPeriod), frames),
              SclLines{svDiffers("smpRate 4000 != 4800 @0.0")});
}

TEST(CheckSv, ComparesNoRateThatIsNotDescribed) {
    for (auto const& rate : {std::optional<std::uint32_t>(), std::optional<std::uint32_t>(0)}) {
        auto station = describedSv();
        station.controlBlocks[0].smpRate = rate;
        EXPECT_EQ(checkLines(station, sampledAt(5760, 400)), SclLines{kSvMatch});
    }
}

TEST(CheckSv, ComparesEachAsduOfAFrame) {
    auto station = describedSv();
    station.controlBlocks[0].nofASDU = 4;
    auto const frames = svFrames(4, [](std::size_t number, Ethernet&, SvMessage& message) {
        Asdu const like = message.asdus.front();
        message.asdus.clear();
        for (std::size_t i = 0; i < 4; ++i) {
            message.asdus.push_back(like);
            message.asdus.back().smpCnt = 4 * number + i;
        }
        if (number == 2) {
            message.asdus[3].seqData = Bytes(8);
        }
    });
    EXPECT_EQ(checkLines(station, frames), SclLines{svDiffers("memberCount 32 != 8 @0.11")});
}

TEST(CheckSv, TellsApartTheStreamsOfOneFrame) {
    auto station = describedSv();
    station.controlBlocks[0].nofASDU = 2;
    station.controlBlocks.push_back(station.controlBlocks[0]);
    station.controlBlocks[1].id = "MU02";
    station.controlBlocks[1].reference = "MU2LD0/LLN0$MS$msvcb1";
    auto const frames = svFrames(4, [](std::size_t number, Ethernet&, SvMessage& message) {
        message.asdus.push_back(message.asdus.front());
        message.asdus[1].svID = "MU02";
        message.asdus[1].seqData = Bytes(number == 3 ? 24U : 32U);
    });
    EXPECT_EQ(checkLines(station, frames),
              (SclLines{kSvMatch, "differs MU2LD0/LLN0$MS$msvcb1: memberCount 32 != 24 @0.3"}));
}

TEST(CheckSv, MissesNothingThatASnapLengthCutOff) {
    auto const station = withOptions([](SmvOptions& options) {
        options.refreshTime = true;
        options.synchSourceId = true;
    });
    auto frames = svFrames(4, [](std::size_t, Ethernet&, SvMessage& message) {
        message.asdus.front().refrTm = utcTime(kDescribedStart);
        message.asdus.front().extraLast = ber(0x89, Bytes(8));
    });
    ASSERT_EQ(checkLines(station, frames), SclLines{kSvMatch});
    for (std::size_t snapped = frames[2].octets.size() - 1; snapped > 60; --snapped) {
        frames[2].snappedTo = snapped;
        EXPECT_EQ(checkLines(station, frames), SclLines{kSvMatch}) << snapped;
    }
}

}  // namespace
}  // namespace TalTest::CheckSvTest
