#include "tools/options/PlotOptions.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include "tools/options/NameOptions.hpp"
#include "tools/options/RepeatableOption.hpp"

namespace TalIec61850Tools {

namespace {

constexpr std::uint64_t kLeastWidth = 320;
constexpr std::uint64_t kMostWidth = 4000;
constexpr std::uint64_t kLeastHeight = 100;
constexpr std::uint64_t kMostHeight = 20'000;

std::uint64_t toPixels(std::string const& option, std::string const& text, std::uint64_t least,
                       std::uint64_t most) {
    auto const number = readNumber(text, 10, most);
    if (!number || *number < least) {
        refuseValue(option, text, fmt::format("pixels, from {} to {}", least, most));
    }
    return *number;
}

}  // namespace

void addPlotOptions(CommandDefinition& command, PlotOptions& options) {
    addInputOptions(command, options.choice.common);
    CLI::App& parser = *command.parser;
    addOutputOption(parser, options.choice.common.outputFile,
                    "Write the picture into FILE, which appears when all is written");
    parser
        .add_option_function<std::string>(
            "--width",
            [&options](std::string const& text) {
                options.width = toPixels("--width", text, kLeastWidth, kMostWidth);
            },
            "Width of the picture in pixels; 800 if not said")
        ->option_text("N");
    parser
        .add_option_function<std::string>(
            "--height",
            [&options](std::string const& text) {
                options.height = toPixels("--height", text, kLeastHeight, kMostHeight);
            },
            "Height of the picture in pixels, shared out among waveforms; it is higher where these "
            "could not be read")
        ->option_text("N");
    CLI::Option& theme = *parser.add_option_function<std::string>(
        "--theme", [&options](std::string const& name) { options.isDark = name == "dark"; },
        "light (if not said) or dark");
    theme.option_text("THEME");
    allowOnly(command, theme, {"light", "dark"});
    parser
        .add_option("--title", options.title,
                    "First line of the picture, in place of the names of the streams")
        ->option_text("TEXT");
    addSampleChoice(command, options.choice);
    addNameOptions(command, options.choice.common, options.choice.criteria);
}

}  // namespace TalIec61850Tools
