#include "tools/options/ArgumentKinds.hpp"

#include <CLI/CLI.hpp>

namespace TalIec61850Tools {

namespace {

/// Whether the last one of several short options, as in -qf, takes the next argument.
bool lastTakesValue(CLI::App const& program, std::string const& options) {
    for (std::size_t i = 1; i < options.size(); ++i) {
        CLI::Option const* const option = findOption(program, std::string("-") + options[i]);
        if (option == nullptr || takesValue(*option)) {
            return option != nullptr && i + 1 == options.size();
        }
    }
    return false;
}

/// Whether the next argument is the value of this one.
bool isValueNext(CLI::App const& program, std::string const& option) {
    if (!option.starts_with("--")) {
        return lastTakesValue(program, option);
    }
    CLI::Option const* const known = findOption(program, option);
    return known != nullptr && takesValue(*known);
}

/// Not - for standard input, nor a file called -1, nor a packet -@1.
bool isOption(std::string const& argument) {
    return argument.size() > 1 && argument[0] == '-' && (argument[1] < '0' || argument[1] > '9') &&
           !isPacketOfStandardInput(argument);
}

}  // namespace

bool takesValue(CLI::Option const& option) { return option.get_items_expected_max() > 0; }

// NOLINTNEXTLINE(misc-no-recursion): as deep as groups of commands
CLI::Option const* findOption(CLI::App const& program, std::string const& name) {
    for (CLI::App const* command : program.get_subcommands(nullptr)) {
        CLI::Option const* option = command->get_option_no_throw(name);
        option = option == nullptr ? findOption(*command, name) : option;
        if (option != nullptr) {
            return option;
        }
    }
    return nullptr;
}

bool isPacketOfStandardInput(std::string const& argument) {
    return argument.starts_with("-@") && argument.size() > 2 &&
           argument.find_first_not_of("0123456789", 2) == std::string::npos;
}

std::vector<ArgumentKind> kindsOf(CLI::App const& program,
                                  std::vector<std::string> const& arguments) {
    std::vector<ArgumentKind> kinds;
    bool isValue = false;
    bool isAfterOptions = false;
    for (std::string const& argument : arguments) {
        ArgumentKind kind = ArgumentKind::word;
        if (!isAfterOptions && isValue) {
            kind = ArgumentKind::value;
        } else if (!isAfterOptions && argument == "--") {
            kind = ArgumentKind::endOfOptions;
            isAfterOptions = true;
        } else if (!isAfterOptions && isOption(argument)) {
            kind = ArgumentKind::option;
        }
        isValue = kind == ArgumentKind::option && isValueNext(program, argument);
        kinds.push_back(kind);
    }
    return kinds;
}

}  // namespace TalIec61850Tools
