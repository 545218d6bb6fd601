#include <TalIec61850Parser/capture/FrameIndex.hpp>
#include <TalIec61850Parser/capture/LinkLayerFilter.hpp>
#include <TalIec61850Parser/capture/RecordReader.hpp>
#include <TalIec61850Parser/goose/GooseFrame.hpp>
#include <TalIec61850Parser/sv/SvFrame.hpp>
#include <TalIec61850Parser/wire/Ethernet.hpp>
#include <utility>
#include <vector>

namespace TalIec61850Parser::detail {

namespace {

/// takeLinkLayer; a frame that is rejected here is not looked into any further.
template <typename Record, typename Identifier>
bool admits(std::vector<Identifier> const& filters, Octets buffer, wire::LinkLayer const& link,
            Record& record, WalkTrace* trace) {
    bool const isAdmitted = takeLinkLayer(link, record, filters);
    if (!isAdmitted && trace != nullptr) {
        trace->passOver(buffer.subspan(link.payloadIndex));
    }
    return isAdmitted;
}

WalkTrace* traceOf(FrameLesson* lesson) { return lesson == nullptr ? nullptr : &lesson->trace; }

/// Appends the packet to its stream, then counts it: a packet that found no memory is not counted.
IndexedFrame addPacket(Package const& package, StreamPlace const& place,
                       IndexTarget const& target) {
    Timest const time =
        packetTime(package.time.seconds, package.time.nanoseconds, target.isNanosecond);
    place.file->addPackage(time.seconds, time.nanoseconds, package.position);
    ++*place.packetCount;
    IndexedFrame indexed;
    indexed.place = place;
    indexed.position = package.position;
    return indexed;
}

IndexedFrame indexGoose(Octets buffer, wire::LinkLayer const& link, std::uint64_t bufferPosition,
                        PcapPacketHeader const& header, IndexTarget const& target,
                        FrameLesson* lesson) {
    Goose goose;
    Package package;
    if (!admits(target.filter.gooseFilters, buffer, link, goose, traceOf(lesson)) ||
        !readGooseFrame(buffer, link.payloadIndex, header, bufferPosition, goose, package,
                        target.filter, traceOf(lesson))) {
        return {};
    }
    if (lesson != nullptr) {
        lesson->stream = goose;
    }
    IndexedFrame indexed;
    addToStream(target.db.gooseProto.streams, std::move(goose), target.fileName,
                [&](StreamPlace const& place) { indexed = addPacket(package, place, target); });
    return indexed;
}

IndexedFrame indexSv(Octets buffer, wire::LinkLayer const& link, std::uint64_t bufferPosition,
                     PcapPacketHeader const& header, IndexTarget const& target,
                     FrameLesson* lesson) {
    Sv sv;
    Package package;
    if (!admits(target.filter.svFilters, buffer, link, sv, traceOf(lesson)) ||
        !readSvFrame(buffer, link.payloadIndex, header, bufferPosition, sv, package, target.filter,
                     traceOf(lesson))) {
        return {};
    }
    auto const smpCnt = std::exchange(sv.maxSmpCnt, std::uint16_t{0});
    auto const smpRate = std::exchange(sv.smpRate, std::uint16_t{0});
    auto const noASDU = std::exchange(sv.maxNoASDU, std::uint32_t{0});
    if (lesson != nullptr) {
        lesson->stream = sv;
    }
    IndexedFrame indexed;
    addToStream(target.db.svProto.streams, std::move(sv), target.fileName,
                [&](StreamPlace const& place) { indexed = addPacket(package, place, target); });
    follow(*indexed.place.sv, smpCnt, smpRate, noASDU);
    indexed.smpRate = smpRate;
    indexed.noASDU = noASDU;
    return indexed;
}

}  // namespace

IndexedFrame indexRecord(Octets record, std::uint64_t recordPosition, bool isLittleEndian,
                         IndexTarget const& target, FrameLesson* lesson) {
    if (record.size() <= RecordHeader::kSize) {
        return {};
    }
    auto const header = RecordHeader::read(record, isLittleEndian);
    return indexFrame(record, RecordHeader::kSize, recordPosition,
                      {.tsSec = header.tsSec, .tsUsec = header.tsUsec}, target, lesson);
}

IndexedFrame indexFrame(Octets buffer, std::size_t offset, std::uint64_t bufferPosition,
                        PcapPacketHeader const& header, IndexTarget const& target,
                        FrameLesson* lesson) {
    auto const link = wire::decodeLinkLayer(buffer, offset);
    if (!link) {
        return {};
    }
    bool const isGoose = link->etherType == wire::kEtherTypeGoose && target.filter.parseGoose;
    bool const isSv = link->etherType == wire::kEtherTypeSv && target.filter.parseSv;
    if (!isGoose && !isSv) {
        return {};
    }
    if (lesson != nullptr) {
        lesson->trace.begin(buffer.subspan(offset));
        lesson->trace.passOver(link->unread);
        lesson->stream = {};
    }
    return isGoose ? indexGoose(buffer, *link, bufferPosition, header, target, lesson)
                   : indexSv(buffer, *link, bufferPosition, header, target, lesson);
}

}  // namespace TalIec61850Parser::detail
