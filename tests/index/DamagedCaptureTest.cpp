// A small capture with every octet changed and cut at every octet, against the plain index.

#include <gtest/gtest.h>

#include <TalIec61850Parser/capture/Filter.hpp>
#include <array>
#include <cstdint>
#include <string>

#include "index/IndexImage.hpp"
#include "index/Indexing.hpp"
#include "index/PlainIndex.hpp"
#include "support/CaptureFile.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"

namespace TalTest::DamagedCaptureTest {
namespace {

using namespace TalIec61850Parser;

GooseMessage smallGoose() {
    GooseMessage message;
    message.gocbRef = "C";
    message.datSet = "D";
    message.goID = "I";
    return message;
}

SvMessage smallSv() {
    SvMessage message;
    Asdu asdu;
    asdu.svID = "S";
    asdu.seqData = Bytes(4);
    asdu.smpRate = Unsigned<2>(80);
    asdu.smpCnt = Unsigned<2>(7);
    message.asdus = {asdu, asdu};
    message.asdus.back().svID = "T";
    return message;
}

/// One frame of each kind of link layer, two GOOSE and two SV.
Bytes smallCapture(CaptureVariant variant) {
    CaptureBuilder capture(variant);
    capture.add(1, 1000, gooseFrame(Ethernet().withVlan(5), smallGoose()));
    capture.add(2, 2000, svFrame(svEthernet().withPrp('B'), smallSv()));
    capture.add(3, 3000, gooseFrame(Ethernet().withHsr('B'), smallGoose()));
    capture.add(4, 4000, svFrame(svEthernet(), smallSv()));
    return capture.bytes();
}

/// Octets that mean something to a reader of captures, tags or BER, and those near the old one.
std::array<std::uint8_t, 20> replacementsFor(std::uint8_t octet) {
    auto const near = [octet](int step) { return static_cast<std::uint8_t>(octet + step); };
    return {near(1),
            near(-1),
            near(2),
            near(-2),
            near(16),
            static_cast<std::uint8_t>(octet ^ 0x80U),
            static_cast<std::uint8_t>(octet ^ 0x20U),
            0x00,
            0x01,
            0x30,
            0x60,
            0x61,
            0x7F,
            0x80,
            0x82,
            0x84,
            0x88,
            0x8B,
            0xA2,
            0xFF};
}

constexpr std::size_t largeRecord = std::size_t{1} << 20U;

/// Whether some record claims to be so large that indexing it would take long.
bool claimsALargeRecord(Bytes const& capture) {
    bool const little = capture.at(0) != 0xA1;
    for (std::size_t at = captureHeaderSize; at + recordHeaderSize <= capture.size();) {
        std::size_t size = 0;
        for (std::size_t i = 0; i < 4; ++i)
            size = size * 256 + capture[at + (little ? 11 - i : 8 + i)];
        if (size > largeRecord) return true;
        at += recordHeaderSize + size;
    }
    return false;
}

struct DamagedCapture : testing::TestWithParam<CaptureVariant> {
    /// What the library makes of a capture against what the plain index makes of it.
    std::string disagreementOn(Bytes const& capture, Filter const& filter = everything) {
        file.assign(capture);
        PlainIndex plain;
        plain.add(file.path(), capture, filter);
        return difference(libraryImage({file.path()}, filter), plain.image());
    }

    void expectAgreementOnEveryChange(Filter const& filter) {
        Bytes capture = smallCapture(GetParam());
        // Behind the magic number; another magic is none of a capture, and said so on stderr.
        for (std::size_t at = 4; at < capture.size(); ++at) {
            std::uint8_t const octet = capture[at];
            for (std::uint8_t const replacement : replacementsFor(octet)) {
                capture[at] = replacement;
                if (replacement == octet || claimsALargeRecord(capture)) continue;
                ASSERT_EQ(disagreementOn(capture, filter), "")
                    << "octet " << at << " from " << int{octet} << " to " << int{replacement};
            }
            capture[at] = octet;
        }
    }

    ScratchFile file;
};

INSTANTIATE_TEST_SUITE_P(Variants, DamagedCapture,
                         testing::Values(CaptureVariant::microLittle, CaptureVariant::nanoBig),
                         [](auto const& variant) { return name(variant.param); });

TEST_P(DamagedCapture, EqualsPlainIndexWhole) {
    EXPECT_EQ(disagreementOn(smallCapture(GetParam())), "");
    EXPECT_EQ(libraryImage({file.path()}).streams.size(), 3U)
        << "VLAN and HSR tell GOOSE streams apart here, PRP does not tell SV streams apart";
}

TEST_P(DamagedCapture, EqualsPlainIndexAfterEveryOneOctetChange) {
    expectAgreementOnEveryChange(everything);
}

TEST_P(DamagedCapture, EqualsPlainIndexAfterEveryOneOctetChangeThroughAFilter) {
    Filter filter;
    filter.gooseFilters.emplace_back().gocbRef = "C";
    filter.svFilters.emplace_back().svID = "S";
    filter.svFilters.emplace_back().svID = "T";
    expectAgreementOnEveryChange(filter);
}

TEST_P(DamagedCapture, EqualsPlainIndexWithEveryOctetRemoved) {
    Bytes const whole = smallCapture(GetParam());
    for (std::size_t at = captureHeaderSize; at < whole.size(); ++at) {
        Bytes capture = whole;
        capture.erase(capture.begin() + static_cast<std::ptrdiff_t>(at));
        if (claimsALargeRecord(capture)) continue;
        ASSERT_EQ(disagreementOn(capture), "") << "without octet " << at;
    }
}

TEST_P(DamagedCapture, EqualsPlainIndexCutAtEveryOctet) {
    Bytes const whole = smallCapture(GetParam());
    for (std::size_t size = 4; size <= whole.size(); ++size)
        ASSERT_EQ(disagreementOn(prefix(whole, size)), "") << "of " << size << " octets";
}

TEST_P(DamagedCapture, EqualsPlainIndexWithEveryFrameSnappedAtEveryOctet) {
    Bytes const frames[] = {gooseFrame(Ethernet().withVlan(5).withHsr('A'), smallGoose()),
                            svFrame(svEthernet().withPrp('A'), smallSv())};
    for (Bytes const& frame : frames) {
        CaptureBuilder capture(GetParam());
        for (std::uint32_t size = 0; size <= frame.size(); ++size)
            capture.addSnapped(size, 0, size, frame);
        ASSERT_EQ(disagreementOn(capture.bytes()), "");
    }
}

TEST_P(DamagedCapture, EqualsPlainIndexWhenTheLastRecordClaimsFarTooMuch) {
    Bytes const frame = svFrame(svEthernet(), smallSv());
    for (std::uint32_t const claimed : {0x100U, 0xFFFFU, 0x10000U, 0x100000U, 0xFFFFF0U}) {
        CaptureBuilder capture(GetParam());
        capture.addClaiming(1, 0, claimed, frame);
        ASSERT_EQ(disagreementOn(capture.bytes()), "") << claimed << " octets";
        ASSERT_EQ(libraryImage({file.path()}).streams.size(), 1U) << claimed << " octets";
    }
}

/// Frames of every size up to some 6000 octets and a few of 200,000: more than any read at once.
Bytes largeCapture(CaptureVariant variant) {
    CaptureBuilder capture(variant);
    for (std::uint32_t i = 0; i < 400; ++i) {
        GooseMessage message = smallGoose();
        message.trailing = Bytes(i % 100 == 99 ? 200'000 : i * 15);
        message.length = std::uint16_t{8};
        capture.add(i, 0, gooseFrame(Ethernet(), message));
    }
    return capture.bytes();
}

TEST_P(DamagedCapture, EqualsPlainIndexOverRecordsOfAllSizes) {
    EXPECT_EQ(disagreementOn(largeCapture(GetParam())), "");
    IndexImage const image = libraryImage({file.path()});
    ASSERT_EQ(image.streams.size(), 1U);
    EXPECT_EQ(image.streams.front().packetCount, 400U);
}

TEST_P(DamagedCapture, EqualsPlainIndexCutNearPowersOfTwo) {
    Bytes const whole = largeCapture(GetParam());
    for (std::size_t power = 4096; power < whole.size(); power *= 2)
        for (std::size_t size = power - 20; size <= power + 20; size += power > 65536 ? 5 : 1)
            ASSERT_EQ(disagreementOn(prefix(whole, size)), "") << "of " << size << " octets";
}

TEST_P(DamagedCapture, EqualsPlainIndexUnderTheMagicOfTheNextGeneration) {
    Bytes capture = smallCapture(GetParam());
    Bytes const magic = prefix(capture, 4);
    Bytes const nextGeneration = {0x0A, 0x0D, 0x0D, 0x0A};
    std::copy(nextGeneration.begin(), nextGeneration.end(), capture.begin());
    testing::internal::CaptureStderr();
    EXPECT_EQ(disagreementOn(capture), "");
    std::string const message = "Invalid PCAP file format\n";
    EXPECT_EQ(testing::internal::GetCapturedStderr(), message + message) << "read in both ways";
    std::copy(magic.begin(), magic.end(), capture.begin() + 8);
    EXPECT_EQ(disagreementOn(capture), "") << "a capture's magic in place of the byte-order mark";
}

}  // namespace
}  // namespace TalTest::DamagedCaptureTest
