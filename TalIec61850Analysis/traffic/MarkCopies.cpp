#include <TalIec61850Analysis/traffic/MarkCopies.hpp>
#include <TalIec61850Analysis/traffic/PacketRow.hpp>
#include <TalIec61850Analysis/traffic/TimeWalk.hpp>
#include <algorithm>

namespace TalIec61850Analysis::detail {

CopyMarker::Met& CopyMarker::metAt(std::size_t number) {
    std::vector<Met>& chunk = met_[number / kChunk];
    if (chunk.empty()) {
        chunk.resize(kChunk);
    }
    return chunk[number % kChunk];
}

bool CopyMarker::isCopy(PacketColumns const& packets, std::size_t packet) {
    // As long as a receiver remembers what it has.
    constexpr std::uint64_t kForgetTime = 400'000'000;
    PacketFlags const flags = packets.flags()[packet];
    std::int64_t const time = packets.times()[packet];
    bool const isB = flags.lane() == 'B';
    bool const isPrp = flags.redundancy() == Redundancy::prp;
    Met& met = metAt(packets.redundancySequences()[packet] + (isPrp ? kSequences : 0));
    // Times come in their order: the difference is right as a number without a sign.
    auto const age = static_cast<std::uint64_t>(time) - static_cast<std::uint64_t>(met.time);
    bool const isCopy =
        met.stream == stream_ && !met.isPaired && met.isB != isB && age <= kForgetTime;
    if (isCopy) {
        met.isPaired = true;
    } else {
        met = {.time = time, .stream = stream_, .isB = isB, .isPaired = false};
    }
    return isCopy;
}

void CopyMarker::mark(std::span<StreamPart> parts) {
    bool const hasAny = std::any_of(parts.begin(), parts.end(), [](StreamPart const& part) {
        return part.packets.hasRedundancy();
    });
    if (!hasAny) {
        return;
    }
    std::vector<std::span<PacketFlags>> flags;
    for (StreamPart& part : parts) {
        ColumnsWriter::clearFlag(part.packets, PacketFlags::kCopy);
        flags.push_back(ColumnsWriter::flags(part.packets));
    }
    ++stream_;
    // The packets of one frame follow one another, and share what is found for the first.
    std::uint32_t lastPart = 0;
    std::uint64_t lastOffset = 0;
    bool isCopyThere = false;
    visitInTime(parts, {}, [&](PacketRef const& ref) {
        PacketColumns const& packets = parts[ref.part].packets;
        PacketFlags& flag = flags[ref.part][ref.packet];
        if (flag.redundancy() == Redundancy::none || flag.isDuplicate()) {
            return;
        }
        // No frame is at offset 0, where the file's header is.
        std::uint64_t const offset = packets.frameOffsets()[ref.packet];
        if (ref.part != lastPart || offset != lastOffset) {
            isCopyThere = isCopy(packets, ref.packet);
        }
        if (isCopyThere) {
            flag.bits |= PacketFlags::kCopy;
        }
        lastPart = ref.part;
        lastOffset = offset;
    });
}

}  // namespace TalIec61850Analysis::detail
