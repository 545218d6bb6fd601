// Paths and frames made to upset a terminal, or the reader of the output.

#include <gtest/gtest.h>

#include <algorithm>

#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionRows.hpp"
#include "tools/MemberTraffic.hpp"
#include "tools/StreamsTraffic.hpp"
#include "tools/output/TextEscape.hpp"

namespace TalTest::HostileNamesTest {
namespace {

std::vector<std::string> const kHostile = {"\x1b[2J\x1b]0;title\x07",
                                           "a\nb",
                                           "\r",
                                           "\x9b"
                                           "31m",
                                           "\xff\xfe",
                                           "\xc2\x9b"
                                           "2J",
                                           "\xe2\x80\xae"
                                           "txt",
                                           "\x7f",
                                           "\"quoted\",x",
                                           "\"\x1b[1m\"\n",
                                           "'; rm -rf ~; '",
                                           "{{}}",
                                           "%n%s"};

bool isSafe(std::string const& text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return c == '\n' || (c >= ' ' && c < '\x7f'); });
}

std::string asFileName(std::string name) {
    std::replace(name.begin(), name.end(), '/', '_');
    return name;
}

/// Traffic whose names are these; the index renders what is not printable.
Bytes trafficNamed(std::vector<std::string> const& names) {
    CaptureBuilder capture;
    for (auto const& name : names) {
        GooseMessage message = gooseCalled(name);
        message.datSet = name;
        message.goID = name;
        message.setData({dataVisibleString(name), dataOctetString(text(name))});
        capture.add(1, 0, gooseFrame(Ethernet(), message)).add(1, 0, svFrameCalled(name));
    }
    return capture.bytes();
}

std::vector<Arguments> const kCommands = {{"streams"},
                                          {"packets"},
                                          {"show"},
                                          {"events"},
                                          {"captures"},
                                          {"library", "judge"},
                                          {"library", "judge", "--list"}};

TEST(HostileNames, InFramesReachNoTerminal) {
    TempFile const file(trafficNamed(kHostile));
    for (auto const& command : kCommands) {
        for (auto const* format : {"table", "json", "csv", "spreadsheet"}) {
            auto const result = runCompanion(joined(command, {file.path(), "-f", format}));
            EXPECT_EQ(result.status, 0);
            EXPECT_TRUE(isSafe(result.out)) << command[0] << " " << format;
        }
    }
}

TEST(HostileNames, InFramesMakeNoMoreLines) {
    TempFile const file(trafficNamed(kHostile));
    auto const rows = rowsOf({"packets", file.path()});
    EXPECT_EQ(rows.size(), 2 * kHostile.size());
    EXPECT_EQ(linesOf(runCompanion({"packets", "-q", file.path()}).out).size(), rows.size() + 1);
    EXPECT_EQ(csvRows(runCompanion({"packets", "-f", "csv", file.path()}).out).size(), rows.size());
}

TEST(HostileNames, OfFilesReachNoTerminalAndMakeNoMoreLines) {
    TempDir const folder;
    std::uint32_t second = 0;
    for (auto const& name : kHostile) {
        // A packet that two files have would come once.
        folder.write(asFileName(name), CaptureBuilder().add(++second, 0, oneSv()).bytes());
    }
    std::size_t const packets = kHostile.size();
    for (auto const& command : kCommands) {
        for (std::string const format : {"table", "json", "csv", "spreadsheet"}) {
            auto const result = runCompanion(joined(command, {folder.path(), "-q", "-f", format}));
            EXPECT_EQ(result.status, 0);
            EXPECT_TRUE(isSafe(result.out)) << command[0] << " " << format;
            if (command[0] == "packets") {
                EXPECT_EQ(linesOf(result.out).size(), packets + (format == "json" ? 0 : 1));
            }
        }
    }
}

TEST(HostileNames, OfFilesComeBackFromJsonAndCommaSeparatedValues) {
    TempDir const folder;
    for (std::string const name : {"a\nb", "\x1b[2J", "\"q\",x", "Süd", "\\n", "a\tb"}) {
        auto const path = folder.write(name, smallCapture());
        EXPECT_EQ(rowsOf({"packets", path})[0]["file"], path);
        auto const row = csvRows(runCompanion({"packets", "-f", "csv", path}).out).at(0);
        EXPECT_EQ(row.at("file"), TalIec61850Tools::escapeText(path));
    }
    auto const invalid = folder.write("a\xff", smallCapture());
    EXPECT_EQ(rowsOf({"packets", invalid})[0]["file"], folder.file("a\ufffd"));
}

TEST(HostileNames, InComplaintsReachNoTerminal) {
    TempDir const folder;
    std::string all;
    for (auto const& name : kHostile) {
        all += name;
    }
    auto const path = folder.write(asFileName(all), prefix(smallCapture(), 70));
    auto const missing = folder.file(asFileName(all) + "x");
    std::vector<Arguments> commands = {{"streams", path},
                                       {"captures", path},
                                       {"library", "judge", path},
                                       {"streams", missing},
                                       {"show", path + "@1"},
                                       {"show", missing + "@1"},
                                       {"streams", path, "-o", path},
                                       {"streams", path, "-o", missing + "/x"},
                                       {all},
                                       {"streams", "--" + all},
                                       {"packets", path, "--from", all}};
    for (auto const* option : {"--source", "--vlan", "-f", "--hsr", "--protocol", "--sort"}) {
        commands.push_back({"streams", path, option, all});
    }
    for (auto const& command : commands) {
        auto const result = runCompanion(command);
        EXPECT_NE(result.status, 0) << testing::PrintToString(command);
        EXPECT_TRUE(isSafe(result.err)) << result.err;
        // A file may be damaged, and hold no such packet.
        EXPECT_LE(linesOf(result.err).size(), 2U);
        for (auto const& line : linesOf(result.err)) {
            EXPECT_TRUE(line.starts_with("tal-iec61850: ")) << line;
        }
    }
}

TEST(HostileNames, InComplaintsMakeNoMoreLines) {
    TempDir const folder;
    auto const path = folder.write("a\nb", text("no capture"));
    auto const result = runCompanion({"streams", path, folder.file("c\nd")});
    EXPECT_EQ(linesOf(result.err).size(), 2U);
}

}  // namespace
}  // namespace TalTest::HostileNamesTest
