#include "tools/options/ComtradeOptions.hpp"

#include <CLI/CLI.hpp>
#include <charconv>
#include <cmath>
#include <map>

#include "tools/options/JobsOption.hpp"
#include "tools/options/NameOptions.hpp"
#include "tools/options/RepeatableOption.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::ComtradeData;
using TalIec61850Analysis::ComtradeEdition;

namespace {

constexpr char const* kRecordGroup = "Which record";

double toFrequency(std::string const& text) {
    double frequency = 0;
    char const* const end = text.data() + text.size();
    auto const [stop, error] = std::from_chars(text.data(), end, frequency);
    if (error != std::errc() || stop != end || !std::isfinite(frequency) || frequency <= 0) {
        refuseValue("--frequency", text, "a frequency in Hz, such as 50");
    }
    return frequency;
}

void addFormat(CommandDefinition& command, ComtradeOptions& options) {
    CLI::App& parser = *command.parser;
    parser.add_flag("--cff", options.inOneFile, "One file, BASE.cff (2013)")->group(kRecordGroup);
    CLI::Option& data = *parser.add_option_function<std::string>(
        "--data",
        [&options](std::string const& name) {
            static std::map<std::string, ComtradeData> const kinds = {
                {"binary32", ComtradeData::binary32},
                {"binary", ComtradeData::binary},
                {"ascii", ComtradeData::ascii}};
            options.data = kinds.at(name);
        },
        "How samples are stored: binary32 (2013; if not said), binary (1999, if not said), ascii");
    data.option_text("KIND")->group(kRecordGroup);
    allowOnly(command, data, {"binary32", "binary", "ascii"});
    CLI::Option& edition = *parser.add_option_function<std::string>(
        "--edition",
        [&options](std::string const& year) {
            options.edition = year == "1999" ? ComtradeEdition::of1999 : ComtradeEdition::of2013;
        },
        "Edition of COMTRADE: 2013 (if not said) or 1999");
    edition.option_text("YEAR")->group(kRecordGroup);
    allowOnly(command, edition, {"2013", "1999"});
}

void addChannels(CommandDefinition& command, ComtradeOptions& options) {
    CLI::App& parser = *command.parser;
    CLI::Option& quality =
        *parser.add_option("--quality", options.quality,
                           "Digital channels of each quality: none (if not said), bits (invalid, "
                           "questionable, test), all");
    quality.option_text("WHICH")->group(kRecordGroup);
    allowOnly(command, quality, {"none", "bits", "all"});
    parser
        .add_option("--goose", options.gocbRefs,
                    "Digital channels of the booleans and double points of GOOSE streams: a "
                    "gocbRef, in which * is any text, ? any character")
        ->allow_extra_args(false)
        ->option_text("NAME")
        ->group(kRecordGroup);
    addRepeatable(command, "--member", options.members, "PATTERN",
                  "Of --goose, these members alone, such as 3 or 9.*, by name 'PTRC*.Tr.general'",
                  [](std::string const&, std::string const& text) { return text; })
        .group(kRecordGroup);
}

}  // namespace

void addComtradeOptions(CommandDefinition& command, ComtradeOptions& options) {
    addInputOptions(command, options.choice.common);
    CLI::App& parser = *command.parser;
    parser
        .add_option("-o,--output", options.base,
                    "Write BASE.cfg, BASE.dat and BASE.hdr, which appear when all is written")
        ->option_text("BASE")
        ->required();
    addFormat(command, options);
    addChannels(command, options);
    addTimeOption(command, "--trigger", options.trigger,
                  "Time of the trigger; that of the first row if not said");
    addLengthOption(command, "--split", options.split,
                    "A record for each length of time, such as 60s: BASE-001 and so on");
    CLI::Option& align = *parser.add_option_function<std::string>(
        "--align", [&options](std::string const& how) { options.alignsNearest = how == "nearest"; },
        "Where streams sample at other instants: nearest puts each sample into the nearest row");
    align.option_text("HOW")->group(kRecordGroup);
    allowOnly(command, align, {"nearest"});
    parser.add_option("--station", options.station, "Name of the station; the svID if not said")
        ->option_text("NAME")
        ->group(kRecordGroup);
    parser
        .add_option_function<std::string>(
            "--frequency",
            [&options](std::string const& text) { options.frequency = toFrequency(text); },
            "Nominal frequency in Hz; what smpRate tells if not said")
        ->option_text("HZ")
        ->group(kRecordGroup);
    addSampleChoice(command, options.choice, &options.moreArounds);
    addNameOptions(command, options.choice.common, options.choice.criteria);
}

}  // namespace TalIec61850Tools
