// Counts memory, for tal-bench:
//   memory-probe allocations FILE  what indexing a capture allocates, and what of it is the deques'
//   memory-probe resident FILE     how much the process grows by, in octets per packet
//   memory-probe true-resident FILE  the same of the index true to the wire
//   memory-probe record-at FILE    how much it grows at most by finding records of a capture
//   memory-probe hostile NAME PATH  how much it grows at most by using an input built to hurt
//   memory-probe judge             what judging each of a few frames allocates, and its text

#include <fmt/format.h>

#include <TalIec61850Analysis/file/CaptureFile.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <TalIec61850Parser/TalIec61850Parser.hpp>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <random>
#include <string>
#include <string_view>

#include "bench/HostileInput.hpp"
#include "bench/JudgedFrames.hpp"
#include "bench/OwnMemory.hpp"
#include "support/WatchedHeap.hpp"

namespace {

using TalBench::residentOctets;
using TalIec61850Parser::Db;
using TalIec61850Parser::Package;
using TalTest::heapAllocations;

void index(std::string const& path, Db& db) {
    std::atomic<bool> const neverStop = false;
    TalIec61850Parser::PcapParser::parseFile(path, db, {}, neverStop, {});
}

/// Calls `visit` with each list of packets in the store.
template <typename Visit>
void forEachList(Db const& db, Visit visit) {
    auto const visitStreams = [&](auto const& streams) {
        for (auto const& stream : streams) {
            for (auto const& file : stream.files) {
                visit(file.packages);
            }
        }
    };
    visitStreams(db.gooseProto.streams);
    visitStreams(db.svProto.streams);
}

std::size_t allocationsOfDeque(std::size_t packets) {
    std::size_t const before = heapAllocations();
    std::deque<Package> plain;
    for (std::size_t packet = 0; packet < packets; ++packet) {
        plain.push_back({});
    }
    return heapAllocations() - before;
}

void countAllocations(std::string const& path) {
    Db db;
    std::size_t const before = heapAllocations();
    index(path, db);
    std::size_t const all = heapAllocations() - before;
    std::size_t ofDeques = 0;
    forEachList(db, [&](auto const& list) { ofDeques += allocationsOfDeque(list.size()); });
    fmt::print("{} {}\n", all, ofDeques);
}

void measureResident(std::string const& path) {
    Db db;
    std::uint64_t const before = residentOctets();
    index(path, db);
    std::uint64_t const after = residentOctets();
    std::size_t packets = 0;
    forEachList(db, [&](auto const& list) { packets += list.size(); });
    fmt::print("{}\n", static_cast<double>(after - before) / static_cast<double>(packets));
}

void measureTrueResident(std::string const& path) {
    std::uint64_t const before = residentOctets();
    auto const index = TalIec61850Analysis::indexCapture(path);
    std::uint64_t const after = residentOctets();
    std::uint64_t packets = 0;
    for (auto const& stream : index.streams()) {
        packets += stream.size();
    }
    fmt::print("{}\n", static_cast<double>(after - before) / static_cast<double>(packets));
}

void measureRecordAt(std::string const& path) {
    constexpr int times = 1000;
    std::uint64_t const before = residentOctets();
    TalIec61850Analysis::CaptureFile capture(path);
    std::mt19937_64 random(61850);
    for (int i = 0; i < times; ++i) {
        auto const record = capture.recordAt(random() % capture.size());
        if (record) {
            static_cast<void>(capture.frameOf(*record));
        }
    }
    fmt::print("{}\n", TalBench::peakResidentOctets() - before);
}

void measurePeak(std::string_view name, std::string const& path) {
    auto const input = TalBench::hostileInput(name);
    std::uint64_t const before = residentOctets();
    input.use(path);
    fmt::print("{}\n", TalBench::peakResidentOctets() - before);
}

void countJudging() {
    constexpr int times = 1000;
    for (auto const& judged : TalBench::judgedFrames()) {
        std::size_t const before = heapAllocations();
        for (int i = 0; i < times; ++i) {
            bool volatile const verdict =
                TalIec61850Parser::EthernetParser::parsePacketSimple(judged.frame, judged.filter);
            static_cast<void>(verdict);
        }
        std::size_t const count = heapAllocations() - before;
        fmt::print("{} {}\n", static_cast<double>(count) / times, judged.text);
    }
}

}  // namespace

int main(int argc, char** argv) {
    std::string_view const subject = argc > 1 ? argv[1] : "";
    if (subject == "allocations" && argc == 3) {
        countAllocations(argv[2]);
    } else if (subject == "resident" && argc == 3) {
        measureResident(argv[2]);
    } else if (subject == "true-resident" && argc == 3) {
        measureTrueResident(argv[2]);
    } else if (subject == "record-at" && argc == 3) {
        measureRecordAt(argv[2]);
    } else if (subject == "hostile" && argc == 4) {
        measurePeak(argv[2], argv[3]);
    } else if (subject == "judge" && argc == 2) {
        countJudging();
    } else {
        fmt::print(stderr,
                   "usage: memory-probe allocations FILE | resident FILE | true-resident FILE | "
                   "record-at FILE | hostile NAME PATH | judge\n");
        return 1;
    }
    return 0;
}
