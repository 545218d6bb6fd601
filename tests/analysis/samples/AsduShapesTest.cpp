// Where samples are in frames: read in full, and by shapes that were met.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/samples/AsduShapes.hpp>
#include <cstdint>
#include <vector>

#include "support/Data.hpp"
#include "support/SampledValues.hpp"

namespace TalIec61850Analysis::detail::AsduShapesTest {
namespace {

using namespace TalTest;

/// From A2 on, and with some octets after it.
Bytes sequenceOf(SvMessage const& message) {
    Bytes const pdu = savPdu(message);
    Bytes sequence(pdu.begin() + static_cast<std::ptrdiff_t>(sequenceOffset(message)), pdu.end());
    append(sequence, repeat(0xEE, 64));
    return sequence;
}

SvMessage threeAsdus(bool hasRefrTm) {
    SvMessage message;
    message.asdus.clear();
    for (std::uint16_t i = 0; i < 3; ++i) {
        Asdu asdu;
        asdu.svID = "MU0" + std::to_string(i % 2);
        asdu.smpCnt = i;
        if (hasRefrTm) asdu.refrTm = utcTime(1'700'000'000, i);
        asdu.seqData = repeat(static_cast<std::uint8_t>(0x11 * (i + 1)), 12);
        message.asdus.push_back(asdu);
    }
    return message;
}

bool areSame(AsduPlaces const& a, AsduPlaces const& b) {
    return a.asdu == b.asdu && a.data == b.data && a.dataSize == b.dataSize &&
           a.refrTm == b.refrTm && a.end == b.end;
}

TEST(AsduPlace, IsThatOfEachAsdu) {
    for (bool const hasRefrTm : {false, true}) {
        Bytes const sequence = sequenceOf(threeAsdus(hasRefrTm));
        std::uint32_t before = 0;
        for (std::size_t number = 0; number < 3; ++number) {
            auto const places = findAsdu(sequence, number);
            ASSERT_TRUE(places);
            EXPECT_GT(places->asdu, before);
            EXPECT_EQ(sequence[places->asdu], 0x30);
            EXPECT_EQ(places->dataSize, 12U);
            EXPECT_EQ(sequence[places->data], 0x11 * (number + 1));
            EXPECT_EQ(sequence[places->data - 2], 0x87);
            EXPECT_EQ(sequence[places->data - 1], 12);
            EXPECT_EQ(places->refrTm != 0, hasRefrTm);
            if (hasRefrTm) {
                EXPECT_EQ(sequence[places->refrTm - 2], 0x84);
            }
            before = places->asdu;
        }
        EXPECT_FALSE(findAsdu(sequence, 3));
    }
}

TEST(AsduPlace, IsNoneWhereThereIsNoSequence) {
    EXPECT_FALSE(findAsdu({}, 0));
    EXPECT_FALSE(findAsdu(Bytes{0x30, 0x00}, 0));
    EXPECT_FALSE(findAsdu(Bytes{0xA2}, 0));
    EXPECT_FALSE(findAsdu(Bytes{0xA2, 0x00}, 0));
    EXPECT_FALSE(findAsdu(Bytes(100, 0xFF), 0));
    EXPECT_FALSE(findAsdu(Bytes(100, 0x00), 0));
}

TEST(AsduPlace, IsInsideOfWhatIsThereWhereverItIsCut) {
    Bytes const whole = sequenceOf(threeAsdus(true));
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        Bytes const cut = prefix(whole, size);
        std::vector<std::uint8_t> mask;
        for (std::size_t number = 0; number < 4; ++number) {
            auto const places = findAsdu(cut, number, &mask);
            EXPECT_EQ(mask.size(), cut.size());
            if (!places) continue;
            EXPECT_LT(places->asdu, cut.size());
            EXPECT_LE(places->data + places->dataSize, cut.size());
            EXPECT_LE(places->refrTm == 0 ? 0 : places->refrTm + 8, cut.size());
            EXPECT_LE(places->end, cut.size());
        }
    }
}

/// Changes each octet in turn, to a few others, and expects that what fits a shape is where it is
/// read to be.
void expectOnlyWhatFits(SvMessage const& message, std::size_t number) {
    Bytes const sequence = sequenceOf(message);
    std::vector<std::uint8_t> mask;
    auto const places = findAsdu(sequence, number, &mask);
    ASSERT_TRUE(places);
    AsduShapes shapes;
    EXPECT_EQ(shapes.find(sequence, number), nullptr);
    shapes.learn(sequence, number, *places, mask);
    EXPECT_EQ(shapes.reach(), places->end);
    ASSERT_NE(shapes.find(sequence, number), nullptr);
    EXPECT_TRUE(areSame(*shapes.find(sequence, number), *places));
    EXPECT_EQ(shapes.find(sequence, number + 1), nullptr);
    EXPECT_EQ(shapes.find(prefix(sequence, places->end - 1), number), nullptr);
    std::size_t significant = 0;
    for (std::size_t i = 0; i < sequence.size(); ++i) {
        bool const isSignificant = i < places->end && mask[i] != 0;
        significant += isSignificant ? 1 : 0;
        for (unsigned bit = 0; bit < 8; ++bit) {
            Bytes changed = sequence;
            changed[i] = static_cast<std::uint8_t>(changed[i] ^ 1U << bit);
            AsduPlaces const* const found = shapes.find(changed, number);
            EXPECT_EQ(found == nullptr, isSignificant) << i << " " << bit;
            if (found != nullptr) {
                auto const read = findAsdu(changed, number);
                ASSERT_TRUE(read) << i << " " << bit;
                EXPECT_TRUE(areSame(*found, *read)) << i << " " << bit;
            }
        }
    }
    // Identifier and length of the sequence, of each ASDU up to this one, and of its fields.
    EXPECT_GE(significant, 2 + 2 * (number + 1) + 2 * 5);
}

TEST(AsduShape, FitsNothingThatDiffersInASignificantOctet) {
    for (bool const hasRefrTm : {false, true})
        for (std::size_t number = 0; number < 3; ++number)
            expectOnlyWhatFits(threeAsdus(hasRefrTm), number);
    SvMessage longOne;
    longOne.asdus[0].lengthForm = LengthForm::twoOctets;
    longOne.asdus[0].extraFirst = {0x9E, 0x02, 0x01, 0x02};
    expectOnlyWhatFits(longOne, 0);
}

TEST(AsduShape, IsCountedUpToAnAsduOfAnother) {
    Bytes const sequence = sequenceOf(threeAsdus(false));
    std::vector<std::uint8_t> mask;
    auto const places = findAsdu(sequence, 1, &mask);
    ASSERT_TRUE(places);
    AsduShapes shapes;
    shapes.learn(sequence, 1, *places, mask);
    EXPECT_EQ(shapes.lastNumber(), 1U);
    Bytes other = sequence;
    other[places->data - 1] ^= 1U;  // the length of its data
    Bytes otherValue = sequence;
    otherValue[places->data] ^= 1U;
    for (std::size_t size = 0; size <= 9; ++size) {
        std::vector<std::uint8_t const*> sequences(size, sequence.data());
        EXPECT_EQ(shapes.countLast(sequences), size);
        for (std::size_t i = 0; i < size; ++i) {
            sequences[i] = otherValue.data();
            EXPECT_EQ(shapes.countLast(sequences), size);
            sequences[i] = other.data();
            EXPECT_EQ(shapes.countLast(sequences), i);
            sequences[i] = sequence.data();
        }
    }
}

TEST(AsduShape, IsOneOfSeveral) {
    AsduShapes shapes;
    std::vector<Bytes> sequences;
    std::vector<AsduPlaces> expected;
    for (std::size_t size = 0; size < 60; ++size) {
        SvMessage message;
        message.asdus[0].seqData = Bytes(16 + size, 7);
        sequences.push_back(sequenceOf(message));
        std::vector<std::uint8_t> mask;
        auto const places = findAsdu(sequences.back(), 0, &mask);
        ASSERT_TRUE(places);
        expected.push_back(*places);
        EXPECT_EQ(shapes.find(sequences.back(), 0), nullptr);
        shapes.learn(sequences.back(), 0, *places, mask);
    }
    for (std::size_t i = 0; i < sequences.size(); ++i) {
        AsduPlaces const* const found = shapes.find(sequences[i * 37 % 60], 0);
        ASSERT_NE(found, nullptr);
        EXPECT_TRUE(areSame(*found, expected[i * 37 % 60]));
    }
}

TEST(AsduShape, IsNotLearntWithoutEnd) {
    AsduShapes shapes;
    for (std::size_t size = 0; size < 1000; ++size) {
        SvMessage message;
        message.asdus[0].seqData = Bytes(size, 7);
        Bytes const sequence = sequenceOf(message);
        std::vector<std::uint8_t> mask;
        auto const places = findAsdu(sequence, 0, &mask);
        ASSERT_TRUE(places);
        shapes.learn(sequence, 0, *places, mask);
    }
    // The last of them finds no room, and so no shape that it fits.
    SvMessage message;
    message.asdus[0].seqData = Bytes(999, 7);
    EXPECT_EQ(shapes.find(sequenceOf(message), 0), nullptr);
}

}  // namespace
}  // namespace TalIec61850Analysis::detail::AsduShapesTest
