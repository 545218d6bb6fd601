#include "tools/options/Arguments.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <string_view>

#include "tools/options/ArgumentKinds.hpp"
#include "tools/options/UsageError.hpp"

namespace TalIec61850Tools {

namespace {

constexpr char const* kEndOfOptions = "--";

/// [a,b] is a list to the parser, ++ ends a subcommand.
bool isMistakenForSyntax(std::string_view argument) {
    return argument == "++" || (argument.starts_with('[') && argument.ends_with(']'));
}

/// --svid=
/// @throws UsageError  for an option that takes none
bool hasEmptyValue(CLI::App const& program, std::string const& argument) {
    if (!argument.starts_with("--") || !argument.ends_with('=')) {
        return false;
    }
    std::string const name = argument.substr(0, argument.size() - 1);
    CLI::Option const* const option = findOption(program, name);
    if (option != nullptr && !takesValue(*option)) {
        throw UsageError(name + " takes no value");
    }
    return option != nullptr;
}

}  // namespace

std::vector<std::string> argumentsFor(CLI::App const& program,
                                      std::vector<std::string> const& arguments) {
    std::vector<std::string> ready;
    std::vector<std::string> afterOptions;
    bool isAfterOptions = false;
    auto const kinds = kindsOf(program, arguments);
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        std::string const& argument = arguments[i];
        bool const isWord = kinds[i] == ArgumentKind::word;
        std::string const safe =
            isWord && isMistakenForSyntax(argument) ? "./" + argument : argument;
        if (kinds[i] == ArgumentKind::endOfOptions) {
            isAfterOptions = true;
        } else if (isAfterOptions || (isWord && isPacketOfStandardInput(argument))) {
            afterOptions.push_back(safe);
        } else if (kinds[i] == ArgumentKind::option && hasEmptyValue(program, argument)) {
            ready.push_back(argument.substr(0, argument.size() - 1));
            ready.emplace_back();
        } else {
            ready.push_back(safe);
        }
    }
    if (isAfterOptions || !afterOptions.empty()) {
        ready.emplace_back(kEndOfOptions);
        ready.insert(ready.end(), afterOptions.begin(), afterOptions.end());
    }
    std::reverse(ready.begin(), ready.end());
    return ready;
}

}  // namespace TalIec61850Tools
