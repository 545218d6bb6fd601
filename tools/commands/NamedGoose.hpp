#pragma once

#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <string_view>

#include "tools/commands/CommandRun.hpp"
#include "tools/commands/NamesOfRun.hpp"
#include "tools/names/MessageNames.hpp"
#include "tools/options/EventsOptions.hpp"
#include "tools/selection/PacketCriteria.hpp"

namespace TalIec61850Tools {

/// The GOOSE streams of a run, and what their members are called.
struct NamedGoose {
    /// Indexes the captures of a run; faults in them are told.
    /// @param run  must outlive this
    NamedGoose(CommandRun& run, EventsOptions const& options);
    NamedGoose(NamedGoose const&) = delete;
    NamedGoose& operator=(NamedGoose const&) = delete;

    /// Says on standard error why there is nothing, and what there is.
    /// @param what  there is none of
    void noteNone(CommandRun const& run, EventsOptions const& options, std::string_view what) const;

    NamesOfRun names;
    /// Those that were given, for GOOSE alone, and those that the description adds.
    PacketCriteria criteria;
    TalIec61850Analysis::TrafficIndex index;
    /// Refers to the members before it.
    MessageNames messages;
};

}  // namespace TalIec61850Tools
