// What a goosePdu's content decodes to, element by element. How it is found in its capture file:
// index/DecodeFileTest.cpp.

#include <gtest/gtest.h>

#include <TalIec61850Parser/goose/GooseParser.hpp>
#include <TalIec61850Parser/goose/GoosePdu.hpp>
#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include "goose/GoosePduText.hpp"
#include "support/Ber.hpp"
#include "support/Goose.hpp"
#include "support/TempFile.hpp"

namespace TalTest::GoosePduTest {
namespace {

using namespace TalIec61850Parser;

static_assert(std::is_same_v<decltype(GoosePdu::gocbRef), std::string>);
static_assert(std::is_same_v<decltype(GoosePdu::timeAllowedToLive), std::string>);
static_assert(std::is_same_v<decltype(GoosePdu::datSet), std::string>);
static_assert(std::is_same_v<decltype(GoosePdu::goID), std::string>);
static_assert(std::is_same_v<decltype(GoosePdu::t), std::string>);
static_assert(std::is_same_v<decltype(GoosePdu::stNum), std::string>);
static_assert(std::is_same_v<decltype(GoosePdu::sqNum), std::string>);
static_assert(std::is_same_v<decltype(GoosePdu::simulation), std::string>);
static_assert(std::is_same_v<decltype(GoosePdu::confRev), std::string>);
static_assert(std::is_same_v<decltype(GoosePdu::ndsCom), std::string>);
static_assert(std::is_same_v<decltype(GoosePdu::numDatSetEntries), std::string>);
static_assert(std::is_same_v<decltype(GoosePdu::allData), std::vector<std::uint8_t>>);
static_assert(std::is_copy_constructible_v<GoosePdu> &&
              std::is_nothrow_move_constructible_v<GoosePdu>);
static_assert(std::is_same_v<decltype(&GooseParser::parseGoosePDUFromFile),
                             GoosePdu (*)(std::string const&, std::uint64_t)>);
static_assert(std::is_same_v<decltype(&GooseParser::_parseGoosePdu),
                             bool (*)(std::vector<std::uint8_t> const&, GoosePdu&)>);

constexpr std::uint8_t kAllData = 0xAB;

/// What a content decodes to, and whether 50 elements were met.
struct Decoded {
    explicit Decoded(Bytes const& content) : full(GooseParser::_parseGoosePdu(content, pdu)) {}

    GoosePdu pdu = {};
    bool full;
};

GoosePdu decoded(Bytes const& content) { return Decoded(content).pdu; }

/// What the field of a tag number holds; that of allData as text.
std::string field(GoosePdu const& pdu, std::size_t number) {
    std::vector<std::string> const fields = {pdu.gocbRef,
                                             pdu.timeAllowedToLive,
                                             pdu.datSet,
                                             pdu.goID,
                                             pdu.t,
                                             pdu.stNum,
                                             pdu.sqNum,
                                             pdu.simulation,
                                             pdu.confRev,
                                             pdu.ndsCom,
                                             pdu.numDatSetEntries,
                                             std::string(pdu.allData.begin(), pdu.allData.end())};
    return fields.at(number);
}

/// stNum 9: whether an element is reached is seen by this one after it.
Bytes const kMark = ber(0x85, {0x09});

TEST(GoosePdu, IsEmptyWhenMade) { EXPECT_EQ(textOf(GoosePdu{}), ""); }

TEST(GoosePdu, HoldsItsFieldsInTheOrderOfTheirTags) {
    GoosePdu const pdu{"0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "10", {'1', '1'}};
    for (std::size_t number = 0; number < 12; ++number)
        EXPECT_EQ(field(pdu, number), std::to_string(number));
    EXPECT_EQ(pdu.timeAllowedToLive + pdu.t + pdu.confRev + pdu.numDatSetEntries, "14810");
}

TEST(GoosePduContent, FillsAllTwelveFields) {
    GooseMessage message;
    message.t = Bytes{0x41, 0xD9, 0x54, 0xFC, 0x40, 0x30, 0x00, 0x00};
    message.stNum = 7;
    message.sqNum = {260, 2};
    message.simulation = true;
    message.confRev = 200;
    message.setData({dataBoolean(true), dataInteger(-3)});
    Bytes const pdu = goosePdu(message);
    TempFile const file(pdu);
    EXPECT_EQ(textOf(GooseParser::parseGoosePDUFromFile(file.path(), 0)),
              "gocbRef = RELAY1LD0/LLN0$GO$gcb1\ntimeAllowedToLive = 2000\n"
              "datSet = RELAY1LD0/LLN0$dataSet1\ngoID = RELAY1_gcb1\n"
              "t = 2023-11-14 22:13:20 UTC\nstNum = 7\nsqNum = 260\nsimulation = true\n"
              "confRev = 200\nndsCom = false\nnumDatSetEntries = 2\nallData = 83 1 ff 85 1 fd");
}

TEST(GoosePduContent, LeavesFieldsEmptyThatDoNotOccur) {
    for (std::uint8_t tag = 0x80; tag <= 0x8B; ++tag) {
        GoosePdu const pdu = decoded(ber(tag, {0x31}));
        for (std::size_t number = 0; number < 12; ++number)
            EXPECT_EQ(field(pdu, number).empty(), number != tag - 0x80U) << int{tag};
    }
}

struct Rendering {
    std::uint8_t tag;
    Bytes value;
    std::string text;
};

void expectRenderings(std::vector<Rendering> const& renderings) {
    for (auto const& [tag, value, text] : renderings) {
        GoosePdu pdu = decoded(ber(tag, value));
        EXPECT_EQ(field(pdu, tag & 0x1FU), text) << "tag " << int{tag} << ", " << value.size();
    }
}

TEST(GoosePduContent, RendersTextsAndWhatIsNoText) {
    for (std::uint8_t const tag : Bytes{0x80, 0x82, 0x83}) {
        expectRenderings({{tag, {}, ""},
                          {tag, text("IED1/LLN0$GO$Ctl"), "IED1/LLN0$GO$Ctl"},
                          {tag, {0x47, 0x45, 0x00}, "[47 45 00]"},
                          {tag, {0x20, 0x7E}, " ~"},
                          {tag, {0x7F}, "[7F]"},
                          {tag, Bytes(127, 'x'), std::string(127, 'x')}});
    }
}

TEST(GoosePduContent, ReadsUpToFourOctetsOfTimeAllowedToLiveAndConfRev) {
    for (std::uint8_t const tag : Bytes{0x81, 0x88}) {
        expectRenderings({{tag, {}, "0"},
                          {tag, {0x2A}, "42"},
                          {tag, {0x01, 0x00}, "256"},
                          {tag, {0x01, 0x02, 0x03}, "66051"},
                          {tag, {0x80, 0x00, 0x00, 0x00}, "2147483648"},
                          {tag, {0xFF, 0xFF, 0xFF, 0xFF}, "4294967295"},
                          {tag, {0x00, 0x00, 0x00, 0x2A, 0x2B}, "42"},
                          {tag, {0x00, 0x00, 0x00, 0x00, 0x2A}, "0"}});
    }
}

TEST(GoosePduContent, ReadsStNumAndNumDatSetEntriesFromTheirFirstOctet) {
    for (std::uint8_t const tag : Bytes{0x85, 0x8A}) {
        expectRenderings({{tag, {}, "0"},
                          {tag, {0x07}, "7"},
                          {tag, {0xFF}, "255"},
                          {tag, {0x01, 0x2C}, "1"},
                          {tag, {0x00, 0xC8}, "0"},
                          {tag, {0x00, 0x00, 0x01, 0x2C}, "0"}});
    }
}

TEST(GoosePduContent, ReadsSqNumFromItsFirstTwoOctets) {
    expectRenderings({{0x86, {}, "0"},
                      {0x86, {0x05}, "0"},
                      {0x86, {0xFF}, "0"},
                      {0x86, {0x00, 0x05}, "5"},
                      {0x86, {0x01, 0x2C}, "300"},
                      {0x86, {0xFF, 0xFF}, "65535"},
                      {0x86, {0x01, 0x00, 0x00}, "256"},
                      {0x86, {0x00, 0x00, 0x00, 0x05}, "0"}});
    GoosePdu const pdu = decoded({0x85, 0x01, 0x05, 0x86, 0x01, 0x07});
    EXPECT_EQ(pdu.stNum, "5");
    EXPECT_EQ(pdu.sqNum, "0");
}

TEST(GoosePduContent, TakesAnythingButAZeroFirstOctetForTrue) {
    for (std::uint8_t const tag : Bytes{0x87, 0x89}) {
        expectRenderings({{tag, {}, "false"},
                          {tag, {0x00}, "false"},
                          {tag, {0x01}, "true"},
                          {tag, {0x02}, "true"},
                          {tag, {0xFF}, "true"},
                          {tag, {0x00, 0x01}, "false"},
                          {tag, {0x80, 0x00}, "true"}});
    }
}

TEST(GoosePduContent, RendersTheEventTimeByItsWidth) {
    expectRenderings({{0x84, {}, "Empty timestamp"},
                      {0x84, {0x65, 0x00, 0x00, 0x00}, "2023-09-12 06:06:56 UTC"},
                      {0x84, {0x01, 0xF4, 0x1E, 0x0C, 0x08, 0x0F}, "1984-01-15 08:12:30.500 UTC"},
                      {0x84, {0x65, 0x53, 0xF1, 0, 0x80, 0, 0, 0x0A}, "0x6553F1008000000A"},
                      {0x84, {0, 0, 0, 0, 0, 0, 0, 0}, "1970-01-01 00:00:00 UTC"},
                      {0x84, {0x01, 0x02, 0x03}, "0x010203"}});
}

TEST(GoosePduContent, CopiesAllDataUnchanged) {
    for (std::uint8_t const tag : Bytes{0x8B, 0xAB}) {
        EXPECT_EQ(decoded(ber(tag, {0x83, 0x01, 0x01})).allData, (Bytes{0x83, 0x01, 0x01}));
        EXPECT_EQ(decoded(ber(tag, {0x00})).allData, Bytes{0x00});
        EXPECT_EQ(decoded(ber(tag, repeat(0xFF, 127))).allData, repeat(0xFF, 127));
        EXPECT_EQ(decoded(ber(tag, {})).allData, Bytes{});
    }
}

TEST(GoosePduContent, DecodesLongLengthsOfAllData) {
    for (LengthForm const form : {LengthForm::oneOctet, LengthForm::twoOctets}) {
        for (std::size_t const size : {0UL, 1UL, 3UL, 127UL, 128UL, 255UL}) {
            Bytes const value = repeat(0x83, size);
            Decoded const result(concat({ber(kAllData, value, form), kMark}));
            EXPECT_EQ(result.pdu.allData, value);
            EXPECT_EQ(result.pdu.stNum, "9") << size;
        }
    }
    for (std::size_t const size : {256UL, 65535UL})
        EXPECT_EQ(decoded(ber(kAllData, repeat(1, size))).allData, repeat(1, size));
}

TEST(GoosePduContent, EndsAtOtherLongLengthsOfAllData) {
    for (unsigned octet = 0x80; octet <= 0xFF; ++octet) {
        if (octet == 0x81 || octet == 0x82) continue;
        Bytes const length = {static_cast<std::uint8_t>(octet)};
        Decoded const result(
            concat({ber(0x83, "I"), berClaiming(kAllData, length, Bytes(300)), kMark}));
        EXPECT_EQ(textOf(result.pdu), "goID = I\n") << octet;
        EXPECT_FALSE(result.full);
    }
    EXPECT_EQ(textOf(decoded({kAllData, 0x83, 0x00, 0x00, 0x01, 0x55})), "");
}

TEST(GoosePduContent, EndsWhereAllDataIsCutShort) {
    for (LengthForm const form :
         {LengthForm::shortest, LengthForm::oneOctet, LengthForm::twoOctets}) {
        Bytes const content = concat({ber(0x83, "I"), ber(kAllData, {0x83, 0x01, 0x01}, form)});
        for (std::size_t size = 3; size < content.size(); ++size) {
            Decoded const result(prefix(content, size));
            EXPECT_EQ(textOf(result.pdu), "goID = I\n") << size;
            EXPECT_FALSE(result.full);
        }
        EXPECT_EQ(textOf(decoded(content)), "goID = I\nallData = 83 1 1");
    }
    // Two octets of length are there, and no octet more is asked for.
    EXPECT_EQ(textOf(decoded({0x85, 0x01, 0x04, kAllData, 0x82, 0x00, 0x00})), "stNum = 4\n");
}

TEST(GoosePduContent, TakesLengthOctetsOfOtherTagsAsTheyStand) {
    for (unsigned tag = 0; tag <= 0xFF; ++tag) {
        if (tag == kAllData) continue;
        for (std::uint8_t const length : Bytes{0x7F, 0x80, 0x81, 0x82, 0x84, 0xFF}) {
            Bytes const element = concat({{static_cast<std::uint8_t>(tag), length}, Bytes(length)});
            EXPECT_EQ(decoded(concat({element, kMark})).stNum, "9") << tag << ' ' << int{length};
            Bytes const cut = prefix(element, element.size() - 1);
            EXPECT_EQ(textOf(decoded(concat({kMark, cut}))), "stNum = 9\n") << tag;
        }
    }
    EXPECT_EQ(decoded(concat({{0x8A, 0x81}, repeat(0x05, 129)})).numDatSetEntries, "5");
    EXPECT_EQ(decoded(concat({{0x8A, 0x81}, repeat(0x05, 128)})).numDatSetEntries, "");
    EXPECT_EQ(decoded(concat({{0x80, 0x82}, repeat('x', 130)})).gocbRef, std::string(130, 'x'));
    EXPECT_EQ(decoded(concat({{0x8B, 0x81}, repeat('x', 129)})).allData, repeat('x', 129));
    EXPECT_EQ(textOf(decoded({0x8B, 0x81, 0x03, 0x83, 0x01, 0x01})), "");
}

TEST(GoosePduContent, LooksAtClassAndNumberOfATagAlone) {
    for (unsigned tag = 0; tag <= 0xFF; ++tag) {
        unsigned const number = tag & 0x1FU;
        bool const isField = (tag & 0xC0U) == 0x80 && number <= 11;
        GoosePdu const pdu = decoded(concat({ber(static_cast<std::uint8_t>(tag), {0x31}), kMark}));
        EXPECT_EQ(pdu.stNum, "9") << tag;
        if (!isField) {
            EXPECT_EQ(textOf(pdu), "stNum = 9\n") << tag;
        } else if (number != 5) {
            EXPECT_NE(field(pdu, number), "") << tag;
        }
    }
}

TEST(GoosePduContent, IsNotDescendedInto) {
    EXPECT_EQ(textOf(decoded(ber(0xA0, kMark))), "gocbRef = [85 01 09]\n");
    EXPECT_EQ(textOf(decoded(ber(0x30, kMark))), "");
    EXPECT_EQ(textOf(decoded(ber(0x61, kMark))), "");
    EXPECT_EQ(textOf(decoded(ber(kAllData, kMark))), "allData = 85 1 9");
}

TEST(GoosePduContent, LetsALaterElementReplaceAnEarlierOne) {
    for (std::uint8_t tag = 0x80; tag <= 0x8B; ++tag) {
        GoosePdu const pdu = decoded(concat({ber(tag, {0x30, 0x31}), ber(tag, {0x32, 0x33})}));
        GoosePdu const later = decoded(ber(tag, {0x32, 0x33}));
        EXPECT_EQ(textOf(pdu), textOf(later)) << int{tag};
    }
    EXPECT_EQ(decoded({0x83, 0x01, 'A', 0x83, 0x00}).goID, "");
    EXPECT_EQ(decoded({0x88, 0x01, 0x05, 0x88, 0x00}).confRev, "0");
    EXPECT_EQ(decoded({0xAB, 0x01, 0x05, 0x8B, 0x01, 0x06}).allData, Bytes{0x06});
    for (std::uint8_t const tag : Bytes{0x8B, 0xAB})
        EXPECT_EQ(decoded({0xAB, 0x01, 0x05, tag, 0x00}).allData, Bytes{0x05}) << "not by none";
}

TEST(GoosePduContent, KeepsFieldsOfThePduItIsGiven) {
    GoosePdu pdu;
    pdu.gocbRef = "before";
    pdu.stNum = "before";
    pdu.allData = {1, 2, 3};
    EXPECT_FALSE(GooseParser::_parseGoosePdu({}, pdu));
    EXPECT_FALSE(GooseParser::_parseGoosePdu(kMark, pdu));
    EXPECT_EQ(textOf(pdu), "gocbRef = before\nstNum = 9\nallData = 1 2 3");
}

TEST(GoosePduContent, ReturnsTrueForFiftyElementsAlone) {
    for (std::uint8_t const tag : Bytes{0x80, 0x8C, 0x02, 0x61, 0xAB}) {
        for (std::size_t const count : {0UL, 1UL, 48UL, 49UL, 50UL, 51UL, 200UL}) {
            Bytes content;
            for (std::size_t i = 0; i < count; ++i) append(content, ber(tag, {0x31}));
            EXPECT_EQ(Decoded(content).full, count >= 50) << count;
            append(content, {0x80});
            EXPECT_EQ(Decoded(content).full, count >= 50) << count << " and a broken one";
            content.back() = kAllData;
            append(content, {0x80, 0x00, 0x00});
            EXPECT_EQ(Decoded(content).full, count >= 50) << count << " and a broken one";
        }
    }
}

TEST(GoosePduContent, IsReadUpToItsFiftiethElement) {
    for (std::uint8_t const tag : Bytes{0x80, 0x8C, 0x02, 0x61, 0xAB}) {
        Bytes content;
        for (std::size_t before = 0; before < 52; ++before) {
            Decoded const result(concat({content, kMark}));
            EXPECT_EQ(result.pdu.stNum, before < 50 ? "9" : "") << before;
            EXPECT_EQ(result.full, before >= 49) << before;
            append(content, ber(tag, {}));
        }
    }
}

TEST(GoosePduContent, IsReadUpToItsLastWholeElement) {
    Bytes const content = concat({ber(0x80, "A"), ber(0x81, {0x07}), ber(0x82, "DS"), ber(0x03, {}),
                                  ber(0x83, ""), ber(0x85, {0x03})});
    std::vector<std::string> const lines = {
        "", "gocbRef = A\n", "timeAllowedToLive = 7\n", "datSet = DS\n", "", "", "stNum = 3\n"};
    std::vector<std::size_t> const ends = {0, 3, 6, 10, 12, 14, 17};
    for (std::size_t size = 0; size <= content.size(); ++size) {
        std::string expected;
        for (std::size_t i = 0; i < ends.size(); ++i)
            if (ends[i] <= size) expected += lines[i];
        Decoded const result(prefix(content, size));
        EXPECT_EQ(textOf(result.pdu), expected) << size;
        EXPECT_FALSE(result.full);
    }
}

}  // namespace
}  // namespace TalTest::GoosePduTest
