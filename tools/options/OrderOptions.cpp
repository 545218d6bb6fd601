#include "tools/options/OrderOptions.hpp"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <CLI/CLI.hpp>

namespace TalIec61850Tools {

void addOrderOptions(CommandDefinition& command, StreamOrder& order,
                     std::vector<std::string> const& keys) {
    CLI::Option& sort = *command.parser->add_option(
        "--sort", order.key, fmt::format("Order of the rows: {}", fmt::join(keys, ", ")));
    sort.option_text("KEY");
    allowOnly(command, sort, keys);
    command.parser->add_flag("-r,--reverse", order.isReversed, "The other way round");
}

}  // namespace TalIec61850Tools
