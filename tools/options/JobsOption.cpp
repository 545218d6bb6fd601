#include "tools/options/JobsOption.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <charconv>
#include <string>

namespace TalIec61850Tools {

namespace {

std::size_t toJobs(std::string const& option, std::string const& text) {
    std::size_t jobs = 0;
    char const* const end = text.data() + text.size();
    auto const [stop, error] = std::from_chars(text.data(), end, jobs);
    if (error != std::errc{} || stop != end || jobs == 0) {
        throw CLI::ValidationError(option, fmt::format("{} is not a number from 1", text));
    }
    return jobs;
}

}  // namespace

void addJobsOption(CommandDefinition& command, std::size_t& jobs) {
    command.parser
        ->add_option_function<std::string>(
            "--jobs", [&jobs](std::string const& text) { jobs = toJobs("--jobs", text); },
            "Read N files at a time; as many as the machine has cores if not said")
        ->option_text("N");
}

}  // namespace TalIec61850Tools
