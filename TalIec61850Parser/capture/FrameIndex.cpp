#include <TalIec61850Parser/capture/EthernetDecoder.hpp>
#include <TalIec61850Parser/capture/FrameIndex.hpp>
#include <TalIec61850Parser/capture/LinkLayerFilter.hpp>
#include <TalIec61850Parser/capture/RecordReader.hpp>
#include <TalIec61850Parser/goose/GooseFrame.hpp>
#include <TalIec61850Parser/sv/SvFrame.hpp>
#include <utility>
#include <vector>

namespace TalIec61850Parser::detail {

namespace {

/// takeLinkLayer; a frame that is rejected here is not looked into any further.
template <typename Record, typename Identifier>
bool admits(std::vector<Identifier> const& filters, Octets buffer, LinkLayer const& link,
            Record& record, WalkTrace* trace) {
    bool const isAdmitted = takeLinkLayer(link.header, record, filters);
    if (!isAdmitted && trace != nullptr) {
        trace->passOver(buffer.subspan(link.payloadPosition));
    }
    return isAdmitted;
}

/// Appends the packet to its stream, then counts it: a packet that found no memory is not counted.
template <typename Stream>
IndexedFrame addPacket(Stream const& stored, Package const& package, IndexTarget const& target) {
    PackageFile const* const file = stored.addFile(target.fileName);
    Timest const time =
        packetTime(package.time.seconds, package.time.nanoseconds, target.isNanosecond);
    file->addPackage(time.seconds, time.nanoseconds, package.position);
    ++stored.packetCount;
    IndexedFrame indexed;
    indexed.file = file;
    indexed.packetCount = &stored.packetCount;
    indexed.position = package.position;
    return indexed;
}

IndexedFrame indexGoose(Octets buffer, LinkLayer const& link, std::uint64_t bufferPosition,
                        PcapPacketHeader const& header, IndexTarget const& target,
                        WalkTrace* trace) {
    Goose goose;
    Package package;
    if (!admits(target.filter.gooseFilters, buffer, link, goose, trace) ||
        !readGooseFrame(buffer, link.payloadPosition, header, bufferPosition, goose, package,
                        target.filter, trace)) {
        return {};
    }
    return addPacket(target.db.gooseProto.addGoose(std::move(goose)), package, target);
}

IndexedFrame indexSv(Octets buffer, LinkLayer const& link, std::uint64_t bufferPosition,
                     PcapPacketHeader const& header, IndexTarget const& target, WalkTrace* trace) {
    Sv sv;
    Package package;
    if (!admits(target.filter.svFilters, buffer, link, sv, trace) ||
        !readSvFrame(buffer, link.payloadPosition, header, bufferPosition, sv, package,
                     target.filter, trace)) {
        return {};
    }
    std::uint16_t const smpCnt = sv.maxSmpCnt;
    std::uint16_t const smpRate = sv.smpRate;
    std::uint32_t const noASDU = sv.maxNoASDU;
    Sv const& stored = target.db.svProto.addSv(std::move(sv));
    IndexedFrame indexed = addPacket(stored, package, target);
    follow(stored, smpCnt, smpRate, noASDU);
    indexed.sv = &stored;
    indexed.smpRate = smpRate;
    indexed.noASDU = noASDU;
    return indexed;
}

}  // namespace

IndexedFrame indexRecord(Octets record, std::uint64_t recordPosition, bool isLittleEndian,
                         IndexTarget const& target, WalkTrace* trace) {
    if (record.size() <= RecordHeader::kSize) {
        return {};
    }
    auto const header = RecordHeader::read(record, isLittleEndian);
    return indexFrame(record, RecordHeader::kSize, recordPosition,
                      {.tsSec = header.tsSec, .tsUsec = header.tsUsec}, target, trace);
}

IndexedFrame indexFrame(Octets buffer, std::size_t offset, std::uint64_t bufferPosition,
                        PcapPacketHeader const& header, IndexTarget const& target,
                        WalkTrace* trace) {
    auto const link = decodeLinkLayer(buffer, offset);
    if (!link) {
        return {};
    }
    bool const isGoose =
        link->header.etherType == wire::kEtherTypeGoose && target.filter.parseGoose;
    bool const isSv = link->header.etherType == wire::kEtherTypeSv && target.filter.parseSv;
    if (!isGoose && !isSv) {
        return {};
    }
    if (trace != nullptr) {
        trace->begin(buffer.subspan(offset));
        trace->passOver(link->unread);
    }
    return isGoose ? indexGoose(buffer, *link, bufferPosition, header, target, trace)
                   : indexSv(buffer, *link, bufferPosition, header, target, trace);
}

}  // namespace TalIec61850Parser::detail
