#include <TalIec61850Parser/capture/index/IndexFrame.hpp>
#include <TalIec61850Parser/frame/Admission.hpp>
#include <TalIec61850Parser/goose/GooseFrame.hpp>
#include <TalIec61850Parser/sv/SvFrame.hpp>
#include <utility>

namespace TalIec61850Parser::detail {

namespace {

/// How GOOSE frames are indexed where that differs from SV.
struct GooseIndexing {
    using Record = Goose;
    static auto& streams(Db& db) { return db.gooseProto.streams; }
    static GooseFilters const& filters(Filter const& filter) { return filter.gooseFilters; }
    static bool walk(Octets pdu, GooseWalk const& walk) { return walkGoosePdu(pdu, {}, walk); }
    static SvFigures takeFigures(Goose const& /*record*/) { return {}; }
};

struct SvIndexing {
    using Record = Sv;
    static auto& streams(Db& db) { return db.svProto.streams; }
    static SvFilters const& filters(Filter const& filter) { return filter.svFilters; }
    static bool walk(Octets pdu, SvWalk const& walk) { return walkSavPdu(pdu, {}, walk); }
    /// A stored stream has statistics of its own: those of the frame leave the record.
    static SvFigures takeFigures(Sv const& record) {
        return {.smpCnt = std::exchange(record.maxSmpCnt, std::uint16_t{0}),
                .smpRate = std::exchange(record.smpRate, std::uint16_t{0}),
                .noASDU = std::exchange(record.maxNoASDU, std::uint32_t{0})};
    }
};

/// Appends the packet to its stream, then counts it: a packet that found no memory is not counted.
void addPacket(Package const& package, StreamPlace const& place, IndexTarget const& target) {
    Timest const time =
        packetTime(package.time.seconds, package.time.nanoseconds, target.variant.isNanosecond);
    place.file->addPackage(time.seconds, time.nanoseconds, package.position);
    ++*place.packetCount;
}

template <typename Indexing>
IndexedFrame indexPdu(CapturedFrame const& frame, wire::LinkLayer const& link,
                      IndexTarget const& target, TracedFrame* traced) {
    typename Indexing::Record record;
    Package package;
    auto const& filters = Indexing::filters(target.filter);
    WalkTrace* const trace = traced == nullptr ? nullptr : &traced->trace;
    auto const pdu = admitFrame(frame.buffer, link, record, filters, trace);
    if (!pdu || !Indexing::walk(*pdu, {.record = record,
                                       .filters = filters,
                                       .package = package,
                                       .time = {frame.tsSec, frame.tsUsec},
                                       .fileOffset = frame.fileOffset + link.payloadIndex +
                                                     wire::ApplicationHeader::kSize,
                                       .trace = trace})) {
        return {};
    }
    IndexedFrame indexed;
    indexed.fileOffset = package.position;
    indexed.figures = Indexing::takeFigures(record);
    if (traced != nullptr) {
        traced->stream = record;
    }
    addToStream(Indexing::streams(target.db), std::move(record), target.fileName,
                [&](StreamPlace const& place) {
                    addPacket(package, place, target);
                    indexed.place = place;
                });
    if (indexed.place.sv != nullptr) {
        follow(*indexed.place.sv, indexed.figures);
    }
    return indexed;
}

}  // namespace

IndexedFrame indexRecord(Octets record, std::uint64_t fileOffset, IndexTarget const& target,
                         TracedFrame* traced) {
    if (record.size() <= wire::RecordHeader::kSize) {
        return {};
    }
    auto const header = wire::RecordHeader::read(record, target.variant.isLittleEndian);
    return indexFrame({.buffer = record,
                       .index = wire::RecordHeader::kSize,
                       .fileOffset = fileOffset,
                       .tsSec = header.tsSec,
                       .tsUsec = header.tsUsec},
                      target, traced);
}

IndexedFrame indexFrame(CapturedFrame const& frame, IndexTarget const& target,
                        TracedFrame* traced) {
    auto const link = wire::decodeLinkLayer(frame.buffer, frame.index);
    if (!link) {
        return {};
    }
    bool const isGoose = link->etherType == wire::kEtherTypeGoose && target.filter.parseGoose;
    bool const isSv = link->etherType == wire::kEtherTypeSv && target.filter.parseSv;
    if (!isGoose && !isSv) {
        return {};
    }
    if (traced != nullptr) {
        traced->trace.begin(frame.buffer.subspan(frame.index));
        traced->trace.passOver(link->unread);
        traced->stream = {};
    }
    return isGoose ? indexPdu<GooseIndexing>(frame, *link, target, traced)
                   : indexPdu<SvIndexing>(frame, *link, target, traced);
}

}  // namespace TalIec61850Parser::detail
