#include <gtest/gtest.h>

#include <TalIec61850Parser/Version.hpp>
#include <string>

#if TALIEC61850PARSER_VERSION_NUMBER < 1000000
#error "the preprocessor cannot compare the version"
#endif

namespace TalTest::VersionTest {
namespace {

using namespace TalIec61850Parser;

TEST(Version, IsThatOfTheHeadersWhereBothAreOfOneBuild) {
    EXPECT_STREQ(libraryVersion(), TALIEC61850PARSER_VERSION);
    EXPECT_EQ(libraryVersionNumber(), TALIEC61850PARSER_VERSION_NUMBER);
}

TEST(Version, IsMadeOfItsThreeNumbers) {
    EXPECT_EQ(std::string(TALIEC61850PARSER_VERSION),
              std::to_string(TALIEC61850PARSER_VERSION_MAJOR) + "." +
                  std::to_string(TALIEC61850PARSER_VERSION_MINOR) + "." +
                  std::to_string(TALIEC61850PARSER_VERSION_PATCH));
    EXPECT_EQ(TALIEC61850PARSER_VERSION_NUMBER / 1'000'000, TALIEC61850PARSER_VERSION_MAJOR);
    EXPECT_EQ(TALIEC61850PARSER_VERSION_NUMBER / 1000 % 1000, TALIEC61850PARSER_VERSION_MINOR);
    EXPECT_EQ(TALIEC61850PARSER_VERSION_NUMBER % 1000, TALIEC61850PARSER_VERSION_PATCH);
}

}  // namespace
}  // namespace TalTest::VersionTest
