#include "tools/options/CommandDefinition.hpp"

#include <CLI/CLI.hpp>
#include <utility>

namespace TalIec61850Tools {

void allowOnly(CommandDefinition& command, CLI::Option& option, std::vector<std::string> choices,
               LetterCase letterCase) {
    if (letterCase == LetterCase::ignored) {
        option.transform(CLI::IsMember(choices, CLI::ignore_case));
    } else {
        option.check(CLI::IsMember(choices));
    }
    command.choices[&option] = std::move(choices);
}

CommandDefinition& addCommand(ProgramDefinition& program, std::string const& name,
                              std::string const& text) {
    return program.commands.emplace_back(
        CommandDefinition{.parser = program.parser.add_subcommand(name, text),
                          .notes = {},
                          .examples = {},
                          .readsCaptures = false,
                          .choices = {}});
}

}  // namespace TalIec61850Tools
