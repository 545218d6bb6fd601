#include "tools/options/CommandDefinition.hpp"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <utility>

#include "tools/output/NearestWords.hpp"

namespace TalIec61850Tools {

namespace {

CommandDefinition& addTo(ProgramDefinition& program, CLI::App& parent, std::string const& name,
                         std::string const& text) {
    CommandDefinition& command = program.commands.emplace_back();
    command.parser = parent.add_subcommand(name, text);
    return command;
}

/// Where one of many is meant, the others would hide it.
std::string choiceRefusal(std::string const& value, std::vector<std::string> const& choices) {
    constexpr std::size_t kMostListed = 16;
    auto const guess = didYouMean(value, choices);
    if (!guess.empty() && choices.size() > kMostListed) {
        return fmt::format("{} is not known{}", value, guess);
    }
    return fmt::format("{} is none of {}{}", value, fmt::join(choices, ", "), guess);
}

}  // namespace

void allowOnly(CommandDefinition& command, CLI::Option& option, std::vector<std::string> choices) {
    option.transform(CLI::Validator(
        [choices](std::string& value) {
            auto const found =
                std::find_if(choices.begin(), choices.end(),
                             [&](std::string const& choice) { return isSameWord(choice, value); });
            if (found == choices.end()) {
                return choiceRefusal(value, choices);
            }
            value = *found;
            return std::string();
        },
        ""));
    command.choices[&option] = std::move(choices);
}

CommandDefinition& addCommand(ProgramDefinition& program, std::string const& name,
                              std::string const& text) {
    return addTo(program, program.parser, name, text);
}

CommandDefinition& addCommand(ProgramDefinition& program, CommandDefinition const& group,
                              std::string const& name, std::string const& text) {
    return addTo(program, *group.parser, name, text);
}

CommandDefinition& addCommandGroup(ProgramDefinition& program, std::string const& name,
                                   std::string const& text) {
    CommandDefinition& group = addCommand(program, name, text);
    group.isGroup = true;
    group.parser->require_subcommand(0, 1);  // so a file may be called like one of its commands
    return group;
}

std::vector<std::string> wordsOf(CLI::App const& command) {
    std::vector<std::string> words;
    for (CLI::App const* app = &command; app->get_parent() != nullptr; app = app->get_parent()) {
        words.insert(words.begin(), app->get_name());
    }
    return words;
}

std::string messageStart(CLI::App const& command) {
    auto const words = wordsOf(command);
    return words.empty() ? std::string() : fmt::format("{}: ", fmt::join(words, " "));
}

std::string seeHelp(CLI::App const& command) {
    auto const words = wordsOf(command);
    return fmt::format("see tal-iec61850 {}{}--help", fmt::join(words, " "),
                       words.empty() ? "" : " ");
}

}  // namespace TalIec61850Tools
