#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace TalIec61850Tools {

/// What an argument is to the program.
enum class ArgumentKind {
    word,          ///< a command, a file
    option,        ///< one or several
    value,         ///< of the option before it
    endOfOptions,  ///< --, after which all are words
};

/// The kind of each argument.
/// @param program  has all its commands: an option of one name takes a value in all of them or in
///                 none
[[nodiscard]] std::vector<ArgumentKind> kindsOf(CLI::App const& program,
                                                std::vector<std::string> const& arguments);

/// Whether an option is no flag.
[[nodiscard]] bool takesValue(CLI::Option const& option);

/// The option of this name in any of the commands; null if there is none.
/// @param name  with its dashes
[[nodiscard]] CLI::Option const* findOption(CLI::App const& program, std::string const& name);

/// -@4711
[[nodiscard]] bool isPacketOfStandardInput(std::string const& argument);

}  // namespace TalIec61850Tools
