// Next-generation captures against what tshark tells of them. What is expected is also stated by
// itself, in NextGenerationTest.

#include <gtest/gtest.h>

#include <chrono>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "analysis/file/ReadFile.hpp"
#include "analysis/file/SpeltOutCapture.hpp"
#include "index/Tshark.hpp"
#include "support/CaptureFile.hpp"
#include "support/Captures.hpp"
#include "support/OwnCaptures.hpp"
#include "support/PcapngMaker.hpp"
#include "support/Process.hpp"
#include "support/TempFile.hpp"

namespace TalIec61850Analysis::NextGenerationTsharkTest {
namespace {

using TalTest::Bytes;
using TalTest::concat;
using TalTest::PcapngMaker;

/// What is compared of a record, as text.
using Row = std::vector<std::string>;

std::vector<Row> rowsOf(ReadCapture const& read) {
    std::vector<Row> rows;
    for (auto const& [record, frame] : read.records) {
        std::string time;
        if (record.time) {
            auto const nanoseconds = record.time->time_since_epoch().count();
            std::string const fraction = std::to_string(nanoseconds % 1'000'000'000);
            time = std::to_string(nanoseconds / 1'000'000'000) + "." +
                   std::string(9 - fraction.size(), '0') + fraction;
        }
        rows.push_back({time, std::to_string(record.capturedSize),
                        std::to_string(record.originalSize),
                        record.dropped ? std::to_string(*record.dropped) : ""});
    }
    return rows;
}

std::vector<Row> tsharkRows(std::string const& program, std::string const& path) {
    auto const result =
        TalTest::run({program, "-n", "-r", path, "-T", "fields", "-e", "frame.time_epoch", "-e",
                      "frame.cap_len", "-e", "frame.len", "-e", "frame.drop_count"},
                     {{"LC_ALL", "C"}});
    std::vector<Row> rows;
    std::istringstream lines(result.out);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream fields(line);
        Row row;
        for (std::string field; std::getline(fields, field, '\t');) {
            row.push_back(field);
        }
        row.resize(4);
        rows.push_back(row);
    }
    return rows;
}

void expectWhatTsharkTells(std::string const& path) {
    auto const program = TalTest::tsharkProgram();
    if (!program) {
        GTEST_SKIP() << "no tshark";
    }
    EXPECT_EQ(rowsOf(readWhole(path)), tsharkRows(*program, path)) << path;
}

void expectWhatTsharkTells(PcapngMaker const& maker) {
    TalTest::TempFile const file(maker.bytes(), "capture.pcapng");
    expectWhatTsharkTells(file.path());
}

Bytes frameOf(std::uint8_t octet) { return Bytes(60, octet); }

constexpr std::uint64_t kSeconds = 1'700'000'000;

/// Two interfaces of different units, offsets and snap lengths, and all kinds of blocks. Times of
/// picoseconds and simple packets are left out: tshark reads the first wrongly, and has no time for
/// the second.
void addSection(PcapngMaker& maker, bool isLittleEndian) {
    maker.section(isLittleEndian);
    maker.interface(1, 262144, maker.timeOptions(6)).interface(1, 96, maker.timeOptions(9));
    maker.interface(113, 0, maker.timeOptions(0x80 | 30));
    maker.interface(1, 0, maker.timeOptions(6, 100'000));
    maker.packet({.interface = 0, .time = kSeconds * 1'000'000 + 123'456, .frame = frameOf(1)});
    maker.packet({.interface = 1,
                  .time = kSeconds * 1'000'000'000 + 123'456'789,
                  .frame = frameOf(2),
                  .originalSize = 1500,
                  .options = concat({maker.numberOption(4, 3), PcapngMaker::endOfOptions()})});
    maker.packet({.interface = 2, .time = (kSeconds << 30U) + (3U << 28U), .frame = frameOf(3)});
    maker.packet({.interface = 3,
                  .time = kSeconds * 1'000'000 + 5,
                  .frame = frameOf(4),
                  .options = maker.numberOption(4, 5'000'000'000)});
    maker.block(0xA, Bytes(8)).block(0x80000BAD, Bytes(12));
    maker.packet({.interface = 0,
                  .time = kSeconds * 1'000'000 + 999'999,
                  .frame = frameOf(5),
                  .options = maker.numberOption(4, 0)});
    maker.oldPacket(
        {.interface = 0, .time = kSeconds * 1'000'000 + 7, .frame = frameOf(6), .dropped = 7});
    maker.oldPacket({.interface = 1, .time = kSeconds * 1'000'000'000, .frame = frameOf(7)});
    maker.oldPacket(
        {.interface = 0, .time = kSeconds * 1'000'000 + 8, .frame = frameOf(8), .dropped = 0});
    maker.statistics(0, maker.numberOption(5, 4));
}

TEST(NextGenerationTshark, TellsTheSameOfALittleEndianSection) {
    PcapngMaker maker;
    addSection(maker, true);
    expectWhatTsharkTells(maker);
}

TEST(NextGenerationTshark, TellsTheSameOfABigEndianSection) {
    PcapngMaker maker;
    addSection(maker, false);
    expectWhatTsharkTells(maker);
}

TEST(NextGenerationTshark, TellsTheSameOfSectionsOfBothOrders) {
    PcapngMaker maker;
    addSection(maker, true);
    addSection(maker, false);
    addSection(maker, true);
    expectWhatTsharkTells(maker);
}

TEST(NextGenerationTshark, TellsTheSameOfACaptureSpeltOutOctetByOctet) {
    TalTest::TempFile const file(speltOutCapture(), "capture.pcapng");
    expectWhatTsharkTells(file.path());
}

TEST(NextGenerationTshark, TellsTheSameOfWholeCaptures) {
    auto paths = TalTest::ownCapturePaths();
    auto const recorded = TalTest::recordedCapturePaths();
    paths.insert(paths.end(), recorded.begin(), recorded.end());
    for (std::string const& path : paths) {
        // Times that its own format cannot hold are not told.
        if (path.find("next") != std::string::npos || path.find("pcapng") != std::string::npos) {
            expectWhatTsharkTells(path);
        }
    }
}

}  // namespace
}  // namespace TalIec61850Analysis::NextGenerationTsharkTest
