// Texts that help, manual page and completions are made of.

#include <gtest/gtest.h>

#include "tools/help/Completions.hpp"
#include "tools/help/FieldList.hpp"
#include "tools/help/ManualPage.hpp"
#include "tools/output/WrapText.hpp"

namespace TalIec61850Tools::HelpTextTest {
namespace {

TEST(WrapText, FillsLinesUpToTheirWidth) {
    EXPECT_EQ(wrapText("aa bb cc", 8), "aa bb cc");
    EXPECT_EQ(wrapText("aa bb cc", 7), "aa bb\ncc");
    EXPECT_EQ(wrapText("aa bb cc", 5), "aa bb\ncc");
    EXPECT_EQ(wrapText("aa bb cc", 4), "aa\nbb\ncc");
}

TEST(WrapText, GivesALongWordALine) {
    EXPECT_EQ(wrapText("a bcdefg h", 3), "a\nbcdefg\nh");
    EXPECT_EQ(wrapText("bcdefg", 3), "bcdefg");
    EXPECT_EQ(wrapText("a b", 0), "a\nb");
}

TEST(WrapText, JoinsWordsByOneBlank) {
    EXPECT_EQ(wrapText("  a   b\n\nc ", 80), "a b c");
    EXPECT_EQ(wrapText("", 80), "");
    EXPECT_EQ(wrapText(" \n ", 80), "");
}

TEST(FieldList, HasRemarksAfterTheirFields) {
    EXPECT_EQ(listFields({"a", "b", "c"}, {{"b", "in s"}, {"x", "unused"}}), "a, b (in s), c");
    EXPECT_EQ(listFields({"a"}, {{"a", "1"}}), "a (1)");
    EXPECT_EQ(listFields({}, {}), "");
}

/// A program with a command whose texts have the characters that scripts and pages read.
ProgramDescription trickyProgram() {
    ProgramDescription program{
        .name = "tal-iec61850", .text = "It's a-b.", .options = {}, .commands = {}};
    program.options.push_back(
        {.shortName = "h", .longName = "help", .valueName = "", .choices = {}, .text = "Help"});
    CommandDescription command;
    command.name = "read";
    command.text = "Reads [it]: 'all' \\ of it";
    command.options = {
        {.shortName = "f",
         .longName = "format",
         .valueName = "NAME",
         .choices = {"one", "two"},
         .text = "It's [so]: a\\b"},
        {.shortName = "", .longName = "output", .valueName = "FILE", .choices = {}, .text = "Out"},
        {.shortName = "", .longName = "from", .valueName = "TIME", .choices = {}, .text = "When"},
        {.shortName = "q", .longName = "quiet", .valueName = "", .choices = {}, .text = "Quiet"}};
    command.argumentName = "SHELL";
    command.argumentText = ".which";
    command.argumentChoices = {"bash", "zsh"};
    command.notes = ".A dot\n'a quote\nand ~ ^ ` -\\\n";
    command.examples = {"read 'it'", ".read"};
    program.commands.push_back(command);
    return program;
}

void expectParts(std::string const& text, std::vector<std::string> const& parts) {
    for (auto const& part : parts) {
        EXPECT_NE(text.find(part), std::string::npos) << part << "\nin\n" << text;
    }
}

TEST(BashScript, OffersChoicesFilesAndNothing) {
    expectParts(bashCompletion(trickyProgram()),
                {"            read) command=${command:+$command/}$word; break ;;\n",
                 "        read:--format|read:-f) words='one two' ;;\n",
                 "        read:--output) files=yes ;;\n", "        read:--from) words='' ;;\n",
                 "                '') words='read --help' ;;\n",
                 "                read) [[ $current == -* ]] && "
                 "words='--format --output --from --quiet' || words='bash zsh' ;;\n"});
    EXPECT_EQ(bashCompletion(trickyProgram()).find("read:--quiet"), std::string::npos);
}

TEST(ZshScript, EscapesTextsAndOffersChoicesFilesAndNothing) {
    expectParts(zshCompletion(trickyProgram()),
                {"'*--help[Help]'", R"('*--format=[It'\''s \[so\]\: a\b]:NAME:(one two)')",
                 R"('*-f+[It'\''s \[so\]\: a\b]:NAME:(one two)')", "'*--output=[Out]:FILE:_files'",
                 "'*--from=[When]:TIME:'", "'*--quiet[Quiet]' '*-q[Quiet]'", "'*:SHELL:(bash zsh)'",
                 R"(read\:"Reads \[it\]\: '\''all'\'' \ of it")"});
}

TEST(FishScript, EscapesTextsAndOffersChoicesFilesAndNothing) {
    std::string const command = "complete -c tal-iec61850 -n '__fish_seen_subcommand_from read' ";
    expectParts(fishCompletion(trickyProgram()),
                {"complete -c tal-iec61850 -n '__fish_use_subcommand' -s h -l help -d 'Help'\n",
                 "-f -a read -d 'Reads [it]: \\'all\\' \\\\ of it'\n",
                 command + "-s f -l format -x -a 'one two' -d 'It\\'s [so]: a\\\\b'\n",
                 command + "-l output -r -F -d 'Out'\n", command + "-l from -x -d 'When'\n",
                 command + "-s q -l quiet -d 'Quiet'\n", command + "-f -a 'bash zsh'\n"});
}

TEST(ManualPage, ReadsNoTextAsARequestOrAnEscape) {
    expectParts(manualPage(trickyProgram(), "1.2-rc"),
                {".TH TAL\\-IEC61850 1 \"\" \"tal\\-iec61850 1.2\\-rc\"\n",
                 "tal\\-iec61850 \\- It\\(aqs a\\-b.\n",
                 ".TP\n\\fB\\-f, \\-\\-format\\fR \\fINAME\\fR\nIt\\(aqs [so]: a\\eb\n",
                 ".TP\n\\fISHELL\\fR\n\\&.which\n",
                 "\\&.A dot\n\\&\\(aqa quote\nand \\(ti \\(ha \\(ga \\-\\e\n",
                 ".SH EXAMPLES\n.PP\n.nf\nread \\(aqit\\(aq\n\\&.read\n.fi\n"});
}

TEST(ManualPage, HasItsSectionsInTheirUsualOrder) {
    auto const page = manualPage(trickyProgram(), "1");
    std::size_t at = 0;
    for (std::string const section : {"NAME", "SYNOPSIS", "OPTIONS", "COMMANDS", "OUTPUT",
                                      "EXIT STATUS", "ENVIRONMENT", "EXAMPLES"}) {
        auto const found = page.find(".SH " + section + "\n");
        ASSERT_NE(found, std::string::npos) << section;
        EXPECT_GE(found, at) << section;
        at = found;
    }
}

}  // namespace
}  // namespace TalIec61850Tools::HelpTextTest
