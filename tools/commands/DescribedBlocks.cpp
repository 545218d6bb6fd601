#include "tools/commands/DescribedBlocks.hpp"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <unordered_set>

#include "tools/output/NearestWords.hpp"
#include "tools/output/TextEscape.hpp"

namespace TalIec61850Tools {

using TalIec61850Scl::ControlBlock;
using TalIec61850Scl::StationDescription;

namespace {

/// IEDs that publish, each once.
std::vector<std::string> publishersOf(StationDescription const& station) {
    std::vector<std::string> ieds;
    std::unordered_set<std::string> known;
    for (ControlBlock const& block : station.controlBlocks) {
        if (known.insert(block.ied).second) {
            ieds.push_back(block.ied);
        }
    }
    return ieds;
}

}  // namespace

std::vector<ControlBlock const*> wantedBlocks(StationDescription const& station,
                                              ControlBlockCriteria const& criteria) {
    std::vector<ControlBlock const*> wanted;
    for (ControlBlock const& block : station.controlBlocks) {
        if (criteria.admit(block)) {
            wanted.push_back(&block);
        }
    }
    return wanted;
}

void noteNoBlocks(CommandRun const& run, StationDescription const& station,
                  ControlBlockCriteria const& criteria) {
    constexpr std::size_t most = 8;
    constexpr std::size_t mostColumns = 40;
    if (station.controlBlocks.empty()) {
        run.note("no GOOSE or SV control block is described");
        return;
    }
    auto ieds = publishersOf(station);
    if (!criteria.ieds.empty()) {
        ieds = nearestFirst(criteria.ieds.front(), std::move(ieds));
    }
    bool const isMore = ieds.size() > most;
    ieds.resize(std::min(ieds.size(), most));
    for (std::string& ied : ieds) {
        ied = shorten(escapeText(ied), mostColumns, Cut::middle, "...");
    }
    run.note(fmt::format("no control block meets the options; IEDs that publish are {}{}",
                         fmt::join(ieds, ", "), isMore ? " and others" : ""));
}

}  // namespace TalIec61850Tools
