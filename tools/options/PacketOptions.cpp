#include "tools/options/PacketOptions.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <charconv>

#include "tools/options/JobsOption.hpp"
#include "tools/options/StreamOptions.hpp"

namespace TalIec61850Tools {

namespace {

std::uint64_t toCount(std::string const& option, std::string const& text) {
    std::uint64_t count = 0;
    char const* const end = text.data() + text.size();
    auto const [stop, error] = std::from_chars(text.data(), end, count);
    if (error != std::errc{} || stop != end) {
        throw CLI::ValidationError(option, fmt::format("{} is not a number of packets", text));
    }
    return count;
}

}  // namespace

void addPacketOptions(CommandDefinition& command, PacketOptions& options) {
    addJobsOption(command, options.common.jobs);
    addWindowOptions(command, options.window);
    command.parser
        ->add_flag("-c,--context", options.withContext,
                   "Add, of each GOOSE stream in each file, the last packet before the window and "
                   "the first after it")
        ->group(kWindowGroup);
    command.parser
        ->add_option_function<std::string>(
            "--limit",
            [&options](std::string const& text) { options.limit = toCount("--limit", text); },
            "Write the first N packets at most")
        ->option_text("N")
        ->group(kWindowGroup);
    addWireOptions(command, options.criteria);
    addCounterOptions(command, options.criteria);
}

}  // namespace TalIec61850Tools
