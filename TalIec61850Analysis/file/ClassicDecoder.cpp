#include <TalIec61850Analysis/file/ClassicDecoder.hpp>
#include <algorithm>

namespace TalIec61850Analysis::detail {

using TalIec61850Parser::wire::RecordHeader;

ClassicDecoder::ClassicDecoder(TalIec61850Parser::wire::CaptureVariant variant,
                               std::uint64_t fileSize, InterfaceTable& table)
    : table_(&table),
      fileSize_(fileSize),
      variant_(variant),
      linkType_(table.interfaces.front().linkType) {}

std::size_t ClassicDecoder::decode(std::span<std::uint8_t const> octets, std::uint64_t fileOffset,
                                   WalkedRecords& walked) {
    std::size_t begin = 0;
    while (!walked.isFull() && octets.size() - begin >= RecordHeader::kSize) {
        auto const rest = octets.subspan(begin);
        auto const header = RecordHeader::read(rest, variant_.isLittleEndian);
        if (header.inclLen > std::min(kLongestFrame, rest.size() - RecordHeader::kSize)) {
            break;
        }
        read(walked.add(), fileOffset + begin, header,
             rest.subspan(RecordHeader::kSize, header.inclLen));
        begin += RecordHeader::kSize + header.inclLen;
    }
    if (isCounting_) {
        table_->interfaces.front().records +=
            static_cast<std::uint64_t>(walked.end() - walked.begin());
    }
    return walked.isEmpty() ? decodeDamaged(octets, fileOffset, walked) : begin;
}

/// Member by member, in place: this is most of what a record costs.
inline void ClassicDecoder::read(RecordView& view, std::uint64_t fileOffset,
                                 RecordHeader const& header,
                                 std::span<std::uint8_t const> frame) const {
    CaptureRecord& record = view.record;
    record.fileOffset = fileOffset;
    record.frameOffset = fileOffset + RecordHeader::kSize;
    record.time = captureTimeOf(static_cast<std::int64_t>(TalIec61850Parser::wire::exactNanoseconds(
        header.tsSec, header.tsUsec, variant_.isNanosecond)));
    record.capturedSize = static_cast<std::uint32_t>(frame.size());
    record.originalSize = header.origLen;
    record.linkType = linkType_;
    view.frame = frame;
}

std::size_t ClassicDecoder::decodeDamaged(std::span<std::uint8_t const> octets,
                                          std::uint64_t fileOffset, WalkedRecords& walked) const {
    std::uint64_t const left = fileSize_ - fileOffset;
    if (left == 0) {
        walked.finish();
        return 0;
    }
    if (left < RecordHeader::kSize) {
        walked.finish({.kind = CaptureDamageKind::recordHeaderCut, .fileOffset = fileOffset});
        return 0;
    }
    if (octets.size() < RecordHeader::kSize) {
        return 0;
    }
    auto const header = RecordHeader::read(octets, variant_.isLittleEndian);
    std::uint64_t const held = left - RecordHeader::kSize;
    if (header.inclLen > held) {
        auto const shown = static_cast<std::size_t>(std::min<std::uint64_t>(held, kLongestFrame));
        if (octets.size() < RecordHeader::kSize + shown) {
            return 0;
        }
        RecordView cut;
        read(cut, fileOffset, header, octets.subspan(RecordHeader::kSize, shown));
        walked.setCut(cut);
        walked.finish({.kind = CaptureDamageKind::recordCut,
                       .fileOffset = fileOffset,
                       .claimedSize = header.inclLen,
                       .missingSize = header.inclLen - held});
        return 0;
    }
    if (header.inclLen > kLongestFrame) {
        walked.note({.kind = CaptureDamageKind::recordTooLong,
                     .fileOffset = fileOffset,
                     .claimedSize = header.inclLen});
        return RecordHeader::kSize + header.inclLen;
    }
    return 0;
}

}  // namespace TalIec61850Analysis::detail
