#include "tools/options/ReportOptions.hpp"

#include <CLI/CLI.hpp>
#include <string>

#include "tools/options/NameOptions.hpp"
#include "tools/options/RepeatableOption.hpp"

namespace TalIec61850Tools {

namespace {

constexpr std::uint64_t kKilo = 1000;
/// The page without any samples takes some hundred kilobytes, and tables and lanes take a part.
constexpr std::uint64_t kLeastSize = 2'000'000;
constexpr std::uint64_t kMostSize = 1'000'000'000;

std::uint64_t toSize(std::string const& text) {
    std::string digits = text;
    std::uint64_t unit = 1;
    if (digits.ends_with('k')) {
        unit = kKilo;
    } else if (digits.ends_with('M')) {
        unit = kKilo * kKilo;
    }
    if (unit != 1) {
        digits.pop_back();
    }
    auto const number = readNumber(digits, 10, kMostSize / unit);
    if (!number || *number * unit < kLeastSize) {
        refuseValue("--max-size", text, "a size of at least 2M and at most 1000M, such as 20M");
    }
    return *number * unit;
}

}  // namespace

void addReportOptions(CommandDefinition& command, ReportOptions& options) {
    addInputOptions(command, options.choice.common);
    addOutputOption(*command.parser, options.choice.common.outputFile,
                    "Write the page into FILE, which appears when all is written")
        .required();
    command.parser
        ->add_option_function<std::string>(
            "--max-size", [&options](std::string const& text) { options.maxSize = toSize(text); },
            "Size of the page at most, in octets, or with k or M; 20M if not said. Samples that do "
            "not fit are kept as columns of least and largest values")
        ->option_text("SIZE");
    addSampleChoice(command, options.choice);
    addNameOptions(command, options.choice.common, options.choice.criteria);
}

}  // namespace TalIec61850Tools
