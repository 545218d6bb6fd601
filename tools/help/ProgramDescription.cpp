#include "tools/help/ProgramDescription.hpp"

#include <CLI/CLI.hpp>

#include "tools/commands/CommonOptions.hpp"

namespace TalIec61850Tools {

namespace {

std::string firstOf(std::vector<std::string> const& names) {
    return names.empty() ? std::string() : names.front();
}

/// The parser tells choices as {a,b,c} behind the type of the value.
std::vector<std::string> choicesIn(std::string const& typeName) {
    std::size_t const open = typeName.find('{');
    std::size_t const close = typeName.find('}');
    if (open == std::string::npos || close == std::string::npos) {
        return {};
    }
    return CLI::detail::split(typeName.substr(open + 1, close - open - 1), ',');
}

OptionDescription describeOption(CLI::Option const& option) {
    bool const takesValue = option.get_items_expected_max() > 0;
    return {.shortName = firstOf(option.get_snames()),
            .longName = firstOf(option.get_lnames()),
            .valueName = takesValue ? option.get_option_text() : std::string(),
            .choices = choicesIn(option.get_type_name()),
            .text = option.get_description()};
}

std::vector<OptionDescription> describeOptions(CLI::App const& app) {
    std::vector<OptionDescription> options;
    for (CLI::Option const* option : app.get_options()) {
        if (option->nonpositional()) {
            options.push_back(describeOption(*option));
        }
    }
    return options;
}

void describeArguments(CLI::App const& app, CommandDescription& command) {
    for (CLI::Option const* option : app.get_options()) {
        if (option->get_positional()) {
            command.argumentName = option->get_name(true);
            command.argumentText = option->get_description();
            command.argumentChoices = choicesIn(option->get_type_name());
        }
    }
}

CommandDescription describeCommand(CLI::App const& app) {
    CommandDescription command;
    command.name = app.get_name();
    command.text = app.get_description();
    command.options = describeOptions(app);
    describeArguments(app, command);
    HelpFooter const footer = splitHelpFooter(app.get_footer());
    command.notes = footer.notes;
    command.examples = footer.examples;
    return command;
}

}  // namespace

ProgramDescription describe(CLI::App const& program) {
    ProgramDescription description{.name = program.get_name(),
                                   .text = program.get_description(),
                                   .options = describeOptions(program),
                                   .commands = {}};
    for (CLI::App const* command : program.get_subcommands(nullptr)) {
        description.commands.push_back(describeCommand(*command));
    }
    return description;
}

}  // namespace TalIec61850Tools
