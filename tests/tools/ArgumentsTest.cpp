// Arguments as the parser is given them.

#include <gtest/gtest.h>

#include <CLI/CLI.hpp>
#include <algorithm>

#include "tools/options/Arguments.hpp"
#include "tools/options/CommonOptions.hpp"
#include "tools/options/UsageError.hpp"

namespace TalIec61850Tools::ArgumentsTest {
namespace {

using Words = std::vector<std::string>;

/// In the order of the command line.
Words argumentsOf(Words const& words) {
    CLI::App parser;
    ProgramDefinition program{.parser = parser, .commands = {}};
    CommonOptions options;
    addCommonOptions(addCommand(program, "read", "Reads."), options);
    Words arguments = argumentsFor(parser, words);
    std::reverse(arguments.begin(), arguments.end());
    return arguments;
}

TEST(Arguments, AreLeftAloneWhereTheParserReadsThemWell) {
    for (Words const& words : {Words{},
                               {"read", "a.pcap", "-", "-q", "--format=json"},
                               {"read", "-o", "out", "-f", "csv", "a@1"},
                               {"-@", "-@1x", "-@@1", "a++", "[a", "a]"}}) {
        EXPECT_EQ(argumentsOf(words), words);
    }
}

TEST(Arguments, ThatLookLikeSyntaxGetAFolder) {
    EXPECT_EQ(argumentsOf({"read", "[a]", "++", "[]"}), (Words{"read", "./[a]", "./++", "./[]"}));
    EXPECT_EQ(argumentsOf({"read", "--", "[a]"}), (Words{"read", "--", "./[a]"}));
}

TEST(Arguments, ThatAreValuesOfOptionsStayAsTheyAre) {
    EXPECT_EQ(argumentsOf({"read", "-o", "[a]", "[a]"}), (Words{"read", "-o", "[a]", "./[a]"}));
    EXPECT_EQ(argumentsOf({"read", "--output", "-@1", "a"}),
              (Words{"read", "--output", "-@1", "a"}));
    EXPECT_EQ(argumentsOf({"read", "--output", "--", "-@1"}),
              (Words{"read", "--output", "--", "--", "-@1"}));
    EXPECT_EQ(argumentsOf({"read", "--quiet", "[a]"}), (Words{"read", "--quiet", "./[a]"}));
}

TEST(Arguments, ThatArePacketsOfStandardInputGoAfterTheOptions) {
    EXPECT_EQ(argumentsOf({"read", "-@1", "-q"}), (Words{"read", "-q", "--", "-@1"}));
    EXPECT_EQ(argumentsOf({"read", "-@1", "--", "b", "-@2"}),
              (Words{"read", "--", "-@1", "b", "-@2"}));
    EXPECT_EQ(argumentsOf({"read", "--"}), (Words{"read", "--"}));
}

TEST(Arguments, WithAnEmptyValueBecomeTwo) {
    EXPECT_EQ(argumentsOf({"read", "--output=", "a"}), (Words{"read", "--output", "", "a"}));
    EXPECT_EQ(argumentsOf({"read", "--nothing="}), (Words{"read", "--nothing="}));
    EXPECT_EQ(argumentsOf({"read", "--", "--output="}), (Words{"read", "--", "--output="}));
}

TEST(Arguments, WithAnEmptyValueForAFlagAreRefused) {
    try {
        argumentsOf({"read", "--quiet="});
        FAIL();
    } catch (UsageError const& error) {
        EXPECT_STREQ(error.what(), "--quiet takes no value");
    }
}

}  // namespace
}  // namespace TalIec61850Tools::ArgumentsTest
