#include "tools/options/RepeatableOption.hpp"

#include <fmt/format.h>

#include <charconv>

namespace TalIec61850Tools {

namespace {

bool isMarkedHexadecimal(std::string const& text) {
    return text.starts_with("0x") || text.starts_with("0X");
}

}  // namespace

void refuseValue(std::string const& option, std::string const& value, std::string const& wanted) {
    throw CLI::ValidationError(option, fmt::format("{} is not {}", value, wanted));
}

std::optional<std::uint64_t> readNumber(std::string const& text, int base, std::uint64_t max) {
    char const* const begin = text.data() + (base == 16 && isMarkedHexadecimal(text) ? 2 : 0);
    char const* const end = text.data() + text.size();
    std::uint64_t number = 0;
    auto const [stop, error] = std::from_chars(begin, end, number, base);
    bool const isNumber = error == std::errc{} && stop == end && number <= max;
    return isNumber ? std::optional(number) : std::nullopt;
}

std::uint64_t numberValue(std::string const& option, std::string const& text, std::uint64_t max) {
    auto const number = readNumber(text, isMarkedHexadecimal(text) ? 16 : 10, max);
    if (!number) {
        refuseValue(option, text, fmt::format("a number from 0 to {}", max));
    }
    return *number;
}

void addYesOrNo(CommandDefinition& command, std::string const& name, std::optional<bool>& answer,
                std::string const& help) {
    CLI::Option& option = *command.parser->add_option_function<std::string>(
        name, [&answer](std::string const& text) { answer = text == "yes"; }, help);
    option.option_text("YES|NO")->group(kStreamsGroup);
    allowOnly(command, option, {"yes", "no"});
}

}  // namespace TalIec61850Tools
