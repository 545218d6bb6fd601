#include "tools/options/RefuseRowOptions.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include "tools/options/UsageError.hpp"

namespace TalIec61850Tools {

void refuseRowOptions(CLI::App const& parser, std::string const& picture,
                      std::vector<std::string> const& others) {
    std::vector<std::string> refused = {"--format", "--columns", "--wide"};
    refused.insert(refused.end(), others.begin(), others.end());
    for (std::string const& option : refused) {
        if (parser.count(option) > 0) {
            throw UsageError(
                fmt::format("{} writes no rows: it cannot be combined with {}", picture, option));
        }
    }
}

}  // namespace TalIec61850Tools
