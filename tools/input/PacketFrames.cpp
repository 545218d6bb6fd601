#include "tools/input/PacketFrames.hpp"

#include <algorithm>
#include <cerrno>
#include <system_error>

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
    : path_(path) {
    CaptureRecords records(path);
    std::sort(positions.begin(), positions.end());
    auto wanted = positions.begin();
    auto const keepIfWanted = [&](CaptureRecord const& record) {
        wanted = std::lower_bound(wanted, positions.end(), record.framePosition());
        if (wanted != positions.end() && holds(record, *wanted)) {
            found_.push_back(record);
        }
    };
    while (wanted != positions.end()) {
        auto const record = records.next();
        if (!record) {
            break;
        }
        keepIfWanted(*record);
    }
    if (records.cutRecord()) {
        keepIfWanted(*records.cutRecord());
    }
}

std::optional<CaptureRecord> PacketFrames::recordAt(std::uint64_t position) const {
    auto const found = std::partition_point(
        found_.begin(), found_.end(),
        [&](CaptureRecord const& record) { return endOf(record) <= position; });
    return found != found_.end() && holds(*found, position) ? std::optional(*found) : std::nullopt;
}

std::vector<std::uint8_t> PacketFrames::frameOf(CaptureRecord const& record) const {
    Descriptor const file = openToRead(path_);
    if (!file) {
        throw std::system_error(errno, std::generic_category());
    }
    std::vector<std::uint8_t> frame(record.capturedSize);
    frame.resize(readAt(file, record.framePosition(), frame));
    return frame;
}

}  // namespace TalIec61850Tools
