#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace TalIec61850Tools {

/// Changes arguments that the parser would misread:
///
/// - a file called [a] or ++ gets a ./ in front;
/// - a packet of standard input, -@4711, is moved after --, where nothing is an option;
/// - an option with an empty value, --svid=, becomes two arguments.
///
/// @param program    has all its commands
/// @param arguments  without the program's name
/// @return from the last to the first, the order that the parser takes
/// @throws UsageError  an option that takes no value is given an empty one, --quiet=
[[nodiscard]] std::vector<std::string> argumentsFor(CLI::App const& program,
                                                    std::vector<std::string> const& arguments);

}  // namespace TalIec61850Tools
