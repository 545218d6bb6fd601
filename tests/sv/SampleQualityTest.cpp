#include <gtest/gtest.h>

#include <TalIec61850Parser/sv/SvParser.hpp>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <type_traits>
#include <vector>

#include "support/Bytes.hpp"

namespace TalTest::SampleQualityTest {
namespace {

using namespace TalIec61850Parser;

static_assert(std::is_same_v<decltype(&SvParser::_parseSampleDataWithQuality),
                             void (*)(std::vector<std::uint8_t> const&, std::string const&)>);
static_assert(std::is_same_v<decltype(&SvParser::_parseQualityValidity),
                             void (*)(std::uint8_t, std::string const&)>);

/// What an action writes to the standard streams.
template <typename Action>
std::string outputOf(Action const& action) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    action();
    std::fflush(nullptr);
    return testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr();
}

TEST(SampleQuality, IsReadFromDataOfAnySizeAndLeavesItAlone) {
    EXPECT_EQ(outputOf([] {
                  for (std::size_t size = 0; size <= 100; ++size) {
                      for (std::uint8_t const octet : Bytes{0x00, 0x03, 0xFF}) {
                          Bytes const data(size, octet);
                          SvParser::_parseSampleDataWithQuality(data, "phase A");
                          EXPECT_EQ(data, Bytes(size, octet));
                      }
                  }
                  SvParser::_parseSampleDataWithQuality(Bytes(100'000), "");
              }),
              "");
}

TEST(SampleQuality, IsTakenWithAnyValidityCode) {
    EXPECT_EQ(outputOf([] {
                  for (unsigned code = 0; code <= 0xFF; ++code) {
                      std::string const label("a\0b", 3);
                      SvParser::_parseQualityValidity(static_cast<std::uint8_t>(code), label);
                      EXPECT_EQ(label, std::string("a\0b", 3));
                  }
                  SvParser::_parseQualityValidity(0, std::string(100'000, 'x'));
              }),
              "");
}

}  // namespace
}  // namespace TalTest::SampleQualityTest
