// In which order `packets` lists packets, and by which places.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "index/Indexing.hpp"
#include "support/CaptureFile.hpp"
#include "support/Captures.hpp"
#include "support/OwnCaptures.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionRows.hpp"
#include "tools/MemberTraffic.hpp"
#include "tools/StreamsTraffic.hpp"

namespace TalTest::PacketsOrderTest {
namespace {

/// Three packets each: at 1, 3 and 5 s, and at 2, 3 and 4 s.
struct TwoFiles {
    TempDir folder;
    std::string odd = folder.write("odd.pcap", captureAt({1, 3, 5}, "MU1"));
    std::string even = folder.write("even.pcap", captureAt({2, 3, 4}, "MU2"));

    static Bytes captureAt(std::vector<std::uint32_t> const& seconds, std::string const& svID) {
        CaptureBuilder capture;
        for (std::uint32_t const second : seconds) {
            capture.add(second, 0, svFrameCalled(svID));
        }
        return capture.bytes();
    }
};

TEST(PacketsOrder, IsThatOfTimesOverAllFiles) {
    TwoFiles const files;
    auto const rows = rowsOf({"packets", files.odd, files.even});
    EXPECT_EQ(fieldOf(rows, "timeNs"), (std::vector<Json>{1000000000, 2000000000, 3000000000,
                                                          3000000000, 4000000000, 5000000000}));
    EXPECT_EQ(fieldOf(rows, "svID"), (std::vector<Json>{"MU1", "MU2", "MU1", "MU2", "MU2", "MU1"}));
}

TEST(PacketsOrder, OfOneTimeIsThatOfTheFilesAsGiven) {
    TwoFiles const files;
    auto const namesAtThree = [](Arguments const& captures) {
        return fieldOf(rowsOf(joined({"packets", "--from", "3", "--to", "3"}, captures)), "file");
    };
    EXPECT_EQ(namesAtThree({files.odd, files.even}), (std::vector<Json>{files.odd, files.even}));
    EXPECT_EQ(namesAtThree({files.even, files.odd}), (std::vector<Json>{files.even, files.odd}));
    // Whatever the positions there.
    auto const first = files.folder.write("z.pcap", TwoFiles::captureAt({3}, "MU3"));
    EXPECT_EQ(namesAtThree({files.odd, first}), (std::vector<Json>{files.odd, first}));
    EXPECT_EQ(namesAtThree({first, files.odd}), (std::vector<Json>{first, files.odd}));
    std::filesystem::remove(first);
    EXPECT_EQ(namesAtThree({files.folder.path()}), (std::vector<Json>{files.even, files.odd}));
}

TEST(PacketsOrder, OfOneTimeAndFileIsThatOfThePositions) {
    CaptureBuilder capture;
    for (int i = 0; i < 50; ++i) {
        capture.add(7, 0, i % 3 == 0 ? gooseFrameCalled("gcb1") : svFrameCalled("MU01"));
    }
    TempFile const file(capture.bytes());
    auto const positions = fieldOf(rowsOf({"packets", file.path()}), "position");
    EXPECT_EQ(positions.size(), 50U);
    EXPECT_TRUE(std::is_sorted(positions.begin(), positions.end()));
}

/// What is known of a packet from its place.
using Known = std::map<std::uint64_t, Json>;

/// The packets of a capture as the library's index has them.
Known indexed(std::string const& path) {
    TalIec61850Parser::Db db;
    indexInto(db, path);
    Known known;
    for (auto const& [position, packet] : packetsByPosition(db)) {
        auto const time = packet.package.time;
        Json& entry = known[position];
        entry["timeNs"] = std::uint64_t{time.seconds} * 1'000'000'000 + time.nanoseconds;
        auto const addCommon = [&](auto const& stream) {
            entry["source"] = *stream.srcMac;
            entry["destination"] = *stream.dstMac;
            entry["appId"] = fmt::format("0x{:04X}", *stream.appId);
        };
        if (packet.goose != nullptr) {
            addCommon(*packet.goose);
            entry["gocbRef"] = packet.goose->gocbRef.value_or("");
        } else {
            addCommon(*packet.sv);
            entry["svID"] = packet.sv->svID.value_or("");
        }
    }
    return known;
}

/// The same as the program lists them.
Known listed(std::string const& path) {
    Known known;
    for (Json const& row : rowsOf({"packets", path})) {
        if (!row["unreadable"].is_null()) {
            continue;
        }
        // Of several ASDUs of a frame the last one, as the library has it.
        Json& entry = known[row["position"].get<std::uint64_t>()];
        EXPECT_TRUE(entry.is_null() || row["asdu"] > 1);
        for (auto const* field : {"timeNs", "source", "destination", "appId"}) {
            entry[field] = row[field];
        }
        auto const* const name = row["protocol"] == "SV" ? "svID" : "gocbRef";
        entry[name] = row[name].is_null() ? "" : row[name];
    }
    return known;
}

TEST(PacketsPlaces, AreThoseOfTheLibrarysIndex) {
    for (auto const variant : captureVariants) {
        CaptureBuilder capture(variant);
        for (auto const& record : readCapture(memberTraffic())) {
            capture.add(record.seconds, 1000, record.frame);
        }
        TempFile const file(capture.bytes());
        EXPECT_EQ(listed(file.path()).size(), 29U);
        EXPECT_EQ(listed(file.path()), indexed(file.path())) << name(variant);
    }
}

TEST(PacketsPlaces, OfWholeCapturesHoldThoseOfTheLibrarysIndex) {
    auto paths = recordedCapturePaths();
    for (auto const* name : {"own-goose-retransmissions.pcap", "own-sv-hsr-both-ways.pcap",
                             "own-mixed-be-us.pcap", "own-viewpoint-a.pcap"}) {
        paths.push_back(ownCapture(name));
    }
    int compared = 0;
    for (auto const& path : paths) {
        if (std::filesystem::file_size(path) < 150'000 &&
            runCompanion({"streams", path}).status == 0) {
            Known const found = listed(path);
            for (auto const& [position, packet] : indexed(path)) {
                ASSERT_TRUE(found.contains(position)) << path << "@" << position;
                EXPECT_EQ(found.at(position), packet) << path << "@" << position;
            }
            ++compared;
        }
    }
    EXPECT_GE(compared, 4);
}

TEST(PacketsTable, NamesPlacesAsShowTakesThem) {
    TempDir const folder;
    folder.write("a b@c.pcap", smallCapture());
    Surroundings const there{.workingFolder = folder.path()};
    auto const table = runCompanion({"packets", "a b@c.pcap"}, there);
    auto const rows = tableRows(table.out);
    ASSERT_EQ(rows.size(), 5U);
    EXPECT_EQ(summaryOf(table.out), "5 packets of 2 streams in 1 file");
    for (auto const& row : rows) {
        EXPECT_EQ(rowsOf({"show", row.back()}, there).size(), 1U) << row.back();
    }
}

TEST(PacketsTable, HasPlacesInTheWindowOnlyWithContext) {
    TempFile const capture(smallCapture());
    auto const without = linesOf(runCompanion({"packets", capture.path()}).out);
    auto const with = linesOf(runCompanion({"packets", "-c", capture.path()}).out);
    EXPECT_FALSE(without[0].ends_with("PLACE"));
    EXPECT_TRUE(with[0].ends_with("  PLACE"));
    EXPECT_TRUE(with[1].ends_with("  inside"));
}

}  // namespace
}  // namespace TalTest::PacketsOrderTest
