// Every kind of value in allData, whole and not.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/packet/DataValue.hpp>
#include <cmath>
#include <limits>
#include <string>

#include "analysis/packet/PacketFrames.hpp"
#include "support/Ber.hpp"
#include "support/Data.hpp"
#include "tools/render/DataText.hpp"
#include "tools/render/ValueText.hpp"

namespace TalIec61850Analysis::DataValueTest {
namespace {

using namespace TalIec61850Tools;
using namespace TalTest;

using Content = DataValue::Content;

/// The only value of a data set, which is what it should be.
DataValue sound(Bytes const& element, DataKind kind) {
    DataValue value = onlyValue(element);
    EXPECT_EQ(value.kind, kind);
    EXPECT_EQ(value.fault, std::nullopt);
    return value;
}

/// The octets of the only value, which is faulty; its kind is named all the same.
OctetString faulty(Bytes const& element, DataKind kind, FaultKind fault) {
    DataValue const value = onlyValue(element);
    EXPECT_EQ(value.kind, kind);
    EXPECT_EQ(value.fault, fault);
    auto const* const octets = std::get_if<OctetString>(&value.value);
    EXPECT_NE(octets, nullptr);
    return octets == nullptr ? OctetString{0xEE, 0xEE} : *octets;
}

TEST(DataValues, AreBooleans) {
    EXPECT_EQ(sound(ber(0x83, {0x00}), DataKind::boolean).value, Content(false));
    EXPECT_EQ(sound(ber(0x83, {0x01}), DataKind::boolean).value, Content(true));
    EXPECT_EQ(sound(ber(0x83, {0xFF}), DataKind::boolean).value, Content(true));
    EXPECT_EQ(faulty(ber(0x83, {}), DataKind::boolean, FaultKind::wrongLength), OctetString{});
    EXPECT_EQ(faulty(ber(0x83, {0x00, 0x01}), DataKind::boolean, FaultKind::wrongLength),
              (OctetString{0x00, 0x01}));
}

TEST(DataValues, AreBitStrings) {
    EXPECT_EQ(sound(dataBitString({0x40}, 6), DataKind::bitString).value,
              Content(BitString{.octets = {0x40}, .unusedBits = 6}));
    EXPECT_EQ(sound(ber(0x8E, {0x00, 0x81}), DataKind::booleanArray).value,
              Content(BitString{.octets = {0x81}, .unusedBits = 0}));
    EXPECT_EQ(faulty(ber(0x84, {}), DataKind::bitString, FaultKind::wrongLength), OctetString{});
    EXPECT_EQ(faulty(ber(0x84, {0x08, 0x00}), DataKind::bitString, FaultKind::wrongContent),
              (OctetString{0x08, 0x00}));
    EXPECT_EQ(faulty(ber(0x8E, {0x01}), DataKind::booleanArray, FaultKind::wrongContent),
              OctetString{0x01});
}

TEST(DataValues, AreIntegers) {
    EXPECT_EQ(sound(ber(0x85, {0x80}), DataKind::integer).value, Content(std::int64_t{-128}));
    EXPECT_EQ(sound(ber(0x85, {0x00, 0xFF, 0xFF, 0xFF, 0xFF}), DataKind::integer).value,
              Content(std::int64_t{0xFFFFFFFF}));
    EXPECT_EQ(sound(dataInteger(std::numeric_limits<std::int64_t>::min()), DataKind::integer).value,
              Content(std::numeric_limits<std::int64_t>::min()));
    EXPECT_EQ(faulty(ber(0x85, {}), DataKind::integer, FaultKind::wrongLength), OctetString{});
    EXPECT_EQ(faulty(ber(0x85, Bytes(9, 0x01)), DataKind::integer, FaultKind::tooWide),
              OctetString(9, 0x01));
}

TEST(DataValues, AreUnsigned) {
    EXPECT_EQ(sound(dataUnsigned(0xFFFFFFFF), DataKind::unsignedNumber).value,
              Content(std::int64_t{0xFFFFFFFF}));
    EXPECT_EQ(sound(dataUnsigned(~std::uint64_t{0}), DataKind::unsignedNumber).value,
              Content(~std::uint64_t{0}));
    EXPECT_EQ(sound(ber(0x8D, {0x12}), DataKind::bcd).value, Content(std::int64_t{0x12}));
    EXPECT_EQ(faulty(ber(0x86, Bytes(10, 0x01)), DataKind::unsignedNumber, FaultKind::tooWide),
              OctetString(10, 0x01));
}

TEST(DataValues, SayWhereAnUnsignedIsNegative) {
    DataValue const value = onlyValue(ber(0x86, {0xFF}));
    EXPECT_EQ(value.value, Content(std::int64_t{-1}));
    EXPECT_EQ(value.fault, FaultKind::negative);
}

TEST(DataValues, AreFloatingPointOfTwoWidths) {
    EXPECT_EQ(sound(dataFloat(1.1F), DataKind::floatingPoint).value, Content(1.1F));
    EXPECT_EQ(sound(ber(0x87, {11, 0xBF, 0xB9, 0x99, 0x99, 0x99, 0x99, 0x99, 0x9A}),
                    DataKind::floatingPoint)
                  .value,
              Content(-0.1));
    auto const zero = sound(dataFloat(-0.0F), DataKind::floatingPoint);
    EXPECT_TRUE(std::signbit(std::get<float>(zero.value)));
    auto const nan = sound(ber(0x87, {8, 0x7F, 0xC0, 0, 0}), DataKind::floatingPoint);
    EXPECT_TRUE(std::isnan(std::get<float>(nan.value)));
}

TEST(DataValues, TakeTheWidthOfAFloatFromItsExponentToo) {
    for (OctetString const& octets :
         {OctetString{11, 0, 0, 0, 0}, OctetString{8, 0, 0, 0, 0, 0, 0, 0, 0}}) {
        EXPECT_EQ(faulty(ber(0x87, octets), DataKind::floatingPoint, FaultKind::wrongContent),
                  octets);
    }
    for (std::size_t const size : {0U, 1U, 4U, 6U, 8U, 10U}) {
        EXPECT_EQ(
            faulty(ber(0x87, Bytes(size, 8)), DataKind::floatingPoint, FaultKind::wrongLength),
            OctetString(size, 8));
    }
}

TEST(DataValues, AreOctetsAndTexts) {
    EXPECT_EQ(sound(dataOctetString({0, 255}), DataKind::octetString).value,
              Content(OctetString{0, 255}));
    EXPECT_EQ(sound(ber(0x89, {}), DataKind::octetString).value, Content(OctetString{}));
    EXPECT_EQ(sound(dataVisibleString("trip"), DataKind::visibleString).value,
              Content(std::string("trip")));
    EXPECT_EQ(sound(ber(0x90, text("öff\xFFnen")), DataKind::mmsString).value,
              Content(std::string("öff\xFFnen")));
}

TEST(DataValues, AreTimes) {
    EXPECT_EQ(sound(dataUtcTime(7, 8, 9), DataKind::utcTime).value,
              Content(UtcTime{.seconds = 7, .fraction = 8, .quality = 9}));
    EXPECT_EQ(faulty(ber(0x91, Bytes(7)), DataKind::utcTime, FaultKind::wrongLength),
              OctetString(7));
    EXPECT_EQ(sound(ber(0x8C, {0, 0, 0, 9}), DataKind::binaryTime).value,
              Content(BinaryTime{.milliseconds = 9, .days = {}}));
    EXPECT_EQ(sound(ber(0x8C, {0, 0, 0, 9, 0, 2}), DataKind::binaryTime).value,
              Content(BinaryTime{.milliseconds = 9, .days = 2}));
    EXPECT_EQ(faulty(ber(0x8C, Bytes(5)), DataKind::binaryTime, FaultKind::wrongLength),
              OctetString(5));
}

TEST(DataValues, SayWhereATimeOfDayIsBeyondTheDay) {
    DataValue const value = onlyValue(ber(0x8C, {0x05, 0x26, 0x5C, 0x00}));
    EXPECT_EQ(value.value, Content(BinaryTime{.milliseconds = 86'400'000, .days = {}}));
    EXPECT_EQ(value.fault, FaultKind::wrongContent);
}

std::string objectId(std::initializer_list<std::uint8_t> octets) {
    return toText(std::get<ObjectId>(sound(ber(0x8F, octets), DataKind::objectId).value));
}

TEST(DataValues, AreObjectIdentifiers) {
    EXPECT_EQ(objectId({0x2B, 0x06, 0x01, 0x84, 0x0C}), "1.3.6.1.524");
    EXPECT_EQ(objectId({0x00}), "0.0");
    EXPECT_EQ(objectId({0x27}), "0.39");
    EXPECT_EQ(objectId({0x28}), "1.0");
    EXPECT_EQ(objectId({0x4F}), "1.39");
    EXPECT_EQ(objectId({0x50}), "2.0");
    EXPECT_EQ(objectId({0x88, 0x37, 0x03}), "2.999.3");
    EXPECT_EQ(objectId({0x2A, 0x81, 0x80, 0x01}), "1.2.16385");
    EXPECT_EQ(objectId({0x2A, 0x81, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F}),
              "1.2.18446744073709551615");
}

TEST(DataValues, KeepTheOctetsOfADamagedObjectIdentifier) {
    auto const octets = {
        OctetString{0x2B, 0x86},        // does not end
        OctetString{0x2B, 0x80, 0x01},  // begins with seven bits of nothing
        OctetString{0x2A, 0x82, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x00}};
    for (OctetString const& damaged : octets) {
        EXPECT_EQ(faulty(ber(0x8F, damaged), DataKind::objectId, FaultKind::wrongContent), damaged);
    }
    EXPECT_EQ(faulty(ber(0x8F, {}), DataKind::objectId, FaultKind::wrongLength), OctetString{});
}

TEST(DataValues, OfUnknownTagsAreOctets) {
    for (unsigned tag = 0; tag < 256; ++tag) {
        if ((tag & 0x1FU) == 0x1FU) continue;
        DataValue const value = onlyValue(ber(static_cast<std::uint8_t>(tag), {0x00, 0x07}));
        EXPECT_EQ(value.tag, tag);
        if (kindOf(value.tag) == DataKind::unknown) {
            EXPECT_EQ(value.value, Content(OctetString{0x00, 0x07}));
            EXPECT_EQ(value.fault, std::nullopt);
        }
    }
}

TEST(DataValues, AreOfFifteenKinds) {
    std::string known;
    for (unsigned tag = 0; tag < 256; ++tag) {
        auto const kind = kindOf(static_cast<std::uint8_t>(tag));
        if (kind != DataKind::unknown) known.append(toText(kind)).append(" ");
    }
    EXPECT_EQ(known,
              "boolean bit-string integer unsigned floating-point octet-string visible-string "
              "binary-time bcd booleanArray objId mMSString utc-time array structure ");
}

TEST(DataValues, HoldOthersInTheirOrder) {
    auto const inner = concat({dataBoolean(true), dataInteger(-5)});
    DataValue const value =
        sound(ber(0xA2, concat({ber(0xA1, inner), dataInteger(6)})), DataKind::structure);
    auto const& members = std::get<DataValue::Members>(value.value);
    ASSERT_EQ(members.size(), 2U);
    EXPECT_EQ(members[0].kind, DataKind::array);
    EXPECT_EQ(members[1].value, Content(std::int64_t{6}));
    auto const& elements = std::get<DataValue::Members>(members[0].value);
    ASSERT_EQ(elements.size(), 2U);
    EXPECT_EQ(elements[0].value, Content(true));
    EXPECT_EQ(elements[1].value, Content(std::int64_t{-5}));
    EXPECT_EQ(elements[1].offset, value.offset + 7);
    EXPECT_EQ(sound(ber(0xA2, {}), DataKind::structure).value, Content(DataValue::Members()));
}

/// The depth of the innermost value, and that value.
std::pair<std::size_t, DataValue> innermost(DataValue value) {
    std::size_t depth = 1;
    while (auto* const members = std::get_if<DataValue::Members>(&value.value)) {
        if (members->empty()) break;
        DataValue first = std::move(members->front());
        value = std::move(first);
        ++depth;
    }
    return {depth, value};
}

TEST(DataValues, AreReadToADepth) {
    auto const [depth, value] =
        innermost(sound(nested(0xA2, kMaxDataDepth, {}), DataKind::structure));
    EXPECT_EQ(depth, kMaxDataDepth);
    EXPECT_EQ(value.fault, std::nullopt);
}

TEST(DataValues, BelowThatDepthAreOctets) {
    for (std::uint8_t const tag : Bytes{0xA1, 0xA2}) {
        auto const [depth, value] = innermost(onlyValue(nested(tag, 1000, dataBoolean(true))));
        EXPECT_EQ(depth, kMaxDataDepth);
        EXPECT_EQ(value.fault, FaultKind::tooDeep);
        EXPECT_EQ(value.value, Content(nested(tag, 1000 - kMaxDataDepth, dataBoolean(true))));
    }
    auto const packet = inspectedData(nested(0xA2, 1000));
    EXPECT_EQ(kinds(packet.faults), std::vector{FaultKind::tooDeep});
}

TEST(DataValues, AsTextTakeOneLine) {
    std::string all;
    for (Bytes const& element : everyKind()) all += toText(onlyValue(element)) + "\n";
    EXPECT_EQ(all,
              "true\n10\n1100000100001\n\n-129\n-2147483648\n3000000000\n1.1\n-0\n-0.1\n00ff\n"
              "closed\n00:00:00.001\n2024-01-31T23:59:59.999Z\n18\n1010\n1.3.6.1.524\ngeöffnet\n"
              "2023-11-14T22:13:20.999999940Z\n{false, 0000000000010, {1, 2}, {}}\n");
    EXPECT_EQ(toText(onlyValue(dataVisibleString("a\n\x1b[31m"))), R"(a\n\x1b[31m)");
    EXPECT_EQ(toText(onlyValue(dataFloat(std::numeric_limits<float>::infinity()))), "Infinity");
    EXPECT_EQ(toText(onlyValue(dataFloat(-std::numeric_limits<float>::infinity()))), "-Infinity");
    EXPECT_EQ(toText(onlyValue(dataFloat(std::numeric_limits<float>::quiet_NaN()))), "NaN");
}

}  // namespace
}  // namespace TalIec61850Analysis::DataValueTest
