// What the length octet alone says of an element, against reading it.

#include <gtest/gtest.h>

#include <TalIec61850Parser/codec/BerReader.hpp>
#include <cstddef>
#include <cstdint>

#include "support/Ber.hpp"
#include "support/Bytes.hpp"

namespace {

using namespace TalTest;
using TalIec61850Parser::detail::BerElement;
using TalIec61850Parser::detail::isPlainlyUnreadable;
using TalIec61850Parser::detail::Octets;
using TalIec61850Parser::detail::readElement;

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

}  // namespace
