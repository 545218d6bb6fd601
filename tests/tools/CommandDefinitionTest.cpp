// Commands as they are defined: what the parser refuses, and what help is made of.

#include <gtest/gtest.h>

#include <CLI/CLI.hpp>
#include <algorithm>

#include "tools/help/HelpFooter.hpp"
#include "tools/help/ProgramDescription.hpp"
#include "tools/options/CommandDefinition.hpp"
#include "tools/options/CommonOptions.hpp"

namespace TalIec61850Tools::CommandDefinitionTest {
namespace {

using Words = std::vector<std::string>;

/// A program with one command that has one option, --size.
struct SizedProgram {
    CLI::App parser{"Has sizes.", "sized"};
    ProgramDefinition program{.parser = parser, .commands = {}};
    CommandDefinition& command = addCommand(program, "read", "Reads.");
    std::string size;
    CLI::Option& option = *command.parser->add_option("--size", size, "How large");

    void parse(Words arguments) {
        std::reverse(arguments.begin(), arguments.end());
        parser.parse(std::move(arguments));
    }
};

TEST(AllowOnly, RefusesEveryOtherValueWithTheChoices) {
    SizedProgram sized;
    allowOnly(sized.command, sized.option, {"small", "large"});
    sized.parse({"read", "--size", "large"});
    EXPECT_EQ(sized.size, "large");
    for (std::string const wrong : {"l", "", "small,large", "{small}"}) {
        try {
            sized.parse({"read", "--size", wrong});
            FAIL() << wrong;
        } catch (CLI::ValidationError const& error) {
            std::string const text = "--size: " + wrong + " is none of small, large";
            EXPECT_TRUE(std::string(error.what()).starts_with(text)) << error.what();
        }
    }
}

TEST(AllowOnly, IgnoresLetterCase) {
    SizedProgram sized;
    allowOnly(sized.command, sized.option, {"small", "large"});
    sized.parse({"read", "--size", "LarGe"});
    EXPECT_EQ(sized.size, "large");
}

TEST(AllowOnly, NamesTheChoiceThatMayBeMeant) {
    SizedProgram sized;
    allowOnly(sized.command, sized.option, {"small", "large"});
    try {
        sized.parse({"read", "--size", "Larg"});
        FAIL();
    } catch (CLI::ValidationError const& error) {
        EXPECT_STREQ(error.what(), "--size: Larg is none of small, large; did you mean large?");
    }
}

TEST(AllowOnly, IsWhatADescriptionTellsAsChoices) {
    SizedProgram sized;
    auto const choices = [&] {
        auto const options = describe(sized.program).commands.at(0).options;
        return std::find_if(options.begin(), options.end(),
                            [](auto const& option) { return option.longName == "size"; })
            ->choices;
    };
    sized.option.type_name("{a,b}");  // a text for people, not the choices
    EXPECT_EQ(choices(), Words{});
    // A comma and a brace would not survive in the parser's own text.
    allowOnly(sized.command, sized.option, {"a,b", "}", "c"});
    EXPECT_EQ(choices(), (Words{"a,b", "}", "c"}));
}

TEST(CommandDefinition, KeepsItsPlaceWhenOthersAreAdded) {
    SizedProgram sized;
    for (int i = 0; i < 100; ++i) {
        addCommand(sized.program, "more" + std::to_string(i), "");
    }
    EXPECT_EQ(&sized.command, &sized.program.commands.front());
    auto const commands = describe(sized.program).commands;
    ASSERT_EQ(commands.size(), 101U);
    EXPECT_EQ(commands.front().name, "read");
    EXPECT_EQ(commands.back().name, "more99");
}

TEST(HelpFooter, HasTheNotesThenTheExamples) {
    SizedProgram sized;
    sized.command.examples = {"sized read", "cat a | sized read"};
    EXPECT_EQ(helpFooter(sized.command), "Example:\n  sized read\n  cat a | sized read");
    sized.command.notes = "An Example: in a note.\n\n";
    EXPECT_EQ(helpFooter(sized.command),
              "An Example: in a note.\n\nExample:\n  sized read\n  cat a | sized read");
}

TEST(HelpFooter, HasFormatsAndExitStatusesOfCommandsThatReadCaptures) {
    SizedProgram sized;
    EXPECT_EQ(helpFooter(sized.command).find("json"), std::string::npos);
    EXPECT_EQ(helpFooter(sized.command).find("Exit status"), std::string::npos);
    CommonOptions options;
    addCommonOptions(sized.command, options);
    EXPECT_NE(helpFooter(sized.command).find("\njson writes one object per line"),
              std::string::npos);
    EXPECT_NE(helpFooter(sized.command).find("\nExit status: 0 fine; 1 "), std::string::npos);
}

TEST(HelpFooter, EndsTheHelpOfEachCommand) {
    SizedProgram sized;
    sized.command.examples = {"sized read"};
    addCommand(sized.program, "write", "Writes.").examples = {"sized write"};
    addHelpFooters(sized.program);
    EXPECT_EQ(sized.command.parser->get_footer(), "Example:\n  sized read");
    EXPECT_EQ(sized.program.commands.back().parser->get_footer(), "Example:\n  sized write");
}

TEST(DescribedCommand, HasNotesAndExamplesWhateverIsInThem) {
    SizedProgram sized;
    sized.command.notes = "Example:\n  not one\n\njson writes one object per line\n";
    sized.command.examples = {"sized read\n  --size 1"};
    auto const command = describe(sized.program).commands.at(0);
    EXPECT_EQ(command.notes, sized.command.notes);
    EXPECT_EQ(command.examples, sized.command.examples);
}

}  // namespace
}  // namespace TalIec61850Tools::CommandDefinitionTest
