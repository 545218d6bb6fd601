#include <gtest/gtest.h>

#include <TalIec61850Scl/read/ReadStation.hpp>
#include <string>

#include "scl/SclText.hpp"

namespace TalTest::EncodingsTest {
namespace {

using namespace TalIec61850Scl;

std::string const kDesc = "Auslösung µ";

/// A description whose control block has kDesc, in UTF-8, behind a declaration.
std::string describedStation(std::string const& declaration) {
    return declaration + "\n<SCL><IED name='I'><AccessPoint name='A'><Server><LDevice inst='L'>\n" +
           "<LN0 lnClass='LLN0' inst='' lnType='T'>\n<GSEControl name='g' appID='i' desc='" +
           kDesc + "'/></LN0></LDevice></Server></AccessPoint></IED></SCL>";
}

/// Each character of a text of ISO 8859-1 characters, in units of some octets.
std::string inUnits(std::string const& utf8, int size, bool bigEndian) {
    std::string octets;
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        auto character = static_cast<unsigned char>(utf8[i]);
        if (character >= 0xC0) {
            character = static_cast<unsigned char>(((character & 3U) << 6U) |
                                                   (static_cast<unsigned char>(utf8[++i]) & 0x3FU));
        }
        std::string unit(static_cast<std::size_t>(size), '\0');
        unit[bigEndian ? unit.size() - 1 : 0] = static_cast<char>(character);
        octets += unit;
    }
    return octets;
}

void expectDescribed(std::string const& octets) {
    auto const station = readStation(octets, "");
    EXPECT_TRUE(station.diagnostics.empty());
    ASSERT_EQ(station.controlBlocks.size(), 1U);
    EXPECT_EQ(station.controlBlocks[0].desc, kDesc);
    EXPECT_EQ(station.controlBlocks[0].place.line, 4U);
}

std::string const kDeclaration = "<?xml version='1.0'?>";

TEST(SclEncodings, AreUtf8WithAndWithoutByteOrderMark) {
    expectDescribed(describedStation(kDeclaration));
    expectDescribed("\xEF\xBB\xBF" + describedStation(kDeclaration));
}

TEST(SclEncodings, AreUtf16OfBothOrders) {
    std::string const text = describedStation("<?xml version='1.0' encoding='UTF-16'?>");
    expectDescribed("\xFF\xFE" + inUnits(text, 2, false));
    expectDescribed("\xFE\xFF" + inUnits(text, 2, true));
    expectDescribed(inUnits(text, 2, false));
    expectDescribed(inUnits(text, 2, true));
}

TEST(SclEncodings, AreUtf32OfBothOrders) {
    std::string const text = describedStation(kDeclaration);
    expectDescribed(std::string("\xFF\xFE\0\0", 4) + inUnits(text, 4, false));
    expectDescribed(std::string("\0\0\xFE\xFF", 4) + inUnits(text, 4, true));
    expectDescribed(inUnits(text, 4, false));
    expectDescribed(inUnits(text, 4, true));
}

TEST(SclEncodings, AreIso8859WhereThatIsDeclared) {
    expectDescribed(
        inUnits(describedStation("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>"), 1, false));
    expectDescribed(
        inUnits(describedStation("<?xml version='1.0' encoding='windows-1252'?>"), 1, false));
}

TEST(SclEncodings, OfUnknownNamesAreReadAsTheyAre) {
    std::string const text = describedStation("<?xml version='1.0' encoding='GB2312'?>");
    auto const station = readStation(inUnits(text, 1, false), "");
    ASSERT_EQ(station.controlBlocks.size(), 1U);
    EXPECT_EQ(station.controlBlocks[0].desc, "Ausl\xF6sung \xB5");
}

TEST(SclEncodings, HaveNoOctetZeroInside) {
    std::string text = describedStation(kDeclaration);
    text += std::string("\n\0<SCL/>", 8);
    auto const station = readStation(text, "");
    ASSERT_EQ(station.diagnostics.size(), 1U);
    EXPECT_EQ(station.diagnostics[0].code, DiagnosticCode::notXml);
    EXPECT_EQ(station.diagnostics[0].place.line, 5U);
    EXPECT_EQ(station.controlBlocks.size(), 1U);
}

TEST(SclEncodings, WithHalfCharactersAtTheEndAreReadTillThere) {
    std::string const text = describedStation(kDeclaration);
    for (std::size_t cut = 0; cut < 8; ++cut) {
        std::string octets = "\xFF\xFE" + inUnits(text, 2, false);
        octets.resize(octets.size() - cut);
        EXPECT_EQ(readStation(octets, "").controlBlocks.size(), 1U);
    }
    EXPECT_TRUE(readStation(std::string("\xFF\xFE\x3C", 3), "").controlBlocks.empty());
    EXPECT_TRUE(readStation(std::string("\xFF\xFE\x00\xD8", 4), "").controlBlocks.empty());
}

}  // namespace
}  // namespace TalTest::EncodingsTest
