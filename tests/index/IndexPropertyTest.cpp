// What holds for the index of any traffic.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Parser/capture/Filter.hpp>
#include <TalIec61850Parser/store/Db.hpp>
#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "index/IndexImage.hpp"
#include "index/Indexing.hpp"
#include "index/TrafficGenerators.hpp"
#include "support/Bytes.hpp"
#include "support/CaptureFile.hpp"

namespace TalTest::IndexPropertyTest {
namespace {

using namespace TalIec61850Parser;

IndexImage indexOf(Bytes const& capture, Filter const& filter = everything) {
    ScratchFile const file(capture);
    return withFileName(libraryImage({file.path()}, filter), "capture");
}

void requireAgreement(Bytes const& capture, Filter const& filter = everything) {
    ScratchFile const file(capture);
    RC_ASSERT(disagreement({file.path()}, filter) == "");
}

RC_GTEST_PROP(AnyTraffic, OfRandomBerEqualsPlainIndex, ()) {
    requireAgreement(captureOf(*recordsOf(frameOfRandomBer()), *anyVariant()));
}

RC_GTEST_PROP(AnyTraffic, OfValidFramesEqualsPlainIndex, ()) {
    requireAgreement(captureOf(*recordsOf(validFrame()), *anyVariant()));
}

RC_GTEST_PROP(AnyTraffic, OfDamagedFramesEqualsPlainIndex, ()) {
    requireAgreement(captureOf(*recordsOf(anyFrame()), *anyVariant()));
}

RC_GTEST_PROP(AnyTraffic, EqualsPlainIndexThroughAnyFilter, ()) {
    requireAgreement(captureOf(*recordsOf(anyFrame()), *anyVariant()), *anyFilter());
}

RC_GTEST_PROP(AnyTraffic, EqualsPlainIndexWhenTheFileEndsAnywhere, ()) {
    Bytes const capture = captureOf(*recordsOf(anyFrame()), *anyVariant());
    requireAgreement(prefix(capture, *rc::gen::inRange<std::size_t>(0, capture.size() + 1)));
}

RC_GTEST_PROP(AnyTraffic, EqualsPlainIndexWhenTheLastRecordClaimsAnySize, ()) {
    CaptureVariant const variant = *anyVariant();
    Bytes capture = captureOf(*recordsOf(validFrame()), variant);
    auto const claimed = *rc::gen::inRange<std::uint32_t>(0, 100'000);
    auto const header = recordHeader(variant, 1, 0, claimed, claimed);
    capture.insert(capture.end(), header.begin(), header.end());
    append(capture, prefix(*anyFrame(), claimed));
    requireAgreement(capture);
}

RC_GTEST_PROP(AnyTraffic, EqualsPlainIndexOverSeveralFiles, ()) {
    ScratchFile const a(captureOf(*recordsOf(anyFrame()), *anyVariant()));
    ScratchFile const b(captureOf(*recordsOf(anyFrame()), *anyVariant()));
    Filter const filter = *anyFilter();
    RC_ASSERT(disagreement({a.path(), b.path()}, filter) == "");
    RC_ASSERT(disagreement({b.path(), a.path(), b.path()}, filter) == "");
}

// --- Laws that need no second index ------------------------------------------------------------

bool isPrefix(std::vector<PacketImage> const& part, std::vector<PacketImage> const& whole) {
    return part.size() <= whole.size() && std::equal(part.begin(), part.end(), whole.begin());
}

RC_GTEST_PROP(AnyTraffic, OfFirstRecordsIndexesToFirstPackets, ()) {
    RandomRecords records = *recordsOf(anyFrame());
    CaptureVariant const variant = *anyVariant();
    Filter const filter = *anyFilter();
    IndexImage const whole = indexOf(captureOf(records, variant), filter);
    records.resize(*rc::gen::inRange<std::size_t>(0, records.size() + 1));
    for (StreamImage const& stream : indexOf(captureOf(records, variant), filter).streams) {
        StreamImage const* const later = findStream(whole, stream.identity);
        RC_ASSERT(later != nullptr);
        RC_ASSERT(isPrefix(packetsOf(stream), packetsOf(*later)));
        RC_ASSERT(stream.packetCount <= later->packetCount);
        RC_ASSERT(stream.maxSmpCnt <= later->maxSmpCnt);
    }
}

RC_GTEST_PROP(AnyTraffic, IndexesTheSameInEveryCaptureVariant, ()) {
    RandomRecords records = *recordsOf(anyFrame());
    for (RandomRecord& record : records) record.fraction %= 1'000'000;
    RandomRecords inNanoseconds = records;
    for (RandomRecord& record : inNanoseconds) record.fraction *= 1000;
    Filter const filter = *anyFilter();
    IndexImage const expected = indexOf(captureOf(records, CaptureVariant::microLittle), filter);
    for (CaptureVariant const variant : captureVariants) {
        Bytes const capture = captureOf(isNanosecond(variant) ? inNanoseconds : records, variant);
        RC_ASSERT(difference(indexOf(capture, filter), expected) == "");
    }
}

/// The packets as they would lie in a file that has this many octets more before them.
std::vector<PacketImage> moved(std::vector<PacketImage> packets, std::uint64_t octets) {
    for (PacketImage& packet : packets)
        if (packet.position != 0) packet.position += octets;
    return packets;
}

/// The packets of one file of a stream; none when the stream is not in that file.
std::vector<PacketImage> packetsIn(StreamImage const& stream, std::string const& fileName) {
    for (FileImage const& file : stream.files)
        if (file.fileName == fileName) return file.packets;
    return {};
}

RC_GTEST_PROP(AnyTraffic, InTwoFilesIndexesAsInOneBehindTheOther, ()) {
    CaptureVariant const variant = *anyVariant();
    Filter const filter = *anyFilter();
    RandomRecords const first = *recordsOf(anyFrame());
    RandomRecords const second = *recordsOf(anyFrame());
    RandomRecords both = first;
    both.insert(both.end(), second.begin(), second.end());
    ScratchFile const a(captureOf(first, variant));
    ScratchFile const b(captureOf(second, variant));
    std::uint64_t const shift = captureOf(first, variant).size() - captureHeaderSize;

    IndexImage joined = libraryImage({a.path(), b.path()}, filter);
    for (StreamImage& stream : joined.streams) {
        std::vector<PacketImage> packets = packetsIn(stream, a.path());
        auto const later = moved(packetsIn(stream, b.path()), shift);
        packets.insert(packets.end(), later.begin(), later.end());
        stream.files = {{"capture", packets}};
    }
    RC_ASSERT(difference(joined, indexOf(captureOf(both, variant), filter)) == "");
}

RC_GTEST_PROP(AnyTraffic, LeavesNoTraceOfAClearedFileButStatistics, ()) {
    ScratchFile const a(captureOf(*recordsOf(anyFrame()), *anyVariant()));
    ScratchFile const b(captureOf(*recordsOf(anyFrame()), *anyVariant()));
    Db db;
    indexInto(db, a.path());
    indexInto(db, b.path());
    db.clearByFileName(b.path());
    RC_ASSERT(difference(withoutStatistics(imageOf(db)),
                         withoutStatistics(libraryImage({a.path()}))) == "");
}

RC_GTEST_PROP(AnyTraffic, ThroughAFilterIsAPartOfAllTraffic, ()) {
    Bytes const capture = captureOf(*recordsOf(anyFrame()), *anyVariant());
    std::size_t packets = 0;
    std::size_t admitted = 0;
    for (StreamImage const& stream : indexOf(capture).streams) packets += stream.packetCount;
    for (StreamImage const& stream : indexOf(capture, *anyFilter()).streams)
        admitted += stream.packetCount;
    RC_ASSERT(admitted <= packets);
}

}  // namespace
}  // namespace TalTest::IndexPropertyTest
