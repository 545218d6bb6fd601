#include "faults/IndexedUnderFaults.hpp"

#include <TalIec61850Parser/capture/PcapFile.hpp>
#include <TalIec61850Parser/capture/PcapPacketParser.hpp>
#include <TalIec61850Parser/capture/PcapParser.hpp>
#include <atomic>
#include <utility>

#include "support/CaptureFile.hpp"

namespace TalTest {

using namespace TalIec61850Parser;

namespace {

constexpr std::size_t recordsPerCall = 1000;

bool isNanoBig(Bytes const& capture) {
    return prefix(capture, 4) == prefix(captureHeader(CaptureVariant::nanoBig), 4);
}

}  // namespace

std::size_t packetsIn(IndexImage const& image) {
    std::size_t count = 0;
    for (StreamImage const& stream : image.streams) count += packetsOf(stream).size();
    return count;
}

std::string halfMade(IndexImage const& image) {
    for (StreamImage const& stream : image.streams) {
        if (stream.files.empty()) return "no file: " + stream.identity;
        for (FileImage const& file : stream.files)
            if (file.packets.empty()) return "no packet in a file: " + stream.identity;
        if (stream.packetCount != packetsOf(stream).size()) return "count: " + stream.identity;
    }
    return {};
}

IndexingUnderFaults::IndexingUnderFaults(IndexingScenario scenario)
    : scenario_(std::move(scenario)) {
    for (Bytes const& capture : scenario_.captures)
        paths_.push_back(
            folder_.write("capture" + std::to_string(paths_.size()) + ".pcap", capture));
    records_ = records();
    for (Record& record : records_) {
        Db alone;
        indexPlainly(record, alone);
        record.isWanted = packetsIn(imageOf(alone)) == 1;
    }
    Db db;
    Db taken;
    int calls = 0;
    index(db, taken, calls);
    whole_ = imageOf(db);
    EXPECT_EQ(halfMade(whole_), "");
    EXPECT_FALSE(whole_.streams.empty());
}

std::vector<IndexingUnderFaults::Record> IndexingUnderFaults::records() const {
    std::vector<Record> records;
    for (std::size_t i = 0; i < scenario_.captures.size(); ++i) {
        Bytes capture = scenario_.captures[i];
        if (i + 1 == scenario_.captures.size()) append(capture, scenario_.missing);
        for (CaptureRecord const& record : readCapture(capture)) {
            auto const begin = capture.begin() + static_cast<std::ptrdiff_t>(record.position);
            records.push_back({.capture = i,
                               .position = record.position,
                               .octets = Bytes(begin, begin + recordHeaderSize + record.inclLen),
                               .isWanted = false});
        }
    }
    return records;
}

void IndexingUnderFaults::index(Db& db, Db& taken, int& calls) const {
    std::atomic<bool> const stop = false;
    auto const act = [&](double /*fraction*/) {
        if (++calls != 2 || scenario_.callback == Callback::none) return;
        if (scenario_.callback == Callback::takesTheStore) taken = std::move(db);
        db.clear();
    };
    for (std::string const& path : paths_)
        PcapParser::parseFile(path, db, scenario_.filter, stop, act, scenario_.options);
}

bool IndexingUnderFaults::attempt(Fault const& fault) const {
    Db db;
    Db taken;
    int calls = 0;
    bool const wasHit = failsAsItShould(fault, [&] { index(db, taken, calls); });
    expectRecordsBefore(db, taken, calls);
    if (!wasHit) {
        EXPECT_EQ(difference(imageOf(db), whole_), "");
    }
    expectGoodForAnotherTime(db);
    return wasHit;
}

IndexImage IndexingUnderFaults::imageOfPackets(std::size_t firstRecord, std::size_t count) const {
    Db db;
    std::size_t done = 0;
    for (std::size_t i = firstRecord; i < records_.size() && done < count; ++i) {
        indexPlainly(records_[i], db);
        done += records_[i].isWanted ? 1 : 0;
    }
    return imageOf(db);
}

void IndexingUnderFaults::indexPlainly(Record const& record, Db& db) const {
    PcapFile file(std::string{});
    file.fileName = paths_[record.capture];
    file.recordPosition = record.position;
    bool const isBig = isNanoBig(scenario_.captures.front());
    PcapPacketParser::parsePacket(record.octets, file, isBig, !isBig, scenario_.filter, db);
}

void IndexingUnderFaults::expectRecordsBefore(Db const& db, Db const& taken, int calls) const {
    bool const isSecond = scenario_.callback != Callback::none && calls >= 2;
    IndexImage const image = imageOf(db);
    EXPECT_EQ(halfMade(image), "");
    EXPECT_EQ(difference(image, imageOfPackets(isSecond ? recordsPerCall : 0, packetsIn(image))),
              "");
    IndexImage const before = imageOf(taken);
    bool const isTaken = isSecond && scenario_.callback == Callback::takesTheStore;
    EXPECT_EQ(packetsIn(before), isTaken ? recordsPerCall : 0);
    EXPECT_EQ(difference(before, imageOfPackets(0, packetsIn(before))), "");
}

void IndexingUnderFaults::expectGoodForAnotherTime(Db& db) const {
    for (std::string const& path : paths_) db.clearByFileName(path);
    EXPECT_TRUE(imageOf(db).streams.empty());
    Db taken;
    int calls = 0;
    index(db, taken, calls);
    EXPECT_EQ(difference(imageOf(db), whole_), "");
}

}  // namespace TalTest
