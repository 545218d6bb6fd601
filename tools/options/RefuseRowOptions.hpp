#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}  // namespace CLI

namespace TalIec61850Tools {

/// Refuses options that say which rows are written, or how, where a picture is asked for instead.
/// @param parser   that of the command, after it has parsed
/// @param picture  the option that asks for it
/// @param others   besides those that all commands have for rows
/// @throws UsageError  one was given
void refuseRowOptions(CLI::App const& parser, std::string const& picture,
                      std::vector<std::string> const& others);

}  // namespace TalIec61850Tools
