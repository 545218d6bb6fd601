// Elements and their headers: what the length octet alone says, and why one cannot be read.

#include <gtest/gtest.h>

#include <TalIec61850Parser/wire/BerReader.hpp>
#include <cstddef>
#include <cstdint>
#include <string>

#include "support/Ber.hpp"
#include "support/Bytes.hpp"

namespace TalTest::BerReaderTest {
namespace {

using TalIec61850Parser::wire::BerElement;
using TalIec61850Parser::wire::BerForm;
using TalIec61850Parser::wire::BerHeader;
using TalIec61850Parser::wire::isPlainlyUnreadable;
using TalIec61850Parser::wire::Octets;
using TalIec61850Parser::wire::readBerHeader;
using TalIec61850Parser::wire::readElement;

bool isReadable(Octets data) {
    std::size_t position = 0;
    BerElement element;
    return readElement(data, position, element);
}

TEST(BerReader, WhatIsPlainlyUnreadableCannotBeRead) {
    constexpr std::size_t largest = 140;
    std::size_t readable = 0;
    for (std::uint8_t const filling : Bytes{0x00, 0x01, 0x7F, 0x80, 0xFF}) {
        Bytes octets(largest, filling);
        for (unsigned head = 0; head < 0x10000; ++head) {
            octets[0] = static_cast<std::uint8_t>(head >> 8U);
            octets[1] = static_cast<std::uint8_t>(head);
            for (std::size_t size = 0; size <= largest; ++size) {
                Octets const data = Octets(octets).first(size);
                bool const isRead = isReadable(data);
                readable += isRead ? 1 : 0;
                if (isRead && isPlainlyUnreadable(data)) {
                    FAIL() << head << ", filled with " << unsigned{filling} << ", " << size;
                }
            }
        }
    }
    EXPECT_GT(readable, 1'000'000U);
}

TEST(BerReader, ElementTooLongForWhatIsThereIsPlainlyUnreadable) {
    // In the short form, and in forms of more octets than are read.
    for (std::size_t size = 0; size <= 140; ++size) {
        Bytes data(size, 0x00);
        for (unsigned length = 0; length < 256 && size >= 2; ++length) {
            data[1] = static_cast<std::uint8_t>(length);
            bool const isLongForm = length >= 0x80 && length <= 0x84;
            EXPECT_EQ(isPlainlyUnreadable(data), !isLongForm && length > size - 2)
                << length << " of " << size;
        }
        if (size < 2) {
            EXPECT_TRUE(isPlainlyUnreadable(data));
        }
    }
}

TEST(BerHeader, TellsWhyItCannotBeRead) {
    auto const formOf = [](Bytes const& octets) { return readBerHeader(octets).form; };
    EXPECT_EQ(formOf({}), BerForm::cut);
    EXPECT_EQ(formOf({0x80}), BerForm::cut);
    EXPECT_EQ(formOf({0x80, 0x81}), BerForm::cut);
    EXPECT_EQ(formOf({0x80, 0x84, 1, 2, 3}), BerForm::cut);
    EXPECT_EQ(formOf({0x1F}), BerForm::longIdentifier);
    EXPECT_EQ(formOf({0xBF, 0x80}), BerForm::longIdentifier);
    EXPECT_EQ(formOf({0x80, 0x80, 1}), BerForm::indefiniteLength);
    EXPECT_EQ(formOf({0x80, 0x85, 0, 0, 0, 0, 1}), BerForm::longLength);
    EXPECT_EQ(formOf({0x80, 0xFF}), BerForm::longLength);
    EXPECT_EQ(formOf({0x80, 0x00}), BerForm::readable);
}

TEST(BerHeader, GivesTagSizeAndClaimedLength) {
    auto const textOf = [](Bytes const& octets) {
        BerHeader const header = readBerHeader(octets);
        return std::to_string(header.tag) + ": " + std::to_string(header.size) + " + " +
               std::to_string(header.length);
    };
    EXPECT_EQ(textOf({0x30, 0x7F}), "48: 2 + 127");
    EXPECT_EQ(textOf({0x30, 0x81, 0x05}), "48: 3 + 5");
    EXPECT_EQ(textOf({0x30, 0x82, 0x01, 0x00, 9, 9}), "48: 4 + 256");
    EXPECT_EQ(textOf({0x30, 0x83, 0x01, 0x00, 0x02}), "48: 5 + 65538");
    EXPECT_EQ(textOf({0x30, 0x84, 0xFF, 0xFF, 0xFF, 0xFE}), "48: 6 + 4294967294");
    EXPECT_EQ(textOf({0x30, 0x80}), "48: 0 + 0");
    EXPECT_EQ(textOf({}), "0: 0 + 0");
}

TEST(BerHeader, AgreesWithReadElementWhereBothReadAnElement) {
    for (unsigned head = 0; head < 0x10000; ++head) {
        Bytes octets(160, 0x00);
        octets[0] = static_cast<std::uint8_t>(head >> 8U);
        octets[1] = static_cast<std::uint8_t>(head);
        octets[3] = 7;
        std::size_t index = 0;
        BerElement element;
        bool const isRead = readElement(octets, index, element);
        BerHeader const header = readBerHeader(octets);
        if (header.form == BerForm::readable && header.size + header.length <= octets.size()) {
            ASSERT_TRUE(isRead) << head;
            ASSERT_EQ(element.tag, header.tag) << head;
            ASSERT_EQ(element.headerSize, header.size) << head;
            ASSERT_EQ(element.value.size(), header.length) << head;
        } else {
            bool const isStricter =
                header.form == BerForm::longIdentifier || header.form == BerForm::indefiniteLength;
            ASSERT_TRUE(isStricter || !isRead) << head;
        }
    }
}

}  // namespace
}  // namespace TalTest::BerReaderTest
