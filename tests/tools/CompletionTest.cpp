#include <gtest/gtest.h>

#include <filesystem>
#include <optional>

#include "support/Process.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionProcess.hpp"
#include "tools/StreamsTraffic.hpp"

namespace TalTest::CompletionTest {
namespace {

using Words = std::vector<std::string>;

std::string completionFor(std::string const& shell) {
    auto const result = runCompanion({"completion", shell});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    return result.out;
}

Bytes asBytes(std::string const& text) { return {text.begin(), text.end()}; }

/// Where a shell is installed.
std::optional<std::string> findShell(std::string const& name) {
    for (auto const* folder : {"/bin/", "/usr/bin/"}) {
        if (std::filesystem::exists(folder + name)) {
            return folder + name;
        }
    }
    return std::nullopt;
}

/// What bash offers for the last of the words, in a folder that holds one file, a.pcap.
Words offeredByBash(std::string const& words) {
    TempDir const folder;
    auto const script = folder.write("completion", asBytes(completionFor("bash")));
    std::filesystem::create_directory(folder.file("here"));
    auto const capture = folder.write("here/a.pcap", {});
    auto const result =
        run({"/bin/bash", "--norc", "-c",
             "source \"$SCRIPT\"; cd \"$HERE\"; compopt() { :; }; COMP_WORDS=(" + words +
                 "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _tal_iec61850; printf '%s\\n' "
                 "\"${COMPREPLY[@]}\""},
            {{"SCRIPT", script}, {"HERE", folder.file("here")}});
    EXPECT_EQ(result.err, "");
    return linesOf(result.out);
}

TEST(BashCompletion, OffersTheCommands) {
    EXPECT_EQ(offeredByBash("tal-iec61850 ''"),
              (Words{"streams", "packets", "show", "events", "samples", "comtrade", "redundancy",
                     "check", "scl", "report", "plot", "captures", "completion", "manual",
                     "library", "--help", "--version"}));
    EXPECT_EQ(offeredByBash("tal-iec61850 pa"), Words{"packets"});
}

TEST(BashCompletion, OffersTheCommandsOfAGroup) {
    EXPECT_EQ(offeredByBash("tal-iec61850 library ''"), (Words{"streams", "judge", "--help"}));
    EXPECT_EQ(offeredByBash("tal-iec61850 scl ''"),
              (Words{"list", "subscribers", "check", "--help"}));
    EXPECT_EQ(offeredByBash("tal-iec61850 library judge --li"), Words{"--list"});
    EXPECT_EQ(offeredByBash("tal-iec61850 library streams --li"), Words{""});
    EXPECT_EQ(offeredByBash("tal-iec61850 streams library --sor"), Words{"--sort"});
}

TEST(BashCompletion, OffersOptionsBehindADash) {
    EXPECT_EQ(offeredByBash("tal-iec61850 packets --fro"), Words{"--from"});
    EXPECT_EQ(offeredByBash("tal-iec61850 samples --pl"), Words{"--plot"});
    EXPECT_EQ(offeredByBash("tal-iec61850 events --ti"), Words{"--timeline"});
    EXPECT_EQ(offeredByBash("tal-iec61850 streams a.pcap --go"), (Words{"--gocbref", "--goid"}));
}

TEST(BashCompletion, OffersTheValuesOfAnOption) {
    Words const formats{"table", "json", "csv", "spreadsheet"};
    EXPECT_EQ(offeredByBash("tal-iec61850 show --format ''"), formats);
    EXPECT_EQ(offeredByBash("tal-iec61850 show -f ''"), formats);
    EXPECT_EQ(offeredByBash("tal-iec61850 scl check --result ''"),
              (Words{"match", "missing", "differs", "unexpected"}));
    EXPECT_EQ(offeredByBash("tal-iec61850 show --format ="), formats);
    EXPECT_EQ(offeredByBash("tal-iec61850 show --format = js"), Words{"json"});
}

TEST(BashCompletion, OffersTheValuesOfEveryOptionThatHasChoices) {
    for (std::string const command : {"streams", "packets", "show", "library judge"}) {
        auto const offered = [&](std::string const& option) {
            return offeredByBash("tal-iec61850 " + command + " " + option + " ''");
        };
        EXPECT_EQ(offered("--color"), (Words{"auto", "always", "never"}));
        EXPECT_EQ(offered("--protocol"), (Words{"goose", "sv"}));
        EXPECT_EQ(offered(command == "library judge" ? "--simulation-element" : "--simulated"),
                  (Words{"yes", "no"}));
        EXPECT_EQ(offered("--hsr"), (Words{"A", "B"}));
        EXPECT_EQ(offered("--prp"), (Words{"A", "B"}));
    }
    EXPECT_EQ(offeredByBash("tal-iec61850 streams --sort ''"),
              (Words{"identity", "source", "destination", "appid", "name", "packets", "rate",
                     "first", "last"}));
}

TEST(BashCompletion, OffersNothingForAValueOfTheUsers) {
    EXPECT_EQ(offeredByBash("tal-iec61850 show --appid ''"), Words{""});
}

TEST(BashCompletion, OffersFilesElsewhere) {
    EXPECT_EQ(offeredByBash("tal-iec61850 library judge ''"), Words{"a.pcap"});
    EXPECT_EQ(offeredByBash("tal-iec61850 library judge --output a"), Words{"a.pcap"});
    EXPECT_EQ(offeredByBash("tal-iec61850 library judge -q a"), Words{"a.pcap"});
}

TEST(BashCompletion, OffersShells) {
    EXPECT_EQ(offeredByBash("tal-iec61850 completion ''"), (Words{"bash", "zsh", "fish"}));
}

TEST(FishCompletion, OffersCommandsOptionsAndValues) {
    auto const fish = findShell("fish");
    if (!fish) {
        GTEST_SKIP() << "fish is not installed here";
    }
    TempDir const folder;
    auto const script = folder.write("completion.fish", asBytes(completionFor("fish")));
    auto const offered = [&](std::string const& line) {
        auto const result =
            run({*fish, "--no-config", "-c", "source $SCRIPT; complete -C $LINE | cut -f1"},
                {{"SCRIPT", script}, {"LINE", line}, {"HOME", folder.path()}});
        EXPECT_EQ(result.err, "");
        return linesOf(result.out);
    };
    EXPECT_EQ(
        offered("tal-iec61850 "),
        (Words{"captures", "check", "completion", "comtrade", "events", "library", "manual",
               "packets", "plot", "redundancy", "report", "samples", "scl", "show", "streams"}));
    EXPECT_EQ(offered("tal-iec61850 packets --fro"), Words{"--from"});
    EXPECT_EQ(offered("tal-iec61850 show --format "),
              (Words{"csv", "json", "spreadsheet", "table"}));
    EXPECT_EQ(offered("tal-iec61850 library "), (Words{"judge", "streams"}));
    EXPECT_EQ(offered("tal-iec61850 library judge --lis"), Words{"--list"});
}

TEST(ZshCompletion, IsAScriptThatZshReadsAndRegisters) {
    auto const zsh = findShell("zsh");
    if (!zsh) {
        GTEST_SKIP() << "zsh is not installed here";
    }
    TempDir const folder;
    auto const script = folder.write("_tal-iec61850", asBytes(completionFor("zsh")));
    auto const result = run({*zsh, "-f", "-c",
                             "autoload -Uz compinit && compinit -D -u && source $SCRIPT && "
                             "print $_comps[tal-iec61850]"},
                            {{"SCRIPT", script}, {"HOME", folder.path()}});
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, "_tal_iec61850\n");
}

}  // namespace
}  // namespace TalTest::CompletionTest
