#include "tools/commands/Arguments.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <string_view>

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

bool hasEmptyValue(std::string_view argument) {
    return argument.starts_with("--") && argument.find('=') == argument.size() - 1;
}

/// Whether the next argument is the value of this one.
bool takesValue(CLI::App const& program, std::string const& argument) {
    if (!argument.starts_with('-')) {
        return false;
    }
    auto const commands = program.get_subcommands(nullptr);
    return std::any_of(commands.begin(), commands.end(), [&](CLI::App const* command) {
        CLI::Option const* const option = command->get_option_no_throw(argument);
        return option != nullptr && option->get_items_expected_max() > 0;
    });
}

}  // namespace

std::vector<std::string> argumentsFor(CLI::App const& program,
                                      std::vector<std::string> const& arguments) {
    std::vector<std::string> ready;
    std::vector<std::string> behindOptions;
    bool isValue = false;
    bool isBehindOptions = false;
    for (std::string const& argument : arguments) {
        if (isBehindOptions) {
            behindOptions.push_back(isMistakenForSyntax(argument) ? "./" + argument : argument);
        } else if (!isValue && argument == kEndOfOptions) {
            isBehindOptions = true;
        } else if (!isValue && isPacketOfStandardInput(argument)) {
            behindOptions.push_back(argument);
        } else if (!isValue && hasEmptyValue(argument)) {
            ready.push_back(argument.substr(0, argument.size() - 1));
            ready.emplace_back();
        } else {
            ready.push_back(!isValue && isMistakenForSyntax(argument) ? "./" + argument : argument);
        }
        isValue = !isValue && !isBehindOptions && takesValue(program, argument);
    }
    if (isBehindOptions || !behindOptions.empty()) {
        ready.emplace_back(kEndOfOptions);
        ready.insert(ready.end(), behindOptions.begin(), behindOptions.end());
    }
    std::reverse(ready.begin(), ready.end());
    return ready;
}

}  // namespace TalIec61850Tools
