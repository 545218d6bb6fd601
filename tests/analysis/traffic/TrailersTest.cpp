// PRP trailers of every number and signatures of any octets: whatever comes after the PDU, packets
// are those of their stream, and no stream is made up. The index and views of single frames agree.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/packet/GooseView.hpp>
#include <TalIec61850Analysis/packet/SvView.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/traffic/TrafficCaptures.hpp"
#include "support/Sanitized.hpp"

namespace TalIec61850Analysis::TrailersTest {
namespace {

using namespace TalTest;

/// What a view of one frame shows of what the index keeps.
struct Seen {
    std::string_view name;
    std::size_t pduOffset = 0;
    std::size_t faults = 0;
    std::size_t trailing = 0;
    std::optional<PrpTrailer> prp;

    friend bool operator==(Seen const&, Seen const&) = default;
};

template <typename View>
Seen seenOf(View const& view, std::string_view name, std::size_t pduOffset) {
    Seen seen{.name = name,
              .pduOffset = pduOffset,
              .trailing = view.trailing.size(),
              .prp = view.header.prp};
    view.visitFaults([&](Fault const&) { ++seen.faults; });
    return seen;
}

Seen seenOf(GooseView const& view) {
    return seenOf(view, view.gocbRef.value_or(""), view.pdu ? view.pdu->offset : 0);
}

Seen seenOf(SvView const& view) {
    std::string_view name;
    for (AsduView const& asdu : view.asdus) name = asdu.svID.value_or("");
    return seenOf(view, name, view.sequence ? view.sequence->offset : 0);
}

/// A publisher whose frames differ in what comes after the PDU.
struct Publisher {
    bool isGoose = true;
    /// Frames of less than 54 octets: with a PRP trailer, they are filled up to 60.
    bool isShort = false;

    [[nodiscard]] std::string_view name() const { return isGoose ? "A/LLN0$GO$b" : "MU7"; }
    /// Where an index is to place the packets: at the goosePdu, or the sequence of ASDU.
    [[nodiscard]] std::size_t place() const {
        return 22 + (isGoose ? 0 : sequenceOffset(SvMessage()));
    }

    /// @param trailing  what follows the PDU
    [[nodiscard]] Bytes frame(Ethernet const& ethernet, Bytes const& trailing = {}) const {
        if (!isGoose) {
            SvMessage message;
            message.asdus[0].svID = name();
            message.trailing = trailing;
            if (isShort) message.asdus[0].seqData.reset();
            return svFrame(ethernet.to("01:0c:cd:04:00:01"), message);
        }
        GooseMessage message;
        message.gocbRef = name();
        message.trailing = trailing;
        if (isShort) {
            message.timeAllowedtoLive.reset();
            message.datSet.reset();
            message.goID.reset();
            message.t.reset();
            message.simulation.reset();
            message.ndsCom.reset();
            message.numDatSetEntries.reset();
            message.allData.reset();
        }
        return gooseFrame(ethernet, message);
    }
    /// What a frame shows after whose PDU nothing is.
    [[nodiscard]] Seen bare() const {
        Bytes const plain = frame({});
        Seen seen = isGoose ? seenOf(viewGoose(plain)) : seenOf(viewSv(plain));
        seen.name = name();
        return seen;
    }
    /// Whether a frame shows this, read by its own rules and from the place that an index has.
    [[nodiscard]] bool shows(Bytes const& octets, Seen const& expected) const {
        return isGoose ? seenOf(viewGoose(octets)) == expected &&
                             seenOf(viewGoose(octets, expected.pduOffset)) == expected
                       : seenOf(viewSv(octets)) == expected &&
                             seenOf(viewSv(octets, expected.pduOffset)) == expected;
    }
};

/// One of so many frames is viewed; all are indexed. Sanitizers take several times the time.
constexpr std::size_t kViewedOf = isSanitized ? 16 : 1;

class PrpTraffic : public testing::TestWithParam<Publisher> {};

TEST_P(PrpTraffic, OfAllSequenceNumbersOverBothLansIsOneStreamOfPacketsAndCopies) {
    constexpr std::uint32_t kNumbers = 0x10000;
    constexpr std::size_t kTrailerSize = 6;
    constexpr std::size_t kLeastFrame = 60;
    constexpr std::size_t kLsduOffset = 14;
    Publisher const publisher = GetParam();
    std::size_t const plainSize = publisher.frame({}).size();
    ASSERT_EQ(plainSize + kTrailerSize < kLeastFrame, publisher.isShort);
    TrafficCapture capture;
    std::size_t wrong = 0;
    Seen expected = publisher.bare();
    Bytes const a = publisher.frame(Ethernet().withPrp('A').withPadding());
    Bytes const b = publisher.frame(Ethernet().withPrp('B').withPadding());
    expected.trailing = a.size() - kTrailerSize - plainSize;
    for (std::uint32_t number = 0; number < kNumbers; ++number) {
        for (Bytes frame : {a, b}) {
            std::size_t const trailer = frame.size() - kTrailerSize;
            frame[trailer] = static_cast<std::uint8_t>(number >> 8U);
            frame[trailer + 1] = static_cast<std::uint8_t>(number & 0xFFU);
            bool const isA = frame[trailer + 2] >> 4U == 0xA;
            expected.prp = {.sequence = static_cast<std::uint16_t>(number),
                            .lanId = static_cast<std::uint8_t>(isA ? 0xA : 0xB),
                            .lsduSize = static_cast<std::uint16_t>(frame.size() - kLsduOffset)};
            if (number % kViewedOf == 0) wrong += publisher.shows(frame, expected) ? 0U : 1U;
            capture.add(frame);
        }
    }
    EXPECT_EQ(wrong, 0U);
    TrafficIndex const index = capture.index();
    ASSERT_EQ(index.streams().size(), 1U);
    TrafficStream const& stream = index.streams()[0];
    EXPECT_EQ(stream.key.name, publisher.name());
    EXPECT_EQ(stream.packets, kNumbers);
    EXPECT_EQ(stream.copies, kNumbers);
    EXPECT_EQ(stream.duplicates, 0U);
    EXPECT_TRUE(index.files()[0].summary.unread.empty());
    PacketColumns const& packets = stream.parts[0].packets;
    ASSERT_EQ(packets.size(), 2 * kNumbers);
    EXPECT_EQ(stream.parts[0].changes.size(), 1U);
    for (std::size_t i = 0; i < packets.size(); ++i) {
        PacketFlags const flags = packets.flags()[i];
        ASSERT_EQ(packets.redundancySequences()[i], i / 2);
        ASSERT_EQ(flags.redundancy(), Redundancy::prp);
        ASSERT_EQ(flags.lane(), i % 2 == 0 ? 'A' : 'B');
        ASSERT_EQ(flags.isCopy(), i % 2 == 1);
        ASSERT_FALSE(flags.isDamaged());
        ASSERT_EQ(packets.pduOffsets()[i], publisher.place());
    }
}

INSTANTIATE_TEST_SUITE_P(Frames, PrpTraffic,
                         testing::Values(Publisher{true, false}, Publisher{false, false},
                                         Publisher{true, true}, Publisher{false, true}),
                         [](auto const& publisher) {
                             return std::string(publisher.param.isShort ? "Short" : "Long") +
                                    (publisher.param.isGoose ? "Goose" : "Sv");
                         });

TEST(SignedTraffic, OfAnySignaturesIsOfTheStreamsOfItsPublishers) {
    constexpr std::uint32_t kSeed = 61850;
    constexpr std::size_t kFrames = 100'000;
    constexpr std::size_t kLongestSignature = 64;
    RecordProperty("seed", static_cast<int>(kSeed));
    std::mt19937 random(kSeed);
    std::array<Publisher, 2> const publishers = {Publisher{true, false}, Publisher{false, false}};
    TrafficCapture capture;
    std::size_t wrong = 0;
    for (Publisher const& publisher : publishers) {
        // By the size of the signature.
        std::vector<Bytes> frames;
        for (std::size_t size = 0; size <= kLongestSignature; ++size)
            frames.push_back(publisher.frame({}, Bytes(size)));
        Seen expected = publisher.bare();
        for (std::size_t i = 0; i < kFrames; ++i) {
            expected.trailing = 1 + random() % kLongestSignature;
            Bytes& frame = frames[expected.trailing];
            for (std::size_t k = frame.size() - expected.trailing; k < frame.size(); ++k)
                frame[k] = static_cast<std::uint8_t>(random());
            if (i % kViewedOf == 0) wrong += publisher.shows(frame, expected) ? 0U : 1U;
            capture.add(frame);
        }
    }
    EXPECT_EQ(wrong, 0U) << "seed " << kSeed;
    TrafficIndex const index = capture.index();
    ASSERT_EQ(index.streams().size(), publishers.size()) << "seed " << kSeed;
    EXPECT_TRUE(index.files()[0].summary.unread.empty());
    for (std::size_t i = 0; i < publishers.size(); ++i) {
        TrafficStream const& stream = index.streams()[i];
        PacketColumns const& packets = stream.parts[0].packets;
        EXPECT_EQ(stream.key.name, publishers.at(i).name());
        EXPECT_EQ(stream.packets, kFrames);
        EXPECT_EQ(stream.parts[0].changes.size(), 1U);
        EXPECT_FALSE(packets.hasRedundancy());
        auto const places = packets.pduOffsets();
        EXPECT_TRUE(std::all_of(places.begin(), places.end(), [&](std::size_t place) {
            return place == publishers.at(i).place();
        }));
    }
}

}  // namespace
}  // namespace TalIec61850Analysis::TrailersTest
