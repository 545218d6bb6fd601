#include "tools/commands/WantedPackets.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <vector>

#include "tools/output/Plural.hpp"

namespace TalIec61850Tools {

PacketSelection selectWanted(CaptureIndex const& index, PacketOptions const& options) {
    CaptureTime const begin = index.begin.value_or(CaptureTime());
    CaptureSpan const captures{.begin = begin, .end = index.end.value_or(begin)};
    PacketWish const wish{.criteria = options.criteria,
                          .window = options.window.resolve(captures),
                          .withContext = options.withContext};
    return selectPackets(index.db, index.numbers, wish);
}

void limitPackets(PacketSelection& selection, std::optional<std::uint64_t> limit) {
    if (limit && *limit < selection.packets.size()) {
        selection.beyondLimit = selection.packets.size() - *limit;
        selection.packets.resize(static_cast<std::size_t>(*limit));
    }
}

PacketRow rowOf(SelectedPacket const& packet, PacketSelection const& selection,
                CommandRun const& run) {
    return {.stream = &selection.streams[packet.stream],
            .time = toCaptureTime(packet.package->time),
            .file = run.captures()[packet.capture].name,
            .position = packet.package->position,
            .place = packet.place};
}

std::string summaryOf(PacketSelection const& selection, std::size_t captures) {
    std::vector<bool> isListed(selection.streams.size());
    for (SelectedPacket const& packet : selection.packets) {
        isListed[packet.stream] = true;
    }
    auto const streams = std::count(isListed.begin(), isListed.end(), true);
    std::string const unplaced = selection.unplaced == 0
                                     ? std::string()
                                     : fmt::format("; {} without a place in its file left out",
                                                   plural(selection.unplaced, "packet"));
    std::string const more = selection.beyondLimit == 0
                                 ? std::string()
                                 : fmt::format("; {} more not listed", selection.beyondLimit);
    return fmt::format("{} of {} in {}{}{}", plural(selection.packets.size(), "packet"),
                       plural(static_cast<std::uint64_t>(streams), "stream"),
                       plural(captures, "file"), unplaced, more);
}

}  // namespace TalIec61850Tools
