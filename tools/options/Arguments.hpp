#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace TalIec61850Tools {

/// Makes ready what the user has written for the parser, which would misread some of it:
///
/// - a file called [a] or ++: it gets ./ before it, which leads to the same file;
/// - a packet of standard input, -@4711: it goes behind --, where nothing is an option;
/// - an option with an empty value, --svid=: it becomes two arguments.
///
/// @param program    has all its commands
/// @param arguments  without the program's name
/// @return from the last to the first, as the parser wants them
/// @throws UsageError  an option that takes no value has an empty one, --quiet=
[[nodiscard]] std::vector<std::string> argumentsFor(CLI::App const& program,
                                                    std::vector<std::string> const& arguments);

}  // namespace TalIec61850Tools
