#include <TalIec61850Analysis/redundancy/RedundantSources.hpp>
#include <algorithm>
#include <map>

namespace TalIec61850Analysis::detail {

RedundantSources::RedundantSources(TrafficIndex const& index)
    : files_(index.files().size()),
      byStream_(index.streams().size(), kNone),
      areRedundant_(index.streams().size()) {
    std::map<MacAddress, std::uint32_t> byAddress;
    for (std::size_t stream = 0; stream < index.streams().size(); ++stream) {
        TrafficStream const& of = index.streams()[stream];
        auto const hasAny = [&](auto const& has) {
            return std::any_of(of.parts.begin(), of.parts.end(),
                               [&](StreamPart const& part) { return has(part.packets); });
        };
        areRedundant_[stream] = hasAny([](auto const& packets) { return packets.hasRedundancy(); });
        if (!areRedundant_[stream] &&
            !hasAny([](auto const& packets) { return packets.hasTrailerMisfit(); })) {
            continue;
        }
        auto const next = static_cast<std::uint32_t>(sources_.size());
        std::uint32_t number = next;
        if (of.key.source) {
            number = byAddress.emplace(*of.key.source, next).first->second;
        }
        if (number == next) {
            sources_.emplace_back().address = of.key.source;
        }
        byStream_[stream] = number;
        for (StreamPart const& part : of.parts) {
            addPart(sources_[number], part);
        }
    }
    for (Source& source : sources_) {
        for (auto& files : source.files) {
            std::sort(files.begin(), files.end());
            files.erase(std::unique(files.begin(), files.end()), files.end());
        }
    }
}

void RedundantSources::addPart(Source& source, StreamPart const& part) {
    PacketColumns const& packets = part.packets;
    File& file = files_[part.file];
    source.packets += packets.size();
    std::array<bool, 2> areThere{};
    std::uint64_t lastOffset = 0;
    for (std::size_t i = 0; i < packets.size(); ++i) {
        PacketFlags const flags = packets.flags()[i];
        if (flags.isDuplicate() && flags.redundancy() != Redundancy::none) {
            ++file.duplicates.at(wayOf(flags));
        }
        if (!isWanted(packets, i)) {
            continue;
        }
        if (flags.isTrailerMisfit()) {
            ++source.misfits;
            continue;
        }
        std::uint64_t const offset = packets.frameOffsets()[i];
        if (offset == lastOffset) {
            continue;
        }
        lastOffset = offset;
        std::size_t const way = wayOf(flags);
        areThere.at(way) = true;
        ++source.frames.at(way);
        source.prpFrames.at(way) += flags.redundancy() == Redundancy::prp ? 1U : 0U;
        ++file.frames.at(way);
        std::int64_t const time = packets.times()[i];
        file.first = file.first == kNoTime ? time : std::min(file.first, time);
        file.last = std::max(file.last, time);
    }
    for (std::size_t const way : {kWayA, kWayB}) {
        if (areThere.at(way)) {
            source.files.at(way).push_back(part.file);
        }
    }
}

}  // namespace TalIec61850Analysis::detail
