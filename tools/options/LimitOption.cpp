#include "tools/options/LimitOption.hpp"

#include <CLI/CLI.hpp>

#include "tools/options/RepeatableOption.hpp"

namespace TalIec61850Tools {

void addLimitOption(CommandDefinition& command, std::optional<std::uint64_t>& limit,
                    std::string const& group, std::string const& what) {
    command.parser
        ->add_option_function<std::string>(
            "--limit",
            [&limit, what](std::string const& text) {
                auto const number = readNumber(text, 10, std::uint64_t{1} << 62U);
                if (!number) {
                    refuseValue("--limit", text, "a number of " + what);
                }
                limit = *number;
            },
            "Write the first N " + what + " at most")
        ->option_text("N")
        ->group(group);
}

}  // namespace TalIec61850Tools
