#pragma once

#include "tools/commands/CommandRun.hpp"
#include "tools/names/StreamNames.hpp"
#include "tools/options/CommonOptions.hpp"
#include "tools/selection/PacketCriteria.hpp"

namespace TalIec61850Tools {

/// The names that the descriptions of a command line have. What is wrong with these is reported,
/// and so is where streams are not as they are described.
class NamesOfRun : public StreamNames {
public:
    /// Reads the descriptions, if there are any.
    NamesOfRun(CommandRun& run, CommonOptions const& options);

    /// The criteria, where they ask for IEDs with what tells these; it must outlive them.
    [[nodiscard]] PacketCriteria asking(PacketCriteria criteria) {
        criteria.publishers = criteria.ieds.empty() ? nullptr : publishers();
        return criteria;
    }
};

}  // namespace TalIec61850Tools
