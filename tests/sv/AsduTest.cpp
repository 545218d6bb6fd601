// What a sequence of ASDU decodes to. How it is found in its capture file:
// index/DecodeFileTest.cpp.

#include <gtest/gtest.h>

#include <TalIec61850Parser/sv/ASDUData.hpp>
#include <TalIec61850Parser/sv/SvParser.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include "support/Ber.hpp"
#include "support/SampledValues.hpp"
#include "support/TempFile.hpp"
#include "sv/AsduText.hpp"

namespace TalTest::AsduTest {
namespace {

using namespace TalIec61850Parser;

using Asdus = std::vector<ASDUData>;

static_assert(std::is_same_v<decltype(ASDUData::svID), std::string>);
static_assert(std::is_same_v<decltype(ASDUData::datSet), std::string>);
static_assert(std::is_same_v<decltype(ASDUData::smpCnt), std::uint16_t>);
static_assert(std::is_same_v<decltype(ASDUData::confRev), std::uint32_t>);
static_assert(std::is_same_v<decltype(ASDUData::refrTm), std::vector<std::uint8_t>>);
static_assert(std::is_same_v<decltype(ASDUData::smpSynch), std::uint8_t>);
static_assert(std::is_same_v<decltype(ASDUData::smpRate), std::uint16_t>);
static_assert(std::is_same_v<decltype(ASDUData::samples), std::vector<SampleData>>);
static_assert(std::is_same_v<decltype(SampleData::value), std::int32_t>);
static_assert(std::is_same_v<decltype(SampleData::quality), std::uint32_t>);
static_assert(std::is_copy_constructible_v<ASDUData> && std::is_copy_assignable_v<ASDUData>);
static_assert(std::is_nothrow_move_constructible_v<ASDUData>);
static_assert(std::is_trivially_copyable_v<SampleData>);
static_assert(std::is_same_v<decltype(&SvParser::parseASDUFromFile),
                             Asdus (*)(std::string const&, std::size_t)>);

/// The ASDUs of a sequence of ASDU with this content.
Asdus decoded(Bytes const& content) {
    TempFile const file(ber(0xA2, content));
    return SvParser::parseASDUFromFile(file.path(), 0);
}

/// The only ASDU of a sequence, whose content is this.
ASDUData decodedAsdu(Bytes const& content) {
    Asdus const asdus = decoded(ber(0x30, content));
    EXPECT_EQ(asdus.size(), 1U);
    return asdus.empty() ? ASDUData() : asdus.front();
}

std::string const kDefaults = textOf(ASDUData());

/// An ASDU of svID alone.
Bytes named(std::string const& svID) { return ber(0x30, ber(0x80, svID)); }

/// The svIDs of the ASDUs, each in brackets.
std::string names(Asdus const& asdus) {
    std::string all;
    for (ASDUData const& asdu : asdus) all += '[' + asdu.svID + ']';
    return all;
}

Bytes const kA = named("A");
Bytes const kB = named("B");

TEST(Asdu, HoldsDefaultsWhenMade) {
    ASDUData const asdu;
    EXPECT_EQ(textOf(asdu),
              "svID '' datSet '' smpCnt 0 confRev 0 refrTm smpSynch 0 smpRate 0 samples");
    EXPECT_EQ(SampleData().value, 0);
    EXPECT_EQ(SampleData().quality, 0U);
}

TEST(Asdu, HoldsItsFieldsInTheOrderOfTheirTags) {
    EXPECT_EQ(textOf(ASDUData{"A", "B", 1, 2, {3}, 4, 5, {{-6, 7}}}),
              "svID 'A' datSet 'B' smpCnt 1 confRev 2 refrTm 3 smpSynch 4 smpRate 5 samples -6/7");
}

TEST(Asdu, IsDecodedInFull) {
    Asdu asdu;
    asdu.svID = "MU01";
    asdu.datSet = "MU01/LLN0$PhsMeas1";
    asdu.smpCnt = 3999;
    asdu.confRev = 0x01020304;
    asdu.refrTm = Bytes{1, 2, 3, 4, 5, 6, 7, 8};
    asdu.smpSynch = 2;
    asdu.smpRate = 4800;
    asdu.seqData = samples({{1000, 0x2000}, {-2, 1}});
    asdu.smpMod = 1;
    EXPECT_EQ(textOf(decoded(asduElement(asdu))),
              "svID 'MU01' datSet 'MU01/LLN0$PhsMeas1' smpCnt 3999 confRev 16909060 "
              "refrTm 1 2 3 4 5 6 7 8 smpSynch 2 smpRate 4800 samples 1000/8192 -2/1\n");
}

TEST(AsduSequence, KeepsItsOrder) {
    EXPECT_EQ(names(decoded(concat({kB, kA, named(""), kA}))), "[B][A][][A]");
    EXPECT_EQ(names(decoded({})), "");
}

TEST(AsduSequence, KeepsAsdusInWhichNothingIsKnown) {
    EXPECT_EQ(textOf(decoded({0x30, 0x00})), kDefaults + '\n');
    EXPECT_EQ(textOf(decodedAsdu({0x88, 0x01, 0x07})), kDefaults);
    EXPECT_EQ(textOf(decodedAsdu(repeat(0x30, 20))), kDefaults);
    EXPECT_EQ(names(decoded(concat({{0x30, 0x00}, kA, {0x30, 0x00}}))), "[][A][]");
}

TEST(AsduSequence, IsReadUpToItsFiftiethAsdu) {
    for (std::size_t const count : {1UL, 49UL, 50UL, 51UL, 200UL}) {
        Bytes content;
        for (std::size_t i = 0; i < count; ++i)
            append(content, concat({named(std::to_string(i)), Bytes(3)}));
        Asdus const asdus = decoded(content);
        ASSERT_EQ(asdus.size(), std::min<std::size_t>(count, 50));
        EXPECT_EQ(asdus.back().svID, std::to_string(asdus.size() - 1));
    }
}

TEST(AsduSequence, IsSearchedOctetByOctet) {
    for (unsigned octet = 0; octet <= 0xFF; ++octet) {
        if (octet == 0x30) continue;
        auto const stray = static_cast<std::uint8_t>(octet);
        EXPECT_EQ(names(decoded(concat({{stray}, kA, {stray, stray}, kB, {stray}}))), "[A][B]");
        // Its length means nothing: the ASDU inside is found.
        EXPECT_EQ(names(decoded(ber(stray, kA))), "[A]") << octet;
    }
    EXPECT_EQ(names(decoded(concat({Bytes(1000), kA, Bytes(1000), kB}))), "[A][B]");
}

TEST(AsduSequence, TakesAnyStray30ForAnAsduButTheLastOctet) {
    EXPECT_EQ(names(decoded(concat({kA, {0x30}}))), "[A]");
    EXPECT_EQ(names(decoded({0x30})), "");
    Bytes const taken = concat({{0x30}, kA, Bytes(0x30)});
    // The 30 takes the next 30 for its length: 48 octets from behind it.
    EXPECT_EQ(names(decoded(concat({taken, kB}))), "[A][B]");
    EXPECT_EQ(names(decoded(concat({{0x30}, kA, kB}))), "") << "there are not as many";
}

TEST(AsduSequence, UnderstandsThreeLengthForms) {
    for (std::size_t const size : {0UL, 1UL, 127UL, 128UL, 255UL, 256UL, 65000UL}) {
        Bytes const fields = concat({ber(0x80, "A"), Bytes(size)});
        EXPECT_EQ(names(decoded(concat({ber(0x30, fields), kB}))), "[A][B]") << size;
    }
    for (LengthForm const form : {LengthForm::oneOctet, LengthForm::twoOctets}) {
        EXPECT_EQ(names(decoded(concat({ber(0x30, ber(0x80, "A"), form), kB}))), "[A][B]");
        EXPECT_EQ(names(decoded(concat({ber(0x30, {}, form), kB}))), "[][B]");
    }
}

TEST(AsduSequence, EndsAtOtherLengthForms) {
    for (unsigned octet = 0x80; octet <= 0xFF; ++octet) {
        if (octet == 0x81 || octet == 0x82) continue;
        Bytes const length = {static_cast<std::uint8_t>(octet)};
        EXPECT_EQ(names(decoded(concat({kA, berClaiming(0x30, length, Bytes(4)), kB}))), "[A]");
    }
}

TEST(AsduSequence, EndsAtAnAsduThatIsCutShort) {
    for (LengthForm const form :
         {LengthForm::shortest, LengthForm::oneOctet, LengthForm::twoOctets}) {
        Bytes const second = ber(0x30, ber(0x80, "BB"), form);
        for (std::size_t size = 0; size < second.size(); ++size)
            EXPECT_EQ(names(decoded(concat({kA, prefix(second, size)}))), "[A]") << size;
        EXPECT_EQ(names(decoded(concat({kA, second}))), "[A][BB]");
    }
    EXPECT_EQ(names(decoded(concat({kA, {0x30, 0x07}, kB}))), "[A]") << "one octet short";
    // Two octets of length are there, and no octet more is asked for.
    EXPECT_EQ(names(decoded(concat({kA, {0x30, 0x82, 0x00, 0x00}}))), "[A][]");
    EXPECT_EQ(names(decoded(concat({kA, {0x30, 0x81, 0x00}}))), "[A][]");
}

TEST(AsduSequence, GoesOnBehindAnAsduThatEndsBroken) {
    for (Bytes const& broken :
         {Bytes{0x82}, Bytes{0x82, 0x03, 0, 1}, Bytes{0x82, 0x80, 0, 1},
          Bytes{0x82, 0x83, 0, 0, 1, 1}, Bytes{0x82, 0x81}, Bytes{0x82, 0x82, 0x00}}) {
        Asdus const asdus = decoded(concat({ber(0x30, concat({ber(0x80, "A"), broken})), kB}));
        EXPECT_EQ(names(asdus), "[A][B]");
    }
}

TEST(AsduFields, AreFoundInAnyOrderAndReplaceEachOther) {
    Bytes const fields =
        concat({ber(0x86, {1, 0}), ber(0x84, {1, 2}), ber(0x82, {0, 9}), ber(0x80, "A"),
                ber(0x81, "D"), ber(0x83, {0, 0, 0, 5}), ber(0x85, {3})});
    Bytes const later =
        concat({ber(0x80, "longer"), ber(0x81, ""), ber(0x82, {1, 1}), ber(0x83, {0, 0, 1, 0}),
                ber(0x84, {7}), ber(0x85, {0}), ber(0x86, {0, 2})});
    EXPECT_EQ(textOf(decodedAsdu(fields)),
              "svID 'A' datSet 'D' smpCnt 9 confRev 5 refrTm 1 2 smpSynch 3 smpRate 256 samples");
    EXPECT_EQ(
        textOf(decodedAsdu(concat({fields, later}))),
        "svID 'longer' datSet '' smpCnt 257 confRev 256 refrTm 7 smpSynch 0 smpRate 2 samples");
    EXPECT_EQ(textOf(decodedAsdu(concat({fields, {0x80, 0x00, 0x84, 0x00}}))),
              "svID '' datSet 'D' smpCnt 9 confRev 5 refrTm smpSynch 3 smpRate 256 samples");
}

TEST(AsduFields, OfOctetsAreKeptAsTheyAre) {
    std::string const odd("A\0\xFF\t", 4);
    for (std::string const& value : {odd, std::string(1, '\0'), std::string(200, 'x'),
                                     std::string(300, '\0'), std::string()}) {
        ASDUData const asdu =
            decodedAsdu(concat({ber(0x80, value), ber(0x81, value + '\0'), ber(0x84, value)}));
        EXPECT_EQ(asdu.svID, value);
        EXPECT_EQ(asdu.datSet, value + '\0');
        EXPECT_EQ(asdu.refrTm, text(value));
    }
}

TEST(AsduFields, OfNumbersAreKeptFromTheirFullRange) {
    for (std::uint8_t const octet : Bytes{0x00, 0x7F, 0x80, 0xFF}) {
        ASDUData const asdu =
            decodedAsdu(concat({ber(0x82, repeat(octet, 2)), ber(0x83, repeat(octet, 4)),
                                ber(0x85, {octet}), ber(0x86, repeat(octet, 2))}));
        EXPECT_EQ(asdu.smpCnt, octet * 0x0101U);
        EXPECT_EQ(asdu.confRev, octet * 0x01010101U);
        EXPECT_EQ(asdu.smpSynch, octet);
        EXPECT_EQ(asdu.smpRate, octet * 0x0101U);
    }
}

TEST(AsduFields, OfNumbersInTheWrongWidthKeepTheirPreviousValue) {
    Bytes const before =
        concat({ber(0x82, {0, 1}), ber(0x83, {0, 0, 0, 2}), ber(0x85, {3}), ber(0x86, {0, 4})});
    std::string const kept =
        "svID 'A' datSet '' smpCnt 1 confRev 2 refrTm smpSynch 3 smpRate 4 samples";
    for (std::size_t size = 0; size < 10; ++size) {
        Bytes wrong;
        for (auto const& [tag, width] :
             {Sample{0x82, 2}, Sample{0x83, 4}, Sample{0x85, 1}, Sample{0x86, 2}}) {
            if (size != width) append(wrong, ber(static_cast<std::uint8_t>(tag), Bytes(size, 9)));
        }
        append(wrong, ber(0x80, "A"));
        EXPECT_EQ(textOf(decodedAsdu(concat({before, wrong}))), kept) << size;
        EXPECT_EQ(textOf(decodedAsdu(wrong)),
                  "svID 'A' datSet '' smpCnt 0 confRev 0 refrTm smpSynch 0 smpRate 0 samples");
    }
}

TEST(AsduFields, WithHigherNumbersArePassedOverWhole) {
    for (unsigned tag = 0x88; tag <= 0x9F; ++tag) {
        for (LengthForm const form :
             {LengthForm::shortest, LengthForm::oneOctet, LengthForm::twoOctets}) {
            Bytes const other = ber(static_cast<std::uint8_t>(tag), ber(0x80, "no"), form);
            ASDUData const asdu = decodedAsdu(concat({other, ber(0x81, "D")}));
            EXPECT_EQ(asdu.svID, "") << tag;
            EXPECT_EQ(asdu.datSet, "D") << tag;
        }
    }
}

TEST(AsduFields, AreSearchedOctetByOctetBetweenOtherTags) {
    for (unsigned tag = 0; tag <= 0xFF; ++tag) {
        if ((tag & 0xE0U) == 0x80) continue;
        auto const other = static_cast<std::uint8_t>(tag);
        Bytes const fields =
            concat({{other}, ber(0x80, "A"), {other, other}, ber(0x85, {7}), {other}});
        ASDUData const asdu = decodedAsdu(fields);
        EXPECT_EQ(asdu.svID, "A") << tag;
        EXPECT_EQ(asdu.smpSynch, 7) << tag;
        EXPECT_EQ(decodedAsdu(ber(other, ber(0x80, "A"))).svID, "A") << tag;
    }
    EXPECT_EQ(decodedAsdu({0xA0, 0x03, 0x80, 0x01, 0x41}).svID, "A");
    // The length of A0 is a context tag to the scan, and hides the svID.
    EXPECT_EQ(decodedAsdu({0xA0, 0x81, 0x03, 0x80, 0x01, 0x41}).svID, "");
    EXPECT_EQ(decodedAsdu({0xA0, 0x81, 0x03, 0x80, 0x01, 0x41}).datSet, "\x80\x01\x41");
}

TEST(AsduFields, UnderstandThreeLengthForms) {
    for (LengthForm const form :
         {LengthForm::shortest, LengthForm::oneOctet, LengthForm::twoOctets}) {
        ASDUData const asdu = decodedAsdu(
            concat({ber(0x82, {0x01, 0x02}, form), ber(0x80, {}, form), ber(0x81, "D", form)}));
        EXPECT_EQ(asdu.smpCnt, 258);
        EXPECT_EQ(asdu.datSet, "D");
    }
    for (std::size_t const size : {127UL, 128UL, 255UL, 256UL, 60'000UL})
        EXPECT_EQ(decodedAsdu(ber(0x80, Bytes(size, 'x'))).svID, std::string(size, 'x'));
}

TEST(AsduFields, EndAtOtherLengthForms) {
    for (unsigned octet = 0x80; octet <= 0xFF; ++octet) {
        if (octet == 0x81 || octet == 0x82) continue;
        Bytes const length = {static_cast<std::uint8_t>(octet)};
        for (std::uint8_t const tag : Bytes{0x80, 0x87, 0x88, 0x9F}) {
            Bytes const broken = berClaiming(tag, length, Bytes(4));
            EXPECT_EQ(textOf(decodedAsdu(concat({ber(0x81, "D"), broken, ber(0x85, {1})}))),
                      "svID '' datSet 'D' smpCnt 0 confRev 0 refrTm smpSynch 0 smpRate 0 samples");
        }
    }
}

TEST(AsduFields, EndAtAnElementThatIsCutShort) {
    for (LengthForm const form :
         {LengthForm::shortest, LengthForm::oneOctet, LengthForm::twoOctets}) {
        for (unsigned number = 0; number <= 8; ++number) {
            Bytes const value = number == 7 ? Bytes(16, 1) : Bytes{2, 2};
            Bytes const last = ber(static_cast<std::uint8_t>(0x80U + number), value, form);
            std::string const before = textOf(decodedAsdu(ber(0x81, "D")));
            for (std::size_t size = 0; size < last.size(); ++size)
                EXPECT_EQ(textOf(decodedAsdu(concat({ber(0x81, "D"), prefix(last, size)}))),
                          before);
            // Numbers 3, 5 and 8 do not keep two octets.
            bool const keeps = number != 3 && number != 5 && number != 8;
            EXPECT_EQ(textOf(decodedAsdu(concat({ber(0x81, "D"), last}))) != before, keeps);
        }
    }
}

TEST(AsduSamples, AreOneForEveryEightOctets) {
    for (std::size_t size = 0; size <= 72; ++size) {
        ASDUData const asdu = decodedAsdu(ber(0x87, Bytes(size, 1)));
        ASSERT_EQ(asdu.samples.size(), size / 8) << size;
        for (SampleData const& sample : asdu.samples) {
            EXPECT_EQ(sample.value, 0x01010101);
            EXPECT_EQ(sample.quality, 0x01010101U);
        }
    }
    EXPECT_EQ(decodedAsdu(ber(0x87, Bytes(60'000))).samples.size(), 7500U);
}

TEST(AsduSamples, AreKeptAsReceived) {
    Bytes const data = samples({{INT32_MIN, 0}, {INT32_MAX, 0xFFFFFFFF}, {-1, 0x80000000}});
    EXPECT_EQ(textOf(decodedAsdu(ber(0x87, data))),
              kDefaults + " -2147483648/0 2147483647/4294967295 -1/2147483648");
    EXPECT_EQ(textOf(decodedAsdu(ber(0x87, {0, 0, 0x03, 0xE8, 0, 0, 0x20, 0}))),
              kDefaults + " 1000/8192");
    EXPECT_EQ(textOf(decodedAsdu(ber(0x87, {0xFF, 0xFF, 0xFF, 0xFE, 0, 0, 0, 1}))),
              kDefaults + " -2/1");
    EXPECT_EQ(textOf(decodedAsdu(ber(0x87, {1, 2, 3, 4, 5, 6, 7, 8}))),
              kDefaults + " 16909060/84281096");
}

TEST(AsduSamples, OfSeveralElementsStandOneBehindTheOther) {
    Bytes const fields =
        concat({ber(0x87, samples({{1, 2}, {3, 4}})), ber(0x87, Bytes(7)), ber(0x84, {}),
                ber(0x87, {}), ber(0x87, concat({samples({{5, 6}}), Bytes(3)}))});
    EXPECT_EQ(textOf(decodedAsdu(fields)), kDefaults + " 1/2 3/4 5/6");
}

TEST(AsduSamples, TakeNoMoreMemoryThanTheyNeed) {
    Asdus const asdus = decoded(ber(0x30, ber(0x87, Bytes(8 * 9))));
    EXPECT_EQ(asdus.at(0).samples.capacity(), 9U);
}

}  // namespace
}  // namespace TalTest::AsduTest
