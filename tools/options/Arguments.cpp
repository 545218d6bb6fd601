#include "tools/options/Arguments.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <string_view>

#include "tools/options/UsageError.hpp"

namespace TalIec61850Tools {

namespace {

constexpr char const* kEndOfOptions = "--";

/// [a,b] is a list to the parser, ++ ends a subcommand.
bool isMistakenForSyntax(std::string_view argument) {
    return argument == "++" || (argument.starts_with('[') && argument.ends_with(']'));
}

bool isPacketOfStandardInput(std::string_view argument) {
    return argument.starts_with("-@") && argument.size() > 2 &&
           argument.find_first_not_of("0123456789", 2) == std::string_view::npos;
}

/// The option of this name in any of the commands: options of one name are alike in all.
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

/// Whether the next argument is the value of this one.
bool takesValue(CLI::App const& program, std::string const& argument) {
    CLI::Option const* const option =
        argument.starts_with('-') ? findOption(program, argument) : nullptr;
    return option != nullptr && option->get_items_expected_max() > 0;
}

/// --svid=
/// @throws UsageError  for an option that takes none
bool hasEmptyValue(CLI::App const& program, std::string const& argument) {
    if (!argument.starts_with("--") || !argument.ends_with('=')) {
        return false;
    }
    std::string const name = argument.substr(0, argument.size() - 1);
    CLI::Option const* const option = findOption(program, name);
    if (option != nullptr && option->get_items_expected_max() == 0) {
        throw UsageError(name + " takes no value");
    }
    return option != nullptr;
}

}  // namespace

std::vector<std::string> argumentsFor(CLI::App const& program,
                                      std::vector<std::string> const& arguments) {
    std::vector<std::string> ready;
    std::vector<std::string> afterOptions;
    bool isValue = false;
    bool isAfterOptions = false;
    for (std::string const& argument : arguments) {
        if (isAfterOptions) {
            afterOptions.push_back(isMistakenForSyntax(argument) ? "./" + argument : argument);
        } else if (!isValue && argument == kEndOfOptions) {
            isAfterOptions = true;
        } else if (!isValue && isPacketOfStandardInput(argument)) {
            afterOptions.push_back(argument);
        } else if (!isValue && hasEmptyValue(program, argument)) {
            ready.push_back(argument.substr(0, argument.size() - 1));
            ready.emplace_back();
        } else {
            ready.push_back(!isValue && isMistakenForSyntax(argument) ? "./" + argument : argument);
        }
        isValue = !isValue && !isAfterOptions && takesValue(program, argument);
    }
    if (isAfterOptions || !afterOptions.empty()) {
        ready.emplace_back(kEndOfOptions);
        ready.insert(ready.end(), afterOptions.begin(), afterOptions.end());
    }
    std::reverse(ready.begin(), ready.end());
    return ready;
}

}  // namespace TalIec61850Tools
