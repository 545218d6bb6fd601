#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Parser/codec/Asn1Parser.hpp>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

namespace TalTest::Asn1ParserParseTagTest {
namespace {

using TalIec61850Parser::Asn1Parser;
using TalIec61850Parser::Asn1Tag;
using Bytes = std::vector<std::uint8_t>;

static_assert(std::is_aggregate_v<Asn1Tag>);
static_assert(std::is_same_v<decltype(Asn1Tag::tag), std::uint8_t>);
static_assert(std::is_same_v<decltype(Asn1Tag::length), std::uint32_t>);
static_assert(std::is_same_v<decltype(Asn1Tag::value), std::vector<std::uint8_t>>);
static_assert(std::is_same_v<decltype(Asn1Tag::totalLength), std::size_t>);
static_assert(std::is_same_v<decltype(Asn1Parser::bytesToUint32(Bytes{})), std::uint32_t>);
static_assert(std::is_same_v<decltype(Asn1Parser::bytesToUint16(Bytes{})), std::uint16_t>);
static_assert(std::is_same_v<decltype(Asn1Parser::bytesToUint8(Bytes{})), std::uint8_t>);

/// What one call of parseTag did to a record that held other things before.
struct Outcome {
    bool ok = false;
    std::size_t position = 0;
    Asn1Tag tag;
};

Asn1Tag previousTag() {
    return {.tag = 0xEE, .length = 3, .value = {0x11, 0x22, 0x33}, .totalLength = 77};
}

Outcome parse(Bytes const& data, std::size_t position = 0) {
    Outcome outcome{.position = position, .tag = previousTag()};
    outcome.ok = Asn1Parser::parseTag(data, outcome.position, outcome.tag);
    return outcome;
}

void expectElement(Outcome const& outcome, std::uint8_t tag, Bytes const& value,
                   std::size_t headerSize, std::size_t start = 0) {
    EXPECT_TRUE(outcome.ok);
    EXPECT_EQ(outcome.tag.tag, tag);
    EXPECT_EQ(outcome.tag.length, value.size());
    EXPECT_EQ(outcome.tag.value, value);
    EXPECT_EQ(outcome.tag.totalLength, headerSize + value.size());
    EXPECT_EQ(outcome.position, start + headerSize + value.size());
}

void expectFailure(Outcome const& outcome, std::size_t position, std::uint8_t tag) {
    Asn1Tag const previous = previousTag();
    EXPECT_FALSE(outcome.ok);
    EXPECT_EQ(outcome.position, position);
    EXPECT_EQ(outcome.tag.tag, tag);
    EXPECT_EQ(outcome.tag.length, previous.length);
    EXPECT_EQ(outcome.tag.value, previous.value);
    EXPECT_EQ(outcome.tag.totalLength, previous.totalLength);
}

Bytes operator+(Bytes left, Bytes const& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

/// Octets whose contents show which of them they are.
Bytes counting(std::size_t size) {
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i) {
        bytes[i] = static_cast<std::uint8_t>(i * 7 + i / 256 + 1);
    }
    return bytes;
}

/// The length field of `count` further octets, leading zeros included.
Bytes longForm(std::size_t length, unsigned count) {
    Bytes field{static_cast<std::uint8_t>(0x80U | count)};
    for (unsigned i = count; i > 0; --i) {
        field.push_back(static_cast<std::uint8_t>(length >> (8 * (i - 1))));
    }
    return field;
}

bool fits(std::size_t length, unsigned count) { return (length >> (8 * count)) == 0; }

constexpr std::uint8_t kOldTag = 0xEE;

TEST(Asn1Tag, IsMadeEmpty) {
    Asn1Tag const tag;
    EXPECT_EQ(tag.tag, 0);
    EXPECT_EQ(tag.length, 0U);
    EXPECT_TRUE(tag.value.empty());
    EXPECT_EQ(tag.totalLength, 0U);
}

TEST(Asn1ParserParseTag, ReadsAnEmptyElement) { expectElement(parse({0x30, 0x00}), 0x30, {}, 2); }

TEST(Asn1ParserParseTag, ReadsAShortForm) {
    expectElement(parse({0x85, 0x03, 0xAA, 0xBB, 0xCC, 0xDD}), 0x85, {0xAA, 0xBB, 0xCC}, 2);
}

TEST(Asn1ParserParseTag, ReadsALongFormOfOneOctet) {
    expectElement(parse({0x80, 0x81, 0x05, 1, 2, 3, 4, 5}), 0x80, {1, 2, 3, 4, 5}, 3);
}

TEST(Asn1ParserParseTag, ReadsFromThePositionOnward) {
    Bytes const data{0xFF, 0xFF, 0x83, 0x02, 0x10, 0x20, 0x84, 0x00};
    Outcome outcome = parse(data, 2);
    expectElement(outcome, 0x83, {0x10, 0x20}, 2, 2);
    expectElement(parse(data, outcome.position), 0x84, {}, 2, 6);
}

TEST(Asn1ParserParseTag, KeepsEveryIdentifierOctetAsItStands) {
    for (unsigned octet = 0; octet <= 0xFF; ++octet) {
        auto const identifier = static_cast<std::uint8_t>(octet);
        SCOPED_TRACE(octet);
        expectElement(parse({identifier, 0x01, 0x5A}), identifier, {0x5A}, 2);
    }
}

TEST(Asn1ParserParseTag, TakesTheOctetBehindAHighTagNumberAsTheLength) {
    expectElement(parse({0x1F, 0x81, 0x01, 0x5A}), 0x1F, {0x5A}, 3);
    expectElement(parse({0xBF, 0x02, 0x81, 0x01}), 0xBF, {0x81, 0x01}, 2);
}

TEST(Asn1ParserParseTag, ReadsEveryLengthAroundAPowerOfTwoInEveryFormThatHoldsIt) {
    for (std::size_t power = 1; power <= 0x10000; power *= 2) {
        for (std::size_t const length : {power - 1, power, power + 1}) {
            Bytes const value = counting(length);
            if (length < 0x80) {
                expectElement(parse(Bytes{0x04, static_cast<std::uint8_t>(length)} + value), 0x04,
                              value, 2);
            }
            for (unsigned count = 1; count <= 4; ++count) {
                if (!fits(length, count)) {
                    continue;
                }
                SCOPED_TRACE(testing::Message() << length << " in " << count << " octets");
                Bytes const header = Bytes{0x04} + longForm(length, count);
                expectElement(parse(header + value), 0x04, value, header.size());
                if (length > 0) {
                    Bytes cut = header + value;
                    cut.pop_back();
                    expectFailure(parse(cut), header.size(), 0x04);
                }
            }
        }
    }
}

TEST(Asn1ParserParseTag, ReadsALengthThatNeedsFourOctets) {
    Bytes const value = counting(0x1000001);
    expectElement(parse(Bytes{0xA2, 0x84, 0x01, 0x00, 0x00, 0x01} + value), 0xA2, value, 6);
}

TEST(Asn1ParserParseTag, ReadsLeadingZeroLengthOctets) {
    expectElement(parse({0x84, 0x84, 0x00, 0x00, 0x00, 0x03, 0xAA, 0xBB, 0xCC}), 0x84,
                  {0xAA, 0xBB, 0xCC}, 6);
    expectElement(parse({0x84, 0x83, 0x00, 0x00, 0x00}), 0x84, {}, 5);
    expectElement(parse({0x84, 0x82, 0x00, 0x01, 0x09}), 0x84, {0x09}, 4);
    expectElement(parse({0x84, 0x81, 0x00}), 0x84, {}, 3);
}

TEST(Asn1ParserParseTag, ReadsTheIndefiniteFormAsAnEmptyElement) {
    expectElement(parse({0xA0, 0x80}), 0xA0, {}, 2);
    expectElement(parse({0xA0, 0x80, 0x04, 0x01, 0x7F, 0x00, 0x00}), 0xA0, {}, 2);
}

TEST(Asn1ParserParseTag, RefusesMoreThanFourLengthOctets) {
    expectFailure(parse({0x84, 0x85, 0x00, 0x00, 0x00, 0x00, 0x00}), 2, 0x84);
    for (unsigned first = 0x85; first <= 0xFF; ++first) {
        SCOPED_TRACE(first);
        Bytes const data = Bytes{0x84, static_cast<std::uint8_t>(first)} + Bytes(200, 0x00);
        expectFailure(parse(data), 2, 0x84);
    }
}

TEST(Asn1ParserParseTag, RefusesALengthOctetThatIsNotThere) {
    for (unsigned count = 1; count <= 4; ++count) {
        for (unsigned present = 0; present < count; ++present) {
            SCOPED_TRACE(testing::Message() << present << " of " << count);
            Bytes const header{0x82, static_cast<std::uint8_t>(0x80U | count)};
            expectFailure(parse(header + Bytes(present, 0x00)), 2, 0x82);
        }
    }
}

TEST(Asn1ParserParseTag, RefusesAValueThatRunsPastTheEnd) {
    expectFailure(parse(Bytes{0x84, 0x82, 0x01, 0x00} + Bytes(255, 0x33)), 4, 0x84);
    expectFailure(parse({0x84, 0x01}), 2, 0x84);
    expectFailure(parse({0x84, 0x7F, 0x00}), 2, 0x84);
}

TEST(Asn1ParserParseTag, RefusesTheLargestLengths) {
    expectFailure(parse({0x84, 0x84, 0xFF, 0xFF, 0xFF, 0xFF, 0x01, 0x02}), 6, 0x84);
    expectFailure(parse({0x84, 0x84, 0xFF, 0xFF, 0xFF, 0xFA}), 6, 0x84);
    expectFailure(parse({0x84, 0x84, 0x80, 0x00, 0x00, 0x00}), 6, 0x84);
    expectFailure(parse({0x84, 0x84, 0x7F, 0xFF, 0xFF, 0xFF}), 6, 0x84);
    expectFailure(parse({0x84, 0x83, 0xFF, 0xFF, 0xFF}), 5, 0x84);
}

TEST(Asn1ParserParseTag, ChangesNothingAtOrPastTheEnd) {
    Bytes const data{0x30, 0x00, 0x30, 0x00};
    constexpr std::size_t last = std::numeric_limits<std::size_t>::max();
    for (std::size_t const position : {std::size_t{4}, std::size_t{5}, std::size_t{1} << 32U,
                                       last / 2, last / 2 + 1, last - 1, last}) {
        SCOPED_TRACE(position);
        expectFailure(parse(data, position), position, kOldTag);
    }
    expectFailure(parse({}), 0, kOldTag);
    expectFailure(parse({}, last), last, kOldTag);
}

TEST(Asn1ParserParseTag, StoresALoneIdentifier) {
    expectFailure(parse({0x30}), 1, 0x30);
    expectFailure(parse({0x30, 0x00, 0x61}, 2), 3, 0x61);
}

TEST(Asn1ParserParseTag, FailsOnEveryTruncation) {
    for (Bytes const& header : std::vector<Bytes>{{0x82, 0x06},
                                                  {0x82, 0x81, 0x06},
                                                  {0x82, 0x82, 0x00, 0x06},
                                                  {0x82, 0x83, 0x00, 0x00, 0x06},
                                                  {0x82, 0x84, 0x00, 0x00, 0x00, 0x06}}) {
        Bytes const whole = header + Bytes{'G', 'O', 'O', 'S', 'E', '1'};
        expectElement(parse(whole), 0x82, {'G', 'O', 'O', 'S', 'E', '1'}, header.size());
        for (std::size_t size = 0; size < whole.size(); ++size) {
            SCOPED_TRACE(testing::Message() << "first " << size << " of " << whole.size());
            std::size_t const stop = size < 2               ? size
                                     : size < header.size() ? std::size_t{2}
                                                            : header.size();
            Bytes const prefix(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
            expectFailure(parse(prefix), stop, size == 0 ? kOldTag : std::uint8_t{0x82});
        }
    }
}

TEST(Asn1ParserParseTag, ReplacesALongerPreviousValue) {
    Asn1Tag tag{.tag = 0, .length = 9, .value = Bytes(9, 0xEE), .totalLength = 11};
    std::size_t position = 0;
    ASSERT_TRUE(Asn1Parser::parseTag({0x80, 0x02, 0x01, 0x02}, position, tag));
    EXPECT_EQ(tag.value, (Bytes{0x01, 0x02}));
    position = 0;
    ASSERT_TRUE(Asn1Parser::parseTag({0x80, 0x00}, position, tag));
    EXPECT_EQ(tag.value, Bytes{});
}

TEST(Asn1ParserParseTag, ReusesTheStorageOfAValueThatIsLargeEnough) {
    Asn1Tag tag;
    tag.value.reserve(64);
    std::uint8_t const* const storage = tag.value.data();
    std::size_t position = 0;
    ASSERT_TRUE(Asn1Parser::parseTag(Bytes{0x80, 0x40} + counting(64), position, tag));
    EXPECT_EQ(tag.value.data(), storage);
}

TEST(Asn1ParserParseTag, StepsThroughElementsOneAfterAnother) {
    Bytes const data{0x80, 0x01, 0x41, 0xA1, 0x81, 0x02, 0x04, 0x00, 0x85, 0x00, 0x86};
    std::vector<std::pair<std::uint8_t, Bytes>> elements;
    std::size_t position = 0;
    Asn1Tag tag;
    while (Asn1Parser::parseTag(data, position, tag)) {
        elements.emplace_back(tag.tag, tag.value);
    }
    std::vector<std::pair<std::uint8_t, Bytes>> const expected{
        {0x80, {0x41}}, {0xA1, {0x04, 0x00}}, {0x85, {}}};
    EXPECT_EQ(elements, expected);
    EXPECT_EQ(tag.tag, 0x86);
    EXPECT_EQ(position, data.size());
}

/// Where reading an element ends, and where its value starts if there is one.
struct Reading {
    std::size_t position = 0;
    std::optional<std::size_t> valueStart;
};

Reading readElement(Bytes const& data, std::size_t start) {
    std::size_t const left = start < data.size() ? data.size() - start : 0;
    if (left < 2) {
        return {start + left, {}};
    }
    std::uint8_t const first = data[start + 1];
    std::size_t const octets = first < 0x80 ? 0 : first - std::size_t{0x80};
    if (octets > 4 || left - 2 < octets) {
        return {start + 2, {}};
    }
    std::uint64_t length = first < 0x80 ? first : 0;
    for (std::size_t i = 0; i < octets; ++i) {
        length = length * 256 + data[start + 2 + i];
    }
    std::size_t const valueStart = start + 2 + octets;
    if (length > data.size() - valueStart) {
        return {valueStart, {}};
    }
    return {valueStart + length, valueStart};
}

void agreesWithTheReference(Bytes const& data, std::size_t start) {
    Reading const expected = readElement(data, start);
    Outcome const outcome = parse(data, start);
    RC_ASSERT(outcome.ok == expected.valueStart.has_value());
    RC_ASSERT(outcome.position == expected.position);
    RC_ASSERT(outcome.tag.tag == (start < data.size() ? data[start] : kOldTag));
    if (expected.valueStart) {
        auto const begin = data.begin() + static_cast<std::ptrdiff_t>(*expected.valueStart);
        auto const end = data.begin() + static_cast<std::ptrdiff_t>(expected.position);
        RC_ASSERT(outcome.tag.value == Bytes(begin, end));
        RC_ASSERT(outcome.tag.length == outcome.tag.value.size());
        RC_ASSERT(outcome.tag.totalLength == expected.position - start);
    } else {
        RC_ASSERT(outcome.tag.value == previousTag().value);
        RC_ASSERT(outcome.tag.length == previousTag().length);
        RC_ASSERT(outcome.tag.totalLength == previousTag().totalLength);
    }
}

RC_GTEST_PROP(Asn1ParserParseTag, AgreesWithTheReferenceOnAnyOctets, (Bytes const& data)) {
    for (std::size_t start = 0; start <= data.size() + 1; ++start) {
        agreesWithTheReference(data, start);
    }
}

RC_GTEST_PROP(Asn1ParserParseTag, AgreesWithTheReferenceOnLikelyLengths, (Bytes const& rest)) {
    auto const first =
        *rc::gen::weightedOneOf<std::uint8_t>({{1, rc::gen::arbitrary<std::uint8_t>()},
                                               {4, rc::gen::inRange<std::uint8_t>(0, 20)},
                                               {8, rc::gen::inRange<std::uint8_t>(0x80, 0x86)}});
    auto const field = *rc::gen::container<Bytes>(
        rc::gen::weightedOneOf<std::uint8_t>({{1, rc::gen::arbitrary<std::uint8_t>()},
                                              {3, rc::gen::just(std::uint8_t{0})},
                                              {3, rc::gen::inRange<std::uint8_t>(0, 30)}}));
    agreesWithTheReference(Bytes{0x61, first} + field + rest, 0);
}

TEST(Asn1ParserIntegers, Uint32TakesUpToFourOctets) {
    EXPECT_EQ(Asn1Parser::bytesToUint32({}), 0U);
    EXPECT_EQ(Asn1Parser::bytesToUint32({0xFE}), 0xFEU);
    EXPECT_EQ(Asn1Parser::bytesToUint32({0x80, 0x01}), 0x8001U);
    EXPECT_EQ(Asn1Parser::bytesToUint32({0x01, 0x02, 0x03}), 66051U);
    EXPECT_EQ(Asn1Parser::bytesToUint32({0xFF, 0xFF, 0xFF, 0xFF}), 0xFFFFFFFFU);
}

TEST(Asn1ParserIntegers, Uint32IgnoresOctetsBehindTheFourth) {
    EXPECT_EQ(Asn1Parser::bytesToUint32({0x01, 0x02, 0x03, 0x04, 0x05}), 0x01020304U);
    EXPECT_EQ(Asn1Parser::bytesToUint32({0x00, 0x00, 0x00, 0x2A, 0x2B}), 42U);
    EXPECT_EQ(Asn1Parser::bytesToUint32({0x00, 0x00, 0x00, 0x00, 0x2A}), 0U);
}

TEST(Asn1ParserIntegers, Uint16NeedsTwoOctets) {
    EXPECT_EQ(Asn1Parser::bytesToUint16({}), 0U);
    EXPECT_EQ(Asn1Parser::bytesToUint16({0x05}), 0U);
    EXPECT_EQ(Asn1Parser::bytesToUint16({0x07}), 0U);
    EXPECT_EQ(Asn1Parser::bytesToUint16({0x12, 0x34}), 0x1234U);
    EXPECT_EQ(Asn1Parser::bytesToUint16({0xFF, 0xFF}), 0xFFFFU);
    EXPECT_EQ(Asn1Parser::bytesToUint16({0x12, 0x34, 0x56}), 0x1234U);
}

TEST(Asn1ParserIntegers, Uint8TakesTheFirstOctet) {
    EXPECT_EQ(Asn1Parser::bytesToUint8({}), 0U);
    EXPECT_EQ(Asn1Parser::bytesToUint8({0xFF}), 0xFFU);
    EXPECT_EQ(Asn1Parser::bytesToUint8({0x01, 0xFF, 0xFF}), 0x01U);
}

RC_GTEST_PROP(Asn1ParserIntegers, ReadTheLeadingOctetsMostSignificantFirst, (Bytes const& bytes)) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < bytes.size() && i < 4; ++i) {
        value = value * 256 + bytes[i];
    }
    RC_ASSERT(Asn1Parser::bytesToUint32(bytes) == value);
    RC_ASSERT(Asn1Parser::bytesToUint16(bytes) ==
              (bytes.size() < 2 ? 0 : bytes[0] * 256 + bytes[1]));
    RC_ASSERT(Asn1Parser::bytesToUint8(bytes) == (bytes.empty() ? 0 : bytes[0]));
}

}  // namespace
}  // namespace TalTest::Asn1ParserParseTagTest
