#include "tools/help/ProgramDescription.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>

#include "tools/options/ArgumentKinds.hpp"

namespace TalIec61850Tools {

namespace {

std::string firstOf(std::vector<std::string> const& names) {
    return names.empty() ? std::string() : names.front();
}

std::vector<std::string> choicesOf(CLI::Option const& option, OptionChoices const& choices) {
    auto const found = choices.find(&option);
    return found == choices.end() ? std::vector<std::string>() : found->second;
}

OptionDescription describeOption(CLI::Option const& option, OptionChoices const& choices) {
    return {.shortName = firstOf(option.get_snames()),
            .longName = firstOf(option.get_lnames()),
            .valueName = takesValue(option) ? option.get_option_text() : std::string(),
            .choices = choicesOf(option, choices),
            .text = option.get_description()};
}

std::vector<OptionDescription> describeOptions(CLI::App const& app, OptionChoices const& choices) {
    std::vector<OptionDescription> options;
    for (CLI::Option const* option : app.get_options()) {
        if (option->nonpositional()) {
            options.push_back(describeOption(*option, choices));
        }
    }
    return options;
}

void describeArguments(CommandDefinition const& definition, CommandDescription& command) {
    for (CLI::Option const* option : definition.parser->get_options()) {
        if (option->get_positional()) {
            command.argumentName = option->get_name(true);
            command.argumentText = option->get_description();
            command.argumentChoices = choicesOf(*option, definition.choices);
        }
    }
}

CommandDescription describeCommand(CommandDefinition const& definition) {
    CLI::App const& parser = *definition.parser;
    CommandDescription command;
    command.name = parser.get_name();
    auto const words = wordsOf(parser);
    command.group = words.size() > 1 ? words.front() : std::string();
    command.isGroup = definition.isGroup;
    command.text = parser.get_description();
    command.options = describeOptions(parser, definition.choices);
    describeArguments(definition, command);
    command.notes = definition.notes;
    command.examples = definition.examples;
    return command;
}

}  // namespace

std::vector<CommandDescription> ProgramDescription::commandsIn(std::string_view group) const {
    std::vector<CommandDescription> found;
    std::copy_if(commands.begin(), commands.end(), std::back_inserter(found),
                 [&](CommandDescription const& command) { return command.group == group; });
    return found;
}

std::vector<std::string> namesOf(std::vector<CommandDescription> const& commands) {
    std::vector<std::string> names;
    std::transform(commands.begin(), commands.end(), std::back_inserter(names),
                   [](CommandDescription const& command) { return command.name; });
    return names;
}

ProgramDescription describe(ProgramDefinition const& program) {
    ProgramDescription description{.name = program.parser.get_name(),
                                   .text = program.parser.get_description(),
                                   .options = describeOptions(program.parser, {}),
                                   .commands = {}};
    for (CommandDefinition const& command : program.commands) {
        description.commands.push_back(describeCommand(command));
    }
    return description;
}

}  // namespace TalIec61850Tools
