// When headings stand out.

#include <gtest/gtest.h>

#include <algorithm>

#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionRows.hpp"
#include "tools/StreamsTraffic.hpp"
#include "tools/output/Style.hpp"

namespace TalTest::ColoursTest {
namespace {

constexpr auto kBold = "\x1b[1m";
constexpr auto kPlain = "\x1b[0m";

bool isColoured(std::string const& text) { return text.find('\x1b') != std::string::npos; }

/// What a command writes to a terminal.
std::string onTerminal(Arguments const& command, ExtraEnvironment const& environment = {}) {
    ExtraEnvironment all = {{"TERM", "xterm"}, {"NO_COLOR", ""}};
    all.insert(all.end(), environment.begin(), environment.end());
    auto const result =
        runCompanion(command, {.output = StandardOutputIs::terminal, .environment = all});
    EXPECT_EQ(result.status, 0);
    return result.out;
}

std::vector<Arguments> tables(std::string const& file) {
    return {{"streams", file},
            {"packets", file},
            {"show", file},
            {"captures", file},
            {"library", "judge", file}};
}

TEST(Colours, AreShownOnATerminalUnlessTheEnvironmentForbidsThem) {
    TempFile const file(smallCapture());
    for (auto const& command : tables(file.path())) {
        EXPECT_TRUE(isColoured(onTerminal(command))) << command[0];
        EXPECT_FALSE(isColoured(onTerminal(command, {{"NO_COLOR", "1"}})));
        EXPECT_FALSE(isColoured(onTerminal(command, {{"TERM", "dumb"}})));
        EXPECT_FALSE(isColoured(runCompanion(command).out));
    }
}

TEST(Colours, AreShownOrNotAsTheOptionSaysWhateverElse) {
    TempFile const file(smallCapture());
    for (auto const& command : tables(file.path())) {
        auto const always = joined(command, {"--color", "always"});
        auto const never = joined(command, {"--color=never"});
        EXPECT_TRUE(isColoured(runCompanion(always).out));
        EXPECT_TRUE(isColoured(onTerminal(always, {{"NO_COLOR", "1"}, {"TERM", "dumb"}})));
        EXPECT_FALSE(isColoured(onTerminal(never)));
        EXPECT_EQ(onTerminal(joined(command, {"--color", "auto"})), onTerminal(command));
    }
}

TEST(Colours, MakeTheHeadingsBoldAndChangeNothingElse) {
    TempFile const file(smallCapture());
    for (auto const& command : tables(file.path())) {
        auto const plain = runCompanion(command).out;
        auto text = runCompanion(joined(command, {"--color", "always"})).out;
        EXPECT_TRUE(text.starts_with(kBold));
        EXPECT_EQ(text.find(kPlain), 4 + plain.find('\n'));
        for (std::string const sequence : {kBold, kPlain}) {
            for (auto at = text.find(sequence); at != std::string::npos; at = text.find(sequence)) {
                text.erase(at, sequence.size());
            }
        }
        EXPECT_EQ(text, plain);
    }
}

TEST(Colours, AreNeverInMachineFormats) {
    TempFile const file(smallCapture());
    for (auto const& command : tables(file.path())) {
        for (auto const* format : {"json", "csv"}) {
            auto const plain = joined(command, {"-f", format});
            auto const coloured = joined(plain, {"--color", "always"});
            EXPECT_EQ(onTerminal(coloured), runCompanion(plain).out);
        }
    }
}

TEST(Colours, AreNotInAFileUnlessAlwaysWanted) {
    TempFile const file(smallCapture());
    TempDir const folder;
    auto const out = folder.file("out");
    auto const written = [&](Arguments const& more) {
        EXPECT_EQ(onTerminal(joined({"streams", file.path(), "-o", out}, more)), "");
        auto const octets = readFile(out);
        return std::string(octets.begin(), octets.end());
    };
    EXPECT_FALSE(isColoured(written({})));
    EXPECT_TRUE(isColoured(written({"--color", "always"})));
}

TEST(Colours, AreWantedByOptionOrByTerminal) {
    using TalIec61850Tools::wantsColour;
    EXPECT_TRUE(wantsColour("always", false));
    EXPECT_FALSE(wantsColour("never", true));
    EXPECT_FALSE(wantsColour("auto", false));
    EXPECT_EQ(TalIec61850Tools::emphasise("a", false), "a");
    EXPECT_EQ(TalIec61850Tools::emphasise("a", true), std::string(kBold) + "a" + kPlain);
}

}  // namespace
}  // namespace TalTest::ColoursTest
