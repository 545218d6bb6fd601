// Output does not depend on anything but the captures and the options.

#include <gtest/gtest.h>

#include <algorithm>

#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionProcess.hpp"
#include "tools/CompanionRows.hpp"
#include "tools/MemberTraffic.hpp"
#include "tools/StreamsTraffic.hpp"

namespace TalTest::SameEverywhereTest {
namespace {

std::vector<Arguments> const kCommands = {{"streams"},
                                          {"streams", "--sort", "rate"},
                                          {"packets", "--context", "--from", "+2s"},
                                          {"show"},
                                          {"library", "judge"},
                                          {"library", "judge", "--list"},
                                          {"captures"},
                                          {"captures", "-f", "json"},
                                          {"streams", "-f", "json"},
                                          {"packets", "-f", "csv"},
                                          {"show", "-f", "json"},
                                          {"packets", "--from", "2023-11-14T22:13:21"}};

/// Many streams, alike in most that they could be ordered by.
Bytes alikeStreams() {
    CaptureBuilder capture;
    for (int i = 0; i < 40; ++i) {
        auto const link = Ethernet().withVlan(static_cast<std::uint16_t>(i * 37 % 41));
        capture.add(1'700'000'001, 0, gooseFrameCalled("gcb", link));
        capture.add(1'700'000'001, 0,
                    svFrameCalled("MU", svEthernet().withVlan(static_cast<std::uint16_t>(i))));
    }
    return capture.bytes();
}

TEST(Output, IsTheSameInEveryLocaleAndTimeZone) {
    TempFile const file(memberTraffic());
    for (auto const& command : kCommands) {
        auto const plain = runCompanion(joined(command, {file.path()}));
        EXPECT_EQ(plain.status, 0);
        for (ExtraEnvironment const& environment :
             {ExtraEnvironment{{"TZ", "Asia/Kolkata"}, {"LC_ALL", "de_DE.UTF-8"}},
              ExtraEnvironment{{"TZ", "nonsense"}, {"LC_ALL", "C.UTF-8"}, {"LANG", "ar_EG"}}}) {
            EXPECT_EQ(
                runCompanion(joined(command, {file.path()}), {.environment = environment}).out,
                plain.out);
        }
    }
}

TEST(Output, IsTheSameAtEveryRun) {
    TempDir const folder;
    folder.write("1.pcap", memberTraffic());
    folder.write("2.pcap", alikeStreams());
    for (auto const& command : kCommands) {
        auto const once = runCompanion(joined(command, {folder.path()})).out;
        EXPECT_EQ(runCompanion(joined(command, {folder.path()})).out, once);
    }
}

TEST(Output, IsTheSameWhateverTheOrderOfAFoldersEntries) {
    std::vector<std::string> names;
    for (int i = 0; i < 30; ++i) {
        names.push_back(std::to_string(i) + ".pcap");
    }
    std::vector<std::string> outputs;
    for (int round = 0; round < 2; ++round) {
        TempDir const folder;
        for (auto const& name : names) {
            folder.write(name, CaptureBuilder()
                                   .add(1, 0, svFrameCalled("MU" + name))
                                   .add(2, 0, gooseFrameCalled("gcb"))
                                   .bytes());
        }
        std::reverse(names.begin(), names.end());
        auto& output = outputs.emplace_back();
        for (auto const& command : kCommands) {
            output += runCompanion(joined(command, {"."}), {.workingFolder = folder.path()}).out;
        }
    }
    EXPECT_EQ(outputs[0], outputs[1]);
}

TEST(Output, HasTheStreamsInTheSameOrderWhateverTheOrderOfTheirPackets) {
    auto records = readCapture(memberTraffic());
    auto const identities = [&] {
        CaptureBuilder capture;
        std::uint32_t seconds = 0;
        for (auto const& record : records) {
            capture.add(seconds++, 0, record.frame);
        }
        TempFile const file(capture.bytes());
        auto rows = rowsOf({"streams", file.path()});
        for (Json& row : rows) {
            for (auto const* changed : {"firstTime", "firstTimeNs", "lastTime", "lastTimeNs"}) {
                row.erase(changed);
            }
        }
        return rows;
    };
    auto const expected = identities();
    std::reverse(records.begin(), records.end());
    EXPECT_EQ(identities(), expected);
    std::rotate(records.begin(), records.begin() + 11, records.end());
    EXPECT_EQ(identities(), expected);
}

/// Runs a command whose standard output nobody reads any more after one line.
ProcessResult cutShort(Arguments const& command) {
    return run(
        joined({"/bin/sh", "-c", "{ \"$0\" \"$@\"; echo $? >&2; } | head -n 1", companionPath()},
               command));
}

TEST(Output, IsCutQuietlyByAReaderWhoHasSeenEnough) {
    CaptureBuilder capture;
    for (int i = 0; i < 3000; ++i) {
        capture.add(1, 0, oneSv());
    }
    TempFile const file(capture.bytes());
    for (auto const& command : {Arguments{"packets"},
                                {"packets", "-f", "json"},
                                {"show"},
                                {"show", "-f", "csv"},
                                {"library", "judge", "--list"}}) {
        auto const result = cutShort(joined(command, {file.path()}));
        EXPECT_EQ(linesOf(result.out).size(), 1U);
        EXPECT_EQ(result.err, "141\n") << command[0];  // ended by SIGPIPE
    }
}

TEST(Progress, OfEveryCommandIsOnlyForATerminal) {
    CaptureBuilder capture;
    for (int i = 0; i < 2500; ++i) {
        capture.add(1, 0, oneSv());
    }
    TempFile const file(capture.bytes(), "bay1.pcap");
    for (auto const& command : {Arguments{"packets"},
                                {"library", "judge"},
                                {"library", "judge", "-l"},
                                {"streams"},
                                {"captures"}}) {
        auto const arguments = joined(command, {file.path(), "-o", "/dev/null"});
        auto const seen = runCompanion(arguments, {.terminalColumns = 100}).err;
        EXPECT_NE(seen.find("bay1.pcap ["), std::string::npos) << command[0];
        EXPECT_TRUE(seen.ends_with(" \r"));
        EXPECT_EQ(seen.find('\n'), std::string::npos);
        EXPECT_EQ(runCompanion(arguments).err, "");
        EXPECT_EQ(runCompanion(joined(arguments, {"-q"}), {.terminalColumns = 100}).err, "");
    }
}

TEST(Progress, GoesOnWhilePacketsAreWrittenElsewhereThanToATerminal) {
    CaptureBuilder capture;
    for (int i = 0; i < 2500; ++i) {
        capture.add(1, 0, oneSv());
    }
    TempFile const file(capture.bytes());
    for (std::string const command : {"packets", "show"}) {
        auto const seen = runCompanion({command, file.path()}, {.terminalColumns = 100}).err;
        EXPECT_NE(seen.find("writing ["), std::string::npos) << command;
        EXPECT_TRUE(seen.ends_with(" \r"));
        auto const onTerminal = runCompanion(
            {command, file.path()}, {.output = StandardOutputIs::terminal, .terminalColumns = 100});
        EXPECT_EQ(onTerminal.err.find("writing"), std::string::npos) << command;
    }
}

}  // namespace
}  // namespace TalTest::SameEverywhereTest
