#include "tools/commands/WantedPackets.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>
#include <utility>

#include "tools/commands/IndexTraffic.hpp"
#include "tools/commands/NothingFoundNote.hpp"
#include "tools/output/Plural.hpp"
#include "tools/render/CaptureText.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::FrameHeader;
using TalIec61850Analysis::RecordView;

WantedPackets::WantedPackets(CommandRun& run, PacketOptions const& options, NamesOfRun& names,
                             Unit unit)
    : run_(run),
      options_(options),
      criteria_(names.asking(options.criteria)),
      unit_(unit),
      index_(indexTraffic(run, criteria_, options.common.jobs, names.publishers())),
      frames_(pathsOf(run)),
      selection_(index_, wish(),
                 [this](std::uint32_t file, std::uint64_t frameOffset) {
                     return headerOf(file, frameOffset);
                 }),
      isGiven_(index_.streams().size()) {
    reportFaults(run, index_);
}

PacketWish WantedPackets::wish() const {
    return {.criteria = criteria_,
            .window = options_.window.resolve(spanOf(index_)),
            .withContext = options_.withContext};
}

FrameHeader WantedPackets::headerOf(std::uint32_t file, std::uint64_t frameOffset) {
    try {
        RecordView const& view = frames_.read(file, frameOffset);
        return TalIec61850Analysis::readFrameHeader(view.frame, originOf(view.record));
    } catch (std::system_error const&) {
        return {};  // reported when its packets are read
    }
}

std::optional<SelectedPacket> WantedPackets::nextWanted() {
    auto packet = selection_.next();
    while (packet && unit_ == Unit::frames &&
           lastFrame_ == std::pair(packet->file, packet->frameOffset())) {
        packet = selection_.next();
    }
    if (packet) {
        lastFrame_ = {packet->file, packet->frameOffset()};
    }
    return packet;
}

std::uint64_t WantedPackets::countAll() {
    std::uint64_t all = 0;
    while (nextWanted()) {
        ++all;
    }
    selection_.rewind();
    lastFrame_.reset();
    return all;
}

void WantedPackets::visit(std::function<void(PacketRow const&)> const& take) {
    std::uint64_t const all = run_.isWritingShown() ? countAll() : 0;
    ProgressBar bar = run_.writingBar(all);
    bar.startFile("writing", all);
    while (auto const packet = nextWanted()) {
        if (options_.limit && count_ >= *options_.limit) {
            ++beyondLimit_;
            continue;
        }
        bar.countOne();
        if (lost_.contains(packet->file)) {
            continue;
        }
        try {
            take(PacketRow(*packet, run_.captures()[packet->file].name, frames_));
        } catch (OutputError const&) {
            throw;
        } catch (std::system_error const& error) {
            lose(packet->file, error.code(), bar);
            continue;
        }
        ++count_;
        if (packet->stream != nullptr) {
            isGiven_[static_cast<std::size_t>(packet->stream - index_.streams().data())] = true;
        }
    }
}

void WantedPackets::lose(std::uint32_t file, std::error_code const& error, ProgressBar& bar) {
    lost_.insert(file);
    bar.erase();
    run_.complainOf(run_.captures()[file].name, faultText(error));
}

void WantedPackets::noteIfNone() const {
    if (count_ == 0 && options_.limit != 0 && lost_.empty()) {
        noteNoPackets(run_, index_, criteria_, options_.common.jobs, selection_.streamCount());
    }
}

std::string WantedPackets::summary() const {
    std::string const more =
        beyondLimit_ == 0 ? std::string() : fmt::format("; {} more not listed", beyondLimit_);
    auto const given =
        static_cast<std::uint64_t>(std::count(isGiven_.begin(), isGiven_.end(), true));
    return fmt::format("{} of {} in {}{}",
                       plural(count_, unit_ == Unit::frames ? "frame" : "packet"),
                       plural(given, "stream"), plural(run_.captures().size(), "file"), more);
}

}  // namespace TalIec61850Tools
