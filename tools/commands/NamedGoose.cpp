#include "tools/commands/NamedGoose.hpp"

#include <cstdint>
#include <string>

#include "tools/commands/IndexTraffic.hpp"
#include "tools/commands/NothingFoundNote.hpp"
#include "tools/selection/StreamRow.hpp"

namespace TalIec61850Tools {

namespace {

PacketCriteria ofGoose(PacketCriteria criteria) {
    criteria.protocol = Protocol::goose;
    return criteria;
}

}  // namespace

NamedGoose::NamedGoose(CommandRun& run, EventsOptions const& options)
    : names(run, options.common),
      criteria(names.asking(ofGoose(options.criteria))),
      index(indexByOneClock(run, criteria, options.common.jobs, names.publishers())),
      messages(index, names, [&run](std::uint32_t file) -> std::string_view {
          return run.captures()[file].name;
      }) {
    reportFaults(run, index);
    names.look(index);
}

void NamedGoose::noteNone(CommandRun const& run, EventsOptions const& options,
                          std::string_view what) const {
    if (index.streams().empty()) {
        noteNoStreams(run, index, criteria, options.common.jobs);
    } else {
        noteOtherTimes(run, collectRows(index, criteria),
                       std::string(what) + (options.window.isEmpty() ? "" : " in the window"));
    }
}

}  // namespace TalIec61850Tools
