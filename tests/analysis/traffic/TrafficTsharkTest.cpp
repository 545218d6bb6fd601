// Streams, counters and times of recorded captures against tshark, frame by frame.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "index/Tshark.hpp"
#include "support/CaptureFile.hpp"
#include "support/Captures.hpp"

namespace TalIec61850Analysis::TrafficTsharkTest {
namespace {

using namespace TalTest;

std::string hexText(MacAddress const& address) {
    static constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (std::uint8_t const octet : address) {
        if (!text.empty()) text += ':';
        text += digits[octet >> 4U];
        text += digits[octet & 0xFU];
    }
    return text;
}

/// A packet in one line; "-" for what is not there.
std::string lineOf(std::string const& source, std::string const& destination,
                   std::string const& vlans, std::uint64_t appId, std::string const& name,
                   std::string const& first, std::string const& second) {
    return source + " " + destination + " [" + vlans + "] " + std::to_string(appId) + " " + name +
           " " + first + " " + second;
}

std::string at(std::vector<std::string> const& values, std::size_t index) {
    return index < values.size() ? values[index] : "-";
}

std::string textOf(std::optional<ReadableView<std::uint64_t>> const& counter) {
    auto const* const number = counter ? std::get_if<std::uint64_t>(&*counter) : nullptr;
    return number != nullptr ? std::to_string(*number) : "-";
}

TEST(TrafficOfCaptures, IsThatWhichTsharkTells) {
    auto const program = tsharkProgram();
    if (!program) GTEST_SKIP() << "no tshark on PATH";
    for (std::string const& path : recordedCapturePaths()) {
        std::string const name = std::filesystem::path(path).filename();
        // No classic capture; and one whose last record is cut, which ends tshark's work early.
        if (name.starts_with("reject-")) continue;
        SCOPED_TRACE(name);
        std::map<std::uint64_t, std::uint64_t> numbers;
        std::vector<TalTest::CaptureRecord> const records = readCapture(path);
        for (std::size_t i = 0; i < records.size(); ++i)
            numbers[records[i].position + recordHeaderSize] = i + 1;
        std::map<std::uint64_t, std::vector<std::string>> read;
        std::map<std::uint64_t, std::int64_t> times;
        TrafficIndex const index = indexCapture(path);
        for (TrafficStream const& stream : index.streams()) {
            PacketColumns const& packets = stream.parts[0].packets;
            std::string vlans;
            for (VlanKey const& vlan : stream.key.vlans)
                vlans += (vlans.empty() ? "" : "|") + std::to_string(vlan.id);
            for (std::size_t i = 0; i < packets.size(); ++i) {
                std::uint64_t const number = numbers.at(packets.frameOffsets()[i]);
                times[number] = packets.times()[i];
                read[number].push_back(
                    lineOf(hexText(*stream.key.source), hexText(*stream.key.destination), vlans,
                           stream.key.appId, stream.key.name, textOf(packets.firstCounter(i)),
                           textOf(packets.secondCounter(i))));
            }
        }
        std::map<std::uint64_t, std::vector<std::string>> told;
        std::map<std::uint64_t, std::int64_t> toldTimes;
        for (TsharkFields const& fields :
             dissect(*program, path,
                     {"frame.number", "frame.time_epoch", "eth.src", "eth.dst", "vlan.id",
                      "goose.appid", "goose.gocbRef", "goose.stNum", "goose.sqNum", "sv.appid",
                      "sv.svID", "sv.smpCnt", "sv.smpSynch"},
                     Occurrence::all)) {
            std::uint64_t const record = *number(fields.at("frame.number"));
            bool const isSv = !fields.at("sv.appid").empty();
            std::string const appId = fields.at(isSv ? "sv.appid" : "goose.appid");
            auto const names = separated(fields.at(isSv ? "sv.svID" : "goose.gocbRef"));
            auto const first = separated(fields.at(isSv ? "sv.smpCnt" : "goose.stNum"));
            auto const second = separated(fields.at(isSv ? "sv.smpSynch" : "goose.sqNum"));
            std::string const epoch = fields.at("frame.time_epoch");
            std::size_t const point = epoch.find('.');
            for (std::size_t i = 0; i < names.size(); ++i) {
                toldTimes[record] = std::stoll(epoch.substr(0, point)) * 1'000'000'000 +
                                    std::stoll(epoch.substr(point + 1));
                told[record].push_back(lineOf(fields.at("eth.src"), fields.at("eth.dst"),
                                              fields.at("vlan.id"), *number(appId), names[i],
                                              at(first, i), at(second, i)));
            }
        }
        for (auto* const all : {&read, &told})
            for (auto& [number, lines] : *all) std::sort(lines.begin(), lines.end());
        EXPECT_EQ(read, told);
        EXPECT_EQ(times, toldTimes);
    }
}

}  // namespace
}  // namespace TalIec61850Analysis::TrafficTsharkTest
