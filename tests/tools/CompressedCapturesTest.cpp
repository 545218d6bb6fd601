// Captures that are compressed, and those that come through named pipes.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionProcess.hpp"
#include "tools/CompanionRows.hpp"
#include "tools/Compress.hpp"
#include "tools/MemberTraffic.hpp"
#include "tools/StreamsTraffic.hpp"

namespace TalTest::CompressedCapturesTest {
namespace {

std::vector<std::string> const kFilters = {"gzip", "zstd", "xz", "lz4", "bzip2"};

std::vector<Json> nameless(std::vector<Json> rows) {
    for (Json& row : rows) {
        row.erase("file");
    }
    return rows;
}

TEST(CompressedCaptures, GiveWhatTheFileWouldForEveryCommand) {
    TempDir const folder;
    auto const plain = folder.write("plain", memberTraffic());
    for (auto const& filter : kFilters) {
        auto const packed = folder.write("a." + filter, compressed(memberTraffic(), filter));
        for (std::string const command :
             {"streams", "packets", "show", "captures", "library judge"}) {
            EXPECT_EQ(nameless(rowsOf(joined(commandWords(command), {packed}))),
                      nameless(rowsOf(joined(commandWords(command), {plain}))))
                << filter << " " << command;
        }
    }
}

TEST(CompressedCaptures, AreCalledByTheirOwnName) {
    TempDir const folder;
    auto const packed = folder.write("bay1.pcap.gz", compressed(smallCapture(), "gzip"));
    auto const rows = rowsOf({"packets", packed});
    EXPECT_EQ(fieldOf(rows, "file"), std::vector<Json>(5, packed));
    auto const position = std::to_string(rows[0]["position"].get<std::uint64_t>());
    EXPECT_EQ(rowsOf({"show", packed + "@" + position}).size(), 1U);
}

TEST(CompressedCaptures, MayBeLongAndInSeveralParts) {
    CaptureBuilder capture;
    for (std::uint32_t i = 0; i < 20'000; ++i) {
        capture.add(i, 0, oneSv());
    }
    Bytes const whole = capture.bytes();
    std::size_t const half = whole.size() / 2;
    TempDir const folder;
    for (std::string const filter : {"gzip", "zstd", "xz", "bzip2"}) {
        auto const first = compressed(prefix(whole, half), filter);
        auto const second = compressed(
            Bytes(whole.begin() + static_cast<std::ptrdiff_t>(half), whole.end()), filter);
        auto const packed = folder.write("a", concat({first, second}));
        EXPECT_EQ(rowsOf({"streams", packed}).at(0)["packets"], 20'000) << filter;
    }
}

TEST(CompressedCaptures, ComeThroughStandardInputToo) {
    TempFile const plain(smallCapture());
    auto const packed = compressed(smallCapture(), "zstd");
    EXPECT_EQ(rowsOf({"streams", "-"}, {.inputPiped = packed}), streamsOf({plain.path()}));
    TempFile const file(packed);
    EXPECT_EQ(rowsOf({"streams", "-"}, {.inputFile = file.path()}), streamsOf({plain.path()}));
}

TEST(CompressedCaptures, InFoldersAreRead) {
    TempDir const folder;
    folder.write("a.pcap", smallCapture());
    folder.write("b.pcap.gz", compressed(smallCapture(), "gzip"));
    folder.write("c.txt.gz", compressed(text("no capture, but rather long text about it"), "gzip"));
    folder.write("d.gz", text("\x1f\x8b no gzip"));
    auto const rows = rowsOf({"streams", folder.path()});
    EXPECT_EQ(fieldOf(rows, "files"), (std::vector<Json>{2, 2}));
}

TEST(CompressedCaptures, GivenTwiceCountOnce) {
    TempDir const folder;
    auto const packed = folder.write("a.gz", compressed(smallCapture(), "gzip"));
    auto const other = folder.file("b.gz");
    std::filesystem::create_hard_link(packed, other);
    EXPECT_EQ(rowsOf({"streams", packed, packed, other, folder.path()}),
              rowsOf({"streams", packed}));
}

TEST(CompressedCaptures, ThatAreNoneAreSaid) {
    TempDir const folder;
    auto const notes =
        folder.write("notes.gz", compressed(text("some notes of a meeting"), "gzip"));
    auto const empty = folder.write("empty.pcap", {});
    auto const result = runCompanion({"streams", "-q", notes, empty});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, complaint(notes + ": unpacked: not a capture file") +
                              complaint(empty + ": empty, no capture"));
}

TEST(CompressedCaptures, ThatAreCutAreReadAsFarAsTheyGo) {
    CaptureBuilder capture;
    for (std::uint32_t i = 0; i < 30'000; ++i) {
        capture.add(i, i * 7919U, oneSv());
    }
    Bytes const packed = compressed(capture.bytes(), "gzip");
    TempDir const folder;
    auto const cut = folder.write("cut.gz", prefix(packed, packed.size() / 2));
    auto const result = runCompanion({"streams", "-f", "json", cut});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(result.err.starts_with("tal-iec61850: " + cut + ": ")) << result.err;
    std::uint64_t packets = 0;
    for (Json const& row : jsonOf(result.out)) {
        packets += row["packets"].get<std::uint64_t>();
    }
    EXPECT_GT(packets, 1000U);
    EXPECT_LT(packets, 30'000U);
}

TEST(CompressedCaptures, WithoutAFolderForCopiesNameIt) {
    TempDir const folder;
    auto const packed = folder.write("a.gz", compressed(smallCapture(), "gzip"));
    auto const result =
        runCompanion({"streams", "-q", packed}, {.environment = {{"TMPDIR", "/nonexistent"}}});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, complaint(packed + ": no copy in /nonexistent: No such file or "
                                             "directory; TMPDIR may name another folder"));
}

TEST(CompressedCaptures, AreNotOverwritten) {
    TempDir const folder;
    auto const packed = folder.write("a.gz", compressed(smallCapture(), "gzip"));
    expectUsageError({"streams", packed, "-o", packed});
}

TEST(CompressedCaptures, MayBeMoreThanFilesCanBeOpenAtFirst) {
    TempDir const folder;
    for (int i = 0; i < 60; ++i) {
        folder.write(std::to_string(i), compressed(smallCapture(), "gzip"));
    }
    auto const result = run({"/bin/sh", "-c", "ulimit -S -n 30; exec \"$0\" streams -f csv \"$1\"",
                             companionPath(), folder.path()});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, runCompanion({"streams", "-f", "csv", folder.path()}).out);
}

TEST(NamedPipes, AreReadToTheirEnd) {
    TempDir const folder;
    auto const plain = folder.write("plain", smallCapture());
    auto const packed = folder.write("packed", compressed(smallCapture(), "gzip"));
    ASSERT_EQ(::mkfifo(folder.file("pipe").c_str(), 0600), 0);
    for (auto const& file : {plain, packed}) {
        auto const result =
            run({"/bin/sh", "-c", "cat \"$1\" > \"$2\" & exec \"$0\" streams -f json \"$2\" \"$2\"",
                 companionPath(), file, folder.file("pipe")});
        EXPECT_EQ(result.err, "");
        EXPECT_EQ(jsonOf(result.out), streamsOf({plain}));
    }
}

TEST(NamedPipes, InFoldersAreNotWaitedFor) {
    TempDir const folder;
    folder.write("plain", smallCapture());
    ASSERT_EQ(::mkfifo(folder.file("pipe").c_str(), 0600), 0);
    EXPECT_EQ(rowsOf({"streams", folder.path()}).size(), 2U);
}

TEST(OutputFile, IsLeftAsItIsIfNothingCouldBeRead) {
    TempDir const folder;
    auto const out = folder.write("out.csv", text("old\n"));
    auto const result = runCompanion({"streams", "-f", "csv", "-o", out, folder.file("missing")});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(readFile(out), text("old\n"));
    EXPECT_TRUE(result.err.ends_with(complaint(out + " is not written: nothing could be read")))
        << result.err;
    EXPECT_FALSE(std::filesystem::exists(folder.file("missing")));
}

}  // namespace
}  // namespace TalTest::CompressedCapturesTest
