#include "tools/commands/NamesOfRun.hpp"

#include <optional>
#include <utility>

#include "tools/output/Complain.hpp"
#include "tools/render/NamesEndText.hpp"

namespace TalIec61850Tools {

using TalIec61850Scl::StationDescription;

namespace {

std::optional<StationDescription> describe(CommandRun& run, CommonOptions const& options) {
    return options.descriptions.empty() ? std::nullopt
                                        : std::optional(run.describe(options.descriptions).station);
}

}  // namespace

NamesOfRun::NamesOfRun(CommandRun& run, CommonOptions const& options)
    : StreamNames(describe(run, options),
                  [](NamesEnd const& end) { complain(namesEndText(end)); }) {}

}  // namespace TalIec61850Tools
