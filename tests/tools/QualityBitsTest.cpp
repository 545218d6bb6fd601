#include <gtest/gtest.h>

#include <string>

#include "tools/record/QualityBits.hpp"
#include "tools/render/QualityText.hpp"

namespace TalTest::QualityBitsTest {
namespace {

using namespace TalIec61850Tools;

TEST(QualityBits, AreNamedAsTheyAreShown) {
    for (QualityBit const& bit : qualityBits()) {
        SCOPED_TRACE(bit.name);
        EXPECT_EQ(bit.value & ~bit.mask, 0U);
        std::string const shown = toText(SampleQuality{bit.value});
        EXPECT_NE(shown.find(bit.name), std::string::npos) << shown;
    }
}

TEST(QualityBits, AreAllThatAWordCanSay) {
    std::uint32_t all = 0;
    for (QualityBit const& bit : qualityBits()) {
        all |= bit.mask;
    }
    EXPECT_EQ(all, 0x3FFFU);
    EXPECT_EQ(qualityBits()[kChiefQualityBits - 1].name, "test");
}

}  // namespace
}  // namespace TalTest::QualityBitsTest
