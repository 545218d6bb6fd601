#include <gtest/gtest.h>

#include "tools/output/NearestWords.hpp"

namespace TalIec61850Tools::NearestWordsTest {
namespace {

using Words = std::vector<std::string>;

TEST(SameWord, IsTheSameInAnyLetterCase) {
    EXPECT_TRUE(isSameWord("appId", "APPID"));
    EXPECT_TRUE(isSameWord("", ""));
    EXPECT_FALSE(isSameWord("appId", "appI"));
    EXPECT_FALSE(isSameWord("appId", "apIpd"));
    std::string const longWord(80, 'a');
    EXPECT_FALSE(isSameWord(longWord + "b", longWord + "c"));
}

TEST(NearestWords, CountsInsertionsRemovalsReplacementsAndSwaps) {
    EXPECT_EQ(countDifferences("", ""), 0U);
    EXPECT_EQ(countDifferences("streams", "strems"), 1U);
    EXPECT_EQ(countDifferences("strems", "streams"), 1U);
    EXPECT_EQ(countDifferences("csv", "csx"), 1U);
    EXPECT_EQ(countDifferences("jsno", "json"), 1U);
    EXPECT_EQ(countDifferences("", "json"), 4U);
    EXPECT_EQ(countDifferences("kitten", "sitting"), 3U);
    EXPECT_EQ(countDifferences("JSON", "json"), 0U);
}

TEST(NearestWords, LooksAtTheBeginOfALongWordAlone) {
    std::string const begin(64, 'a');
    EXPECT_EQ(countDifferences(begin + std::string(100'000, 'b'), begin), 0U);
    EXPECT_EQ(nearestWord(std::string(65, 'a'), {begin}), std::nullopt);
}

TEST(NearestWords, AreThoseOfWhichAThirdDiffersAtMost) {
    Words const commands = {"streams", "packets", "show"};
    EXPECT_EQ(nearestWord("strem", commands), std::nullopt);
    EXPECT_EQ(nearestWord("strems", commands), "streams");
    EXPECT_EQ(nearestWord("shw", commands), "show");
    EXPECT_EQ(nearestWord("shoo", commands), "show");
    EXPECT_EQ(nearestWord("nothing", commands), std::nullopt);
    EXPECT_EQ(nearestWord("", {"a"}), std::nullopt);
    EXPECT_EQ(nearestWord("a", {}), std::nullopt);
}

TEST(NearestWords, AreElseTheOnlyOnesThatBeginWithTheWord) {
    Words const options = {"--columns", "--color", "--severity"};
    EXPECT_EQ(nearestWord("err", {"note", "warning", "error"}), "error");
    EXPECT_EQ(nearestWord("--sev", options), "--severity");
    EXPECT_EQ(nearestWord("--col", options), std::nullopt);
    EXPECT_EQ(nearestWord("--se", options), std::nullopt);
    EXPECT_EQ(nearestWord("--columnsOfAll", options), std::nullopt);
}

TEST(NearestWords, ComeFirstAndTheOthersInTheirOrder) {
    EXPECT_EQ(nearestFirst("MU2", {"Z9", "MU1", "Y9", "MU2"}), (Words{"MU2", "MU1", "Z9", "Y9"}));
    EXPECT_EQ(nearestFirst("a", {}), Words{});
}

TEST(NearestWords, MakeAQuestion) {
    EXPECT_EQ(didYouMean("strems", {"streams"}), "; did you mean streams?");
    EXPECT_EQ(didYouMean("nothing", {"streams"}), "");
}

}  // namespace
}  // namespace TalIec61850Tools::NearestWordsTest
