// Traffic of publishers as they are: the lanes agree, and the fast one is one.

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "lanes/BothLanes.hpp"
#include "lanes/LaneFrames.hpp"
#include "support/Bytes.hpp"
#include "support/CaptureFile.hpp"
#include "support/Data.hpp"
#include "support/Ethernet.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"
#include "support/Station.hpp"

namespace TalTest::RegularTrafficTest {
namespace {

using namespace TalIec61850Parser;

/// Gives its frame of a number, counted from 0.
using Publisher = std::function<Bytes(std::uint32_t)>;

std::uint16_t low16(std::uint32_t number) { return static_cast<std::uint16_t>(number); }

/// GOOSE whose numbers, times and values change, and so now and then its length.
Publisher goose(std::string const& name, std::function<Ethernet(std::uint32_t)> const& link) {
    return [=](std::uint32_t number) {
        GooseMessage message;
        message.goID = name;
        message.stNum = number / 100;
        message.sqNum = number % 100;
        message.t = utcTime(number / 7, number * 977);
        message.setData({dataBoolean(number % 3 == 0), dataInteger(number), dataUtcTime(number)});
        return gooseFrame(link(number), message);
    };
}

Publisher sv(std::string const& name, std::size_t numAsdus,
             std::function<Ethernet(std::uint32_t)> const& link) {
    return [=](std::uint32_t number) {
        SvMessage message;
        message.asdus.resize(numAsdus);
        for (std::size_t i = 0; i < numAsdus; ++i) {
            Asdu& asdu = message.asdus[i];
            asdu.svID = name;
            asdu.smpCnt = (number * numAsdus + i) % 4000;
            asdu.refrTm = utcTime(number, number * 31);
            asdu.seqData = samples({{static_cast<std::int32_t>(number * 7919), number % 5}});
        }
        return svFrame(link(number), message);
    };
}

std::vector<Publisher> publishers() {
    Ethernet const second = svEthernet().from("02:00:00:00:00:02");
    return {
        goose("plain", [](auto) { return Ethernet(); }),
        goose("vlan", [](auto) { return Ethernet().withVlan(100); }),
        goose("prp", [](auto n) { return Ethernet().withPadding().withPrp('A', low16(n)); }),
        goose("hsr", [](auto n) { return Ethernet().withVlan(2).withHsr('B', low16(n)); }),
        sv("plain", 1, [](auto) { return svEthernet(); }),
        sv("eight", 8, [=](auto) { return second.withVlan(7); }),
        sv("prp A", 2, [=](auto n) { return second.withPrp('A', low16(n)); }),
        sv("prp B", 2, [=](auto n) { return second.withPrp('B', low16(n)); }),
        sv("hsr", 1, [](auto n) { return svEthernet().withHsr('A', low16(n * 3)); }),
        sv("p", 1, [](auto) { return svEthernet().withPadding(); }),
    };
}

void expectRemembered(Bytes const& capture, double share, LaneSettings const& settings = {}) {
    LaneOutcome const outcome = indexByBothLanes(capture, settings);
    EXPECT_EQ(outcome.difference, "");
    EXPECT_GT(outcome.share(), share) << outcome;
}

TEST(RegularTraffic, OfPublishersInTurn) {
    auto const all = publishers();
    for (CaptureVariant const variant : captureVariants) {
        CaptureBuilder capture(variant);
        for (std::uint32_t i = 0; i < 6000; ++i)
            capture.add(i, i % 1000 * 1000, all[i % all.size()](i / 10));
        expectRemembered(capture.bytes(), 0.97);
        for (NamedFilter const& filter : laneFilters())
            EXPECT_EQ(indexByBothLanes(capture.bytes(), {.filter = filter.filter, .progress = {}})
                          .difference,
                      "")
                << filter.name;
    }
}

TEST(RegularTraffic, OfPublishersAtRandom) {
    auto const all = publishers();
    std::mt19937 random(1);
    CaptureBuilder capture;
    for (std::uint32_t i = 0; i < 20'000; ++i)
        capture.add(i, 0,
                    all[random() % all.size()](static_cast<std::uint32_t>(random() % 0x10000)));
    expectRemembered(capture.bytes(), 0.9);
}

TEST(RegularTraffic, OfPublishersAtRandomAmongOthers) {
    auto const all = publishers();
    std::mt19937 random(2);
    CaptureBuilder capture;
    std::uint64_t published = 0;
    for (std::uint32_t i = 0; i < 20'000; ++i) {
        bool const other = random() % 4 == 0;
        Bytes frame = all[random() % all.size()](static_cast<std::uint32_t>(random() % 500));
        if (other) frame[12] = 0x08;
        capture.add(i, 0, frame);
        published += other ? 0 : 1;
    }
    LaneOutcome const outcome = indexByBothLanes(capture.bytes());
    EXPECT_EQ(outcome.difference, "");
    EXPECT_GE(outcome.remembered * 10, published * 9) << outcome;
}

TEST(RegularTraffic, OfAStation) {
    std::ostringstream out;
    writeStation(out, CaptureVariant::nanoBig, 30'000);
    Bytes const capture = text(out.str());
    expectRemembered(capture, 0.9);
    expectRemembered(capture, 0.9, {.filter = {}, .progress = watch});
}

TEST(RegularTraffic, WithEverySequenceNumberOfPrp) {
    for (Publisher const& publisher : {publishers()[2], publishers()[6]}) {
        CaptureBuilder capture;
        Bytes frame = publisher(1000);
        for (std::uint32_t i = 0; i < 0x10000; ++i) {
            frame[frame.size() - 6] = static_cast<std::uint8_t>(i >> 8U);
            frame[frame.size() - 5] = static_cast<std::uint8_t>(i);
            capture.add(i, 0, frame);
        }
        expectRemembered(capture.bytes(), 0.95);
        Filter none;
        none.gooseFilters.emplace_back().goID = "none";
        none.svFilters.emplace_back().svID = "none";
        none.svFilters.back().appId.reset();
        expectRemembered(capture.bytes(), 0.99, {.filter = none, .progress = {}});
    }
}

TEST(RegularTraffic, WithEverySequenceNumberOfHsr) {
    for (Publisher const& publisher : {publishers()[3], publishers()[8]}) {
        CaptureBuilder capture;
        Bytes frame = publisher(0);
        std::size_t const sequence = frame[12] == 0x81 ? 20 : 16;
        for (std::uint32_t i = 0; i < 0x10000; ++i) {
            frame[sequence] = static_cast<std::uint8_t>(i >> 8U);
            frame[sequence + 1] = static_cast<std::uint8_t>(i);
            capture.add(i, 0, frame);
        }
        expectRemembered(capture.bytes(), 0.999);
    }
}

TEST(RegularTraffic, WithChangingVlanTags) {
    CaptureBuilder capture;
    for (std::uint32_t i = 0; i < 5000; ++i) {
        auto const priority = static_cast<std::uint8_t>(i % 8);
        Ethernet const link = Ethernet().withVlan(low16(i / 8 % 4), priority, i % 3 == 0);
        capture.add(i, 0, gooseFrame(link, {}));
        capture.add(i, 0, svFrame(link, {}));
    }
    expectRemembered(capture.bytes(), 0.97);
}

TEST(RegularTraffic, OfWhichNothingIsWanted) {
    auto const all = publishers();
    CaptureBuilder capture;
    for (std::uint32_t i = 0; i < 5000; ++i) capture.add(i, 0, all[i % all.size()](i));
    for (auto const& [name, filter] : laneFilters()) {
        if (name != "another source" && name != "another APPID") continue;
        LaneOutcome const outcome =
            indexByBothLanes(capture.bytes(), {.filter = filter, .progress = watch});
        EXPECT_EQ(outcome.difference, "") << name;
        EXPECT_EQ(outcome.packets, 0U) << name;
        EXPECT_GT(outcome.share(), 0.97) << name << ": " << outcome;
    }
}

}  // namespace
}  // namespace TalTest::RegularTrafficTest
