#include <TalIec61850Parser/capture/EthernetDecoder.hpp>
#include <TalIec61850Parser/capture/FrameIndex.hpp>
#include <TalIec61850Parser/capture/LinkLayerFilter.hpp>
#include <TalIec61850Parser/capture/RecordReader.hpp>
#include <TalIec61850Parser/goose/GooseFrame.hpp>
#include <TalIec61850Parser/sv/SvFrame.hpp>
#include <algorithm>
#include <utility>

namespace TalIec61850Parser::detail {

namespace {

constexpr std::uint32_t kNanosecondsPerMicrosecond = 1000;

/// Appends the packet to its stream, then counts it: a packet that found no memory is not counted.
template <typename Stream>
void addPacket(Stream const& stored, Package const& package, IndexTarget const& target) {
    std::uint32_t const nanoseconds =
        package.time.nanoseconds * (target.isNanosecond ? 1U : kNanosecondsPerMicrosecond);
    stored.addFile(target.fileName)
        ->addPackage(package.time.seconds, nanoseconds, package.position);
    ++stored.packetCount;
}

void indexGoose(Octets buffer, LinkLayer const& link, std::uint64_t bufferPosition,
                PcapPacketHeader const& header, IndexTarget const& target) {
    Goose goose;
    Package package;
    if (takeLinkLayer(link.header, goose, target.filter.gooseFilters) &&
        readGooseFrame(buffer, link.payloadPosition, header, bufferPosition, goose, package,
                       target.filter)) {
        addPacket(target.db.gooseProto.addGoose(std::move(goose)), package, target);
    }
}

void indexSv(Octets buffer, LinkLayer const& link, std::uint64_t bufferPosition,
             PcapPacketHeader const& header, IndexTarget const& target) {
    Sv sv;
    Package package;
    if (!takeLinkLayer(link.header, sv, target.filter.svFilters) ||
        !readSvFrame(buffer, link.payloadPosition, header, bufferPosition, sv, package,
                     target.filter)) {
        return;
    }
    std::uint16_t const smpCnt = sv.maxSmpCnt;
    std::uint16_t const smpRate = sv.smpRate;
    std::uint32_t const noAsdu = sv.maxNoASDU;
    Sv const& stored = target.db.svProto.addSv(std::move(sv));
    addPacket(stored, package, target);
    stored.maxSmpCnt = std::max(stored.maxSmpCnt, smpCnt);
    stored.smpRate = smpRate;
    stored.maxNoASDU = std::max(stored.maxNoASDU, noAsdu);
}

}  // namespace

void indexRecord(Octets record, std::uint64_t recordPosition, bool isLittleEndian,
                 IndexTarget const& target) {
    if (record.size() <= RecordHeader::kSize) {
        return;
    }
    auto const header = RecordHeader::read(record, isLittleEndian);
    indexFrame(record, RecordHeader::kSize, recordPosition,
               {.tsSec = header.tsSec, .tsUsec = header.tsUsec}, target);
}

void indexFrame(Octets buffer, std::size_t offset, std::uint64_t bufferPosition,
                PcapPacketHeader const& header, IndexTarget const& target) {
    auto const link = decodeLinkLayer(buffer, offset);
    if (!link) {
        return;
    }
    if (link->header.etherType == wire::kEtherTypeGoose && target.filter.parseGoose) {
        indexGoose(buffer, *link, bufferPosition, header, target);
    } else if (link->header.etherType == wire::kEtherTypeSv && target.filter.parseSv) {
        indexSv(buffer, *link, bufferPosition, header, target);
    }
}

}  // namespace TalIec61850Parser::detail
