#include "tools/options/IntendedCommand.hpp"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>

#include "tools/options/ArgumentKinds.hpp"
#include "tools/options/CommandDefinition.hpp"
#include "tools/options/PacketLocator.hpp"
#include "tools/options/UsageError.hpp"
#include "tools/output/NearestWords.hpp"
#include "tools/output/TextEscape.hpp"

namespace TalIec61850Tools {

namespace {

using Arguments = std::vector<std::string>;

/// Whether a word is rather a file than a mistyped command.
bool isFileName(std::string const& word) {
    std::error_code ignored;
    return word == "-" || word.find_first_of("./") != std::string::npos ||
           std::filesystem::exists(word, ignored);
}

/// A command by its name, or null.
CLI::App const* commandCalled(CLI::App const& parent, std::string const& name) {
    auto const commands = parent.get_subcommands(nullptr);
    auto const found = std::find_if(commands.begin(), commands.end(),
                                    [&](auto const* app) { return app->get_name() == name; });
    return found == commands.end() ? nullptr : *found;
}

Arguments namesIn(CLI::App const& parent) {
    Arguments names;
    for (CLI::App const* command : parent.get_subcommands(nullptr)) {
        names.push_back(command->get_name());
    }
    return names;
}

/// With dashes.
Arguments optionsOf(CLI::App const& command) {
    Arguments names;
    for (CLI::Option const* option : command.get_options()) {
        for (auto const& name : option->get_lnames()) {
            names.push_back("--" + name);
        }
    }
    return names;
}

/// The commands that have an option, in the order in which they are listed.
Arguments commandsWith(CLI::App const& program, std::string const& option) {
    std::vector<CLI::App const*> commands = {&program};
    Arguments names;
    for (std::size_t i = 0; i < commands.size(); ++i) {
        CLI::App const& command = *commands[i];
        if (command.get_option_no_throw(option) != nullptr) {
            names.push_back(fmt::format("{}", fmt::join(wordsOf(command), " ")));
        }
        auto const members = command.get_subcommands(nullptr);
        commands.insert(commands.end(), members.begin(), members.end());
    }
    return names;
}

/// Where an option can be given that the command does not have, or what may be meant.
std::string optionHint(CLI::App const& program, CLI::App const& command, std::string const& name) {
    auto const owners = commandsWith(program, name);
    if (owners.empty()) {
        return didYouMean(name, optionsOf(command));
    }
    if (&command == &program) {
        return "; options of a command come after it";
    }
    return fmt::format("; {} {} it", fmt::join(owners, ", "), owners.size() == 1 ? "has" : "have");
}

/// Refuses the first of the options in an argument that the command does not have.
void refuseUnknownOption(CLI::App const& program, CLI::App const& command,
                         std::string const& argument) {
    bool const isLong = argument.starts_with("--");
    std::string const name =
        isLong ? argument.substr(0, argument.find('=')) : argument.substr(0, 2);
    if (command.get_option_no_throw(name) != nullptr) {
        return;
    }
    throw UsageError(fmt::format("{}there is no option {}{}", messageStart(command),
                                 escapeText(name), optionHint(program, command, name)));
}

/// The command of a group, or of the program, that a word names.
CLI::App const* nextCommand(CLI::App const& parent, std::string const& word) {
    auto const names = namesIn(parent);
    if (names.empty()) {
        return nullptr;  // a file
    }
    if (CLI::App const* command = commandCalled(parent, word)) {
        return command;
    }
    auto const guess = didYouMean(word, names);
    throw UsageError(fmt::format("{}there is no command {}{}", messageStart(parent),
                                 escapeText(word), guess.empty() ? ", " + seeHelp(parent) : guess));
}

/// Takes the words `help` at the front away.
bool takeHelp(Arguments& arguments) {
    auto const end = std::find_if(arguments.begin(), arguments.end(),
                                  [](std::string const& argument) { return argument != "help"; });
    bool const isThere = end != arguments.begin();
    arguments.erase(arguments.begin(), end);
    return isThere;
}

}  // namespace

Arguments intendedCommand(CLI::App const& program, Arguments arguments) {
    if (takeHelp(arguments)) {
        // A file among them would be read as another command.
        auto const kinds = kindsOf(program, arguments);
        Arguments command;
        for (std::size_t i = 0; i < arguments.size() && kinds[i] == ArgumentKind::word; ++i) {
            command.push_back(arguments[i]);
        }
        command.emplace_back("--help");
        return command;
    }
    auto const kinds = kindsOf(program, arguments);
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        bool const isOption = kinds[i] == ArgumentKind::option;
        if (isOption && (arguments[i] == "--version" || arguments[i] == "-V")) {
            return {"--version"};
        }
    }
    auto const word = std::find(kinds.begin(), kinds.end(), ArgumentKind::word);
    if (word != kinds.end()) {
        std::string const& first = arguments[static_cast<std::size_t>(word - kinds.begin())];
        bool const isPacket = parsePacketLocator(first).has_value();
        if (commandCalled(program, first) == nullptr && (isPacket || isFileName(first))) {
            arguments.insert(arguments.begin(), isPacket ? "show" : "streams");
        }
    }
    return arguments;
}

void refuseUnknown(CLI::App const& program, Arguments const& arguments) {
    auto const kinds = kindsOf(program, arguments);
    CLI::App const* command = &program;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (kinds[i] == ArgumentKind::option) {
            refuseUnknownOption(program, *command, arguments[i]);
        } else if (kinds[i] == ArgumentKind::word) {
            CLI::App const* const next = nextCommand(*command, arguments[i]);
            command = next == nullptr ? command : next;
        }
    }
}

}  // namespace TalIec61850Tools
