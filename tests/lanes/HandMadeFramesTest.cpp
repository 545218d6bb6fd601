// Frames that were thought up to tell the lanes apart.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "lanes/BothLanes.hpp"
#include "lanes/LaneFrames.hpp"
#include "support/Ber.hpp"
#include "support/Bytes.hpp"
#include "support/CaptureFile.hpp"
#include "support/Ethernet.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"

namespace TalTest::HandMadeFramesTest {
namespace {

using namespace TalIec61850Parser;

/// A capture of the frames one after the other, this many times.
Bytes roundsOf(std::vector<Bytes> const& frames, std::uint32_t rounds,
               CaptureVariant variant = CaptureVariant::microLittle) {
    CaptureBuilder capture(variant);
    for (std::uint32_t round = 0; round < rounds; ++round)
        for (Bytes const& frame : frames) capture.add(round, 1000, frame);
    return capture.bytes();
}

void expectEqualAndRemembered(Bytes const& capture, double share, LaneSettings const& settings = {},
                              std::string const& what = {}) {
    LaneOutcome const outcome = indexByBothLanes(capture, settings);
    EXPECT_EQ(outcome.difference, "") << what;
    EXPECT_GE(outcome.share(), share) << what << ": " << outcome;
}

/// The frame with its two octets from `position` on set to a number.
Bytes numbered(Bytes frame, std::size_t position, std::uint16_t number) {
    frame.at(position) = static_cast<std::uint8_t>(number >> 8U);
    frame.at(position + 1) = static_cast<std::uint8_t>(number);
    return frame;
}

TEST(HandMadeFrames, EachRepeated) {
    std::uint64_t remembered = 0;
    std::uint64_t records = 0;
    for (auto const& [filterName, filter] : laneFilters()) {
        for (auto const& [name, octets] : allFrames()) {
            LaneOutcome const outcome =
                indexByBothLanes(roundsOf({octets}, 10), {.filter = filter, .progress = {}});
            EXPECT_EQ(outcome.difference, "") << name << ", " << filterName;
            remembered += outcome.remembered;
            records += outcome.records;
        }
    }
    EXPECT_GT(static_cast<double>(remembered), 0.5 * static_cast<double>(records));
}

TEST(HandMadeFrames, AllInTurn) {
    std::vector<Bytes> frames;
    for (auto const& [name, octets] : allFrames()) frames.push_back(octets);
    for (CaptureVariant const variant : captureVariants)
        for (auto const& [name, filter] : laneFilters()) {
            LaneOutcome const outcome = indexByBothLanes(roundsOf(frames, 10, variant),
                                                         {.filter = filter, .progress = watch});
            EXPECT_EQ(outcome.difference, "") << name;
        }
    expectEqualAndRemembered(roundsOf(frames, 10), 0.75);
}

TEST(HandMadeFrames, CutAndGrown) {
    for (auto const& [name, frame] : deviceFrames()) {
        CaptureBuilder capture;
        for (std::size_t size = 0; size <= frame.size(); ++size)
            for (std::uint32_t repeats = 0; repeats < 3; ++repeats)
                capture.add(1, repeats, frame).add(2, repeats, prefix(frame, size));
        for (std::size_t more = 1; more < 110; ++more)
            for (std::uint8_t const filling : Bytes{0x00, 0x01, 0x30, 0x61, 0x80, 0xA2, 0xFF})
                for (std::uint32_t repeats = 0; repeats < 2; ++repeats)
                    capture.add(3, repeats, concat({frame, repeat(filling, more)}));
        expectEqualAndRemembered(capture.bytes(), 0.4, {}, name);
    }
}

// --- Sizes -------------------------------------------------------------------------------------

TEST(HandMadeFrames, RecordsOfUpToFortyOctets) {
    CaptureBuilder capture;
    for (auto const& [name, frame] : deviceFrames())
        for (std::size_t size = 0; size <= 40; ++size)
            for (std::uint32_t repeats = 0; repeats < 3; ++repeats) {
                capture.add(1, 0, prefix(frame, size));
                capture.add(1, 0, concat({prefix(frame, size), {0x00, 0x10, 0x88, 0xFB}}));
            }
    EXPECT_EQ(indexByBothLanes(capture.bytes()).difference, "");
}

TEST(HandMadeFrames, SuffixOfATrailerThatBeginsInTheRecordHeader) {
    // Octets in front of so short a frame count as its trailer; no such frame is GOOSE or SV.
    CaptureBuilder capture;
    for (int repeats = 0; repeats < 4; ++repeats)
        capture.add(1, 0, {0x88, 0xFB}).add(1, 0, {0x10, 0x88, 0xFB}).add(1, 0, gooseFrame({}, {}));
    EXPECT_EQ(indexByBothLanes(capture.bytes()).difference, "");
}

TEST(HandMadeFrames, OfEverySizeAroundThatOfOneMemoryCanHold) {
    for (std::size_t const around : {32U, 64U, 16U << 10U, 65'535U}) {
        CaptureBuilder capture;
        for (std::size_t size = around - 24; size <= around + 24; ++size) {
            Asdu asdu;
            asdu.seqData.reset();
            SvMessage message;
            message.asdus = {asdu};
            message.length = 0;
            Bytes const bare = svFrame(svEthernet(), message);
            message.asdus[0].seqData = Bytes(size > bare.size() ? size - bare.size() : 0);
            Bytes const frame = prefix(svFrame(svEthernet(), message), size);
            for (std::uint32_t i = 0; i < 4; ++i) capture.add(i, 0, frame);
        }
        LaneOutcome const outcome = indexByBothLanes(capture.bytes());
        EXPECT_EQ(outcome.difference, "") << around;
        EXPECT_EQ(outcome.remembered == 0, around == 65'535U) << around << ": " << outcome;
    }
}

TEST(HandMadeFrames, OneThatIs16MiBLongerThanARememberedOneIsAnother) {
    // A PDU that claims 16 KiB: the short frame ends before that, the long one does not.
    Bytes pdu = savPdu({});
    pdu = concat({{0x60, 0x82, 0x40, 0x00}, Bytes(pdu.begin() + 2, pdu.end())});
    Bytes const frame =
        ethernetFrame(svEthernet(), etherTypeSampledValues, apdu({.appId = 1}, pdu));
    CaptureBuilder capture;
    for (std::uint32_t i = 0; i < 8; ++i) capture.add(i, 0, frame);
    std::size_t const more = std::size_t{16} << 20U;
    // The file ends where the short frame would; the record is completed with zeros.
    capture.addClaiming(9, 0, static_cast<std::uint32_t>(frame.size() + more), frame);
    EXPECT_EQ(indexByBothLanes(capture.bytes()).difference, "");
}

// --- Trailers and tails ------------------------------------------------------------------------

TEST(HandMadeFrames, TrailerThatIsPartOfTheLastValue) {
    auto const ending = [](Bytes const& end) {
        SvMessage message;
        message.asdus[0].seqData = concat({Bytes(20), end});
        return svFrame(svEthernet(), message);
    };
    std::vector<Bytes> frames;
    for (std::uint8_t const lan : Bytes{0x00, 0x10, 0xEF, 0xFF})
        for (std::uint8_t const suffix : Bytes{0xFB, 0xFA})
            frames.push_back(ending({lan, 0x00, 0x88, suffix}));
    expectEqualAndRemembered(roundsOf(frames, 40), 0.9);
}

TEST(HandMadeFrames, StreamsThatDifferInTheirLanOnly) {
    std::vector<Bytes> frames;
    for (char const lan : {'A', 'B'}) {
        frames.push_back(gooseFrame(Ethernet().withPrp(lan), {}));
        frames.push_back(gooseFrame(Ethernet().withHsr(lan), {}));
        frames.push_back(svFrame(svEthernet().withPrp(lan), {}));
        frames.push_back(svFrame(svEthernet().withHsr(lan), {}));
        frames.push_back(svFrame(svEthernet().withVlan(1).withHsr(lan).withPrp('A'), {}));
    }
    expectEqualAndRemembered(roundsOf(frames, 40), 0.9);
}

TEST(HandMadeFrames, TailsOfEveryTwoOctets) {
    Bytes const goose = gooseFrame({}, {});
    Bytes const sv = svFrame(svEthernet(), {});
    for (Bytes const& frame : {goose, sv}) {
        CaptureBuilder capture;
        for (std::uint32_t head = 0; head < 0x10000; ++head) {
            Bytes const tail = {static_cast<std::uint8_t>(head),
                                static_cast<std::uint8_t>(head >> 8U),
                                0x82,
                                0x02,
                                0x80,
                                0x01};
            capture.add(head, 0, concat({frame, tail}));
        }
        expectEqualAndRemembered(capture.bytes(), 0.9);
    }
}

TEST(HandMadeFrames, TailsOfRememberedFramesThatHoldAnotherStream) {
    Bytes const sv = svFrame(svEthernet(), {});
    std::vector<Bytes> tails = {asduElement(Asdu{}),
                                ber(0x80, {9}),
                                concat({{0x30, 0x00}, ber(0x80, "MU77")}),
                                ber(0xA2, Bytes(4)),
                                ber(0x60, ber(0x80, {7})),
                                ber(0xA0, {}),
                                ber(0x04, Bytes(20))};
    std::vector<Bytes> frames;
    for (Bytes tail : tails) {
        frames.push_back(concat({sv, repeat(0xFF, 40)}));
        tail.resize(40, 0xFF);
        frames.push_back(concat({sv, tail}));
        std::fill(tail.begin() + 30, tail.end(), std::uint8_t{0});
        frames.push_back(concat({sv, tail}));
    }
    expectEqualAndRemembered(roundsOf(frames, 30), 0.5);
}

TEST(HandMadeFrames, TailOfAsManyElementsAsAreLookedAt) {
    Bytes const sv = svFrame(svEthernet(), {});
    std::vector<Bytes> frames;
    for (std::size_t const size : {96U, 97U, 98U, 99U, 100U, 102U}) {
        Bytes tail = repeat(0xFF, size);
        frames.push_back(concat({sv, tail}));
        tail.assign(size, 0);
        frames.push_back(concat({sv, tail}));
        for (std::size_t at = 88; at + 1 < size; ++at) {
            Bytes late = tail;
            late[at] = 0x80;  // noASDU, if an element begins here and is looked at
            late[at + 1] = 0x01;
            frames.push_back(concat({sv, late}));
        }
    }
    expectEqualAndRemembered(roundsOf(frames, 20), 0.4);
}

// --- Numbers -----------------------------------------------------------------------------------

TEST(HandMadeFrames, SmpCntOfEverySizeCounts) {
    for (auto const& [name, frame] : oddFrames()) {
        if (name.find("smpCnt") == std::string::npos) continue;
        auto const at = find(frame, {0x12, 0x34});
        if (!at) continue;
        CaptureBuilder capture;
        std::uint16_t number = 0;
        for (std::uint32_t i = 0; i < 200; ++i, number = static_cast<std::uint16_t>(number + 997))
            capture.add(i, 0, numbered(frame, *at, number));
        expectEqualAndRemembered(capture.bytes(), 0.9, {}, name);
    }
}

TEST(HandMadeFrames, SmpRateInSomeFramesOnly) {
    std::vector<Bytes> frames;
    for (unsigned const rate : {4000U, 4800U, 0U}) {
        SvMessage message;
        if (rate != 0) message.asdus[0].smpRate = rate;
        for (std::uint16_t number = 0; number < 5; ++number) {
            message.asdus[0].smpCnt = static_cast<std::uint64_t>(number) * 7;
            message.noASDU = MinimalUnsigned(number);
            frames.push_back(svFrame(svEthernet(), message));
        }
        expectEqualAndRemembered(roundsOf(frames, 40), 0.9);
    }
}

TEST(HandMadeFrames, TimesBeyondTheirUnit) {
    for (CaptureVariant const variant : captureVariants) {
        CaptureBuilder capture(variant);
        Bytes const frame = gooseFrame({}, {});
        for (std::uint32_t i = 0; i < 40; ++i) {
            auto const bytes = bigEndian(0xFFFFFFFFU - i * 99'999'999U, 4);
            capture.addRaw(concat({bytes, bytes}));
            auto const header =
                recordHeader(variant, 0, 0, static_cast<std::uint32_t>(frame.size()),
                             static_cast<std::uint32_t>(frame.size()));
            capture.addRaw(Bytes(header.begin() + 8, header.end())).addRaw(frame);
        }
        expectEqualAndRemembered(capture.bytes(), 0.9);
    }
}

TEST(HandMadeFrames, MoreThanTheFileHolds) {
    for (auto const& [name, frame] : deviceFrames()) {
        CaptureBuilder capture;
        for (std::uint32_t i = 0; i < 6; ++i) capture.add(i, 0, frame);
        for (std::size_t held = 0; held < frame.size(); ++held)
            for (std::size_t const more : {0U, 1U, 300U}) {
                CaptureBuilder cut = capture;
                cut.addClaiming(9, 0, static_cast<std::uint32_t>(frame.size() + more),
                                prefix(frame, held));
                ASSERT_EQ(indexByBothLanes(cut.bytes()).difference, "")
                    << name << ", " << held << " octets of " << frame.size() + more;
            }
    }
}

}  // namespace
}  // namespace TalTest::HandMadeFramesTest
