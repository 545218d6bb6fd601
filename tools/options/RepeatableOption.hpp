#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/options/CommandDefinition.hpp"

namespace TalIec61850Tools {

/// The heading of the options on streams in a help.
inline constexpr char const* kStreamsGroup = "Which streams";

/// Refuses the value of an option.
/// @param wanted  what it should have been, such as "a number from 0 to 5"
[[noreturn]] void refuseValue(std::string const& option, std::string const& value,
                              std::string const& wanted);

/// Reads a number of a base.
/// @param base  10, or 16 with or without 0x before the digits
/// @return none for any other text, and for a number beyond `max`
[[nodiscard]] std::optional<std::uint64_t> readNumber(std::string const& text, int base,
                                                      std::uint64_t max);

/// Reads a decimal number, or a hexadecimal one with 0x before it; refuses any other text.
[[nodiscard]] std::uint64_t numberValue(std::string const& option, std::string const& text,
                                        std::uint64_t max);

/// Adds an option on streams that may be given several times, each time with one value.
/// @param values   written while the command line is parsed
/// @param convert  from option name and text to an element of `values`; refuses others
template <typename Value, typename Convert>
CLI::Option& addRepeatable(CommandDefinition& command, std::string const& name,
                           std::vector<Value>& values, std::string const& valueName,
                           std::string const& help, Convert convert) {
    return *command.parser
                ->add_option_function<std::vector<std::string>>(
                    name,
                    [&values, name, convert](std::vector<std::string> const& texts) {
                        for (auto const& text : texts) {
                            values.push_back(convert(name, text));
                        }
                    },
                    help)
                ->allow_extra_args(false)
                ->option_text(valueName)
                ->group(kStreamsGroup);
}

/// Adds an option on streams that is answered by yes or no.
/// @param answer  written while the command line is parsed
void addYesOrNo(CommandDefinition& command, std::string const& name, std::optional<bool>& answer,
                std::string const& help);

}  // namespace TalIec61850Tools
