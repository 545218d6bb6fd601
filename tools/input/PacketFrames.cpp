#include "tools/input/PacketFrames.hpp"

#include <algorithm>

namespace TalIec61850Tools {

namespace {

std::uint64_t endOf(CaptureRecord const& record) {
    return record.framePosition() + record.capturedSize;
}

bool holds(CaptureRecord const& record, std::uint64_t position) {
    return record.framePosition() <= position && position < endOf(record);
}

}  // namespace

PacketFrames::PacketFrames(std::string const& path, std::vector<std::uint64_t> positions)
    : records_(path) {
    std::sort(positions.begin(), positions.end());
    auto wanted = positions.begin();
    auto const keepIfWanted = [&](CaptureRecord const& record) {
        wanted = std::lower_bound(wanted, positions.end(), record.framePosition());
        if (wanted != positions.end() && holds(record, *wanted)) {
            found_.push_back(record);
        }
    };
    while (wanted != positions.end()) {
        auto const record = records_.next();
        if (!record) {
            break;
        }
        keepIfWanted(*record);
    }
    if (records_.cutRecord()) {
        keepIfWanted(*records_.cutRecord());
    }
}

std::optional<CaptureRecord> PacketFrames::recordAt(std::uint64_t position) const {
    auto const found = std::partition_point(
        found_.begin(), found_.end(),
        [&](CaptureRecord const& record) { return endOf(record) <= position; });
    return found != found_.end() && holds(*found, position) ? std::optional(*found) : std::nullopt;
}

std::span<std::uint8_t const> PacketFrames::frameOf(CaptureRecord const& record) {
    return records_.frameOf(record);
}

}  // namespace TalIec61850Tools
