#include "tools/options/SampleOptions.hpp"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>
#include <utility>

#include "tools/options/JobsOption.hpp"
#include "tools/options/RepeatableOption.hpp"
#include "tools/options/StreamOptions.hpp"
#include "tools/options/UsageError.hpp"
#include "tools/output/NearestWords.hpp"
#include "tools/output/Plural.hpp"
#include "tools/selection/SampleTypeNames.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::SampleLayout;
using TalIec61850Analysis::SampleType;

namespace {

constexpr char const* kSamplesGroup = "Which samples";

/// The parts of a list, commas between them.
std::vector<std::string> partsOf(std::string const& text) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    while (true) {
        std::size_t const comma = text.find(',', start);
        std::string part = text.substr(start, comma - start);
        std::size_t const first = part.find_first_not_of(' ');
        std::size_t const last = part.find_last_not_of(' ');
        parts.push_back(first == std::string::npos ? "" : part.substr(first, last - first + 1));
        if (comma == std::string::npos) {
            return parts;
        }
        start = comma + 1;
    }
}

SampleLayout toLayout(std::string const& text) {
    constexpr std::size_t kMostMembers = 8192;
    std::vector<SampleType> members;
    for (std::string const& part : partsOf(text)) {
        auto const type = typeOfWord(part);
        if (!type) {
            throw CLI::ValidationError(
                "--layout",
                fmt::format("{} is none of {}{}", part.empty() ? "\"\"" : part,
                            fmt::join(typeWords(), ", "), didYouMean(part, typeWords())));
        }
        members.push_back(*type);
        if (members.size() > kMostMembers) {
            throw CLI::ValidationError("--layout", "there are more members than any frame has");
        }
    }
    return SampleLayout(std::move(members));
}

std::vector<std::size_t> toChannels(std::string const& text) {
    constexpr std::uint64_t kMostChannels = 65535;
    std::vector<std::size_t> channels;
    for (std::string const& part : partsOf(text)) {
        auto const dash = part.find('-');
        auto const first = readNumber(part.substr(0, dash), 10, kMostChannels);
        auto const last = dash == std::string::npos
                              ? first
                              : readNumber(part.substr(dash + 1), 10, kMostChannels);
        if (!first || !last || *first == 0 || *last < *first) {
            refuseValue("--channels", text, "numbers from 1, such as 1,2,5-8");
        }
        for (std::uint64_t channel = *first; channel <= *last; ++channel) {
            channels.push_back(channel);
        }
    }
    return channels;
}

std::vector<double> toScales(std::string const& text) {
    std::vector<double> scales;
    for (std::string const& part : partsOf(text)) {
        double scale = 0;
        auto const [stop, error] = std::from_chars(part.data(), part.data() + part.size(), scale);
        bool const isNumber = error == std::errc() && stop == part.data() + part.size();
        if (!isNumber || !std::isfinite(scale) || scale == 0) {
            refuseValue("--scale", text, "one factor, or one for each channel: 0.001,0.01");
        }
        scales.push_back(scale);
    }
    return scales;
}

}  // namespace

void SampleChoice::check() const {
    if (criteria.protocol == Protocol::goose) {
        throw UsageError("--protocol goose: GOOSE has no samples");
    }
    window.check();
}

void SampleChoice::checkChannels(std::size_t most) const {
    bool const isThere =
        channels.empty() || std::any_of(channels.begin(), channels.end(),
                                        [most](std::size_t number) { return number <= most; });
    if (most > 0 && !isThere) {
        throw UsageError(fmt::format("--channels: these streams have {}", plural(most, "channel")));
    }
}

void addChannelsOption(CommandDefinition& command, std::vector<std::size_t>& channels) {
    command.parser
        ->add_option_function<std::string>(
            "--channels", [&channels](std::string const& text) { channels = toChannels(text); },
            "Only these channels, such as 1,2,5-8")
        ->option_text("LIST")
        ->group(kSamplesGroup);
}

void addScaleOption(CommandDefinition& command, std::vector<double>& scales) {
    command.parser
        ->add_option_function<std::string>(
            "--scale", [&scales](std::string const& text) { scales = toScales(text); },
            "Factor from counts to units: one for all channels, or one for each")
        ->option_text("LIST")
        ->group(kSamplesGroup);
}

void addSampleChoice(CommandDefinition& command, SampleChoice& choice,
                     std::vector<TimeBound>* moreArounds) {
    addJobsOption(command, choice.common.jobs);
    addWindowOptions(command, choice.window, moreArounds);
    command.parser
        ->add_option_function<std::string>(
            "--layout", [&choice](std::string const& text) { choice.layout = toLayout(text); },
            "What all of seqData is, such as int32,quality,float32; else it is inferred")
        ->option_text("LIST")
        ->group(kSamplesGroup);
    command.parser
        ->add_option_function<std::string>(
            "--rate",
            [&choice](std::string const& text) {
                auto const rate = readNumber(text, 10, 1'000'000);
                if (!rate || *rate == 0) {
                    refuseValue("--rate", text, "samples a second, from 1 to 1000000");
                }
                choice.rate = {.samples = static_cast<std::uint32_t>(*rate)};
            },
            "Samples a second, in place of what the streams tell")
        ->option_text("N")
        ->group(kSamplesGroup);
    addChannelsOption(command, choice.channels);
    addScaleOption(command, choice.scales);
    addContentOptions(command, choice.criteria);
}

std::string layoutNotes() {
    return fmt::format(
        "--layout lists every member of the data set in its order, commas between them: {}. It "
        "goes for streams with samples of that length. Without it, the layout is inferred from "
        "some hundred ASDUs of each stream: INT32 and quality, FLOAT32 and quality, FLOAT32, or "
        "a value and its time; what looks like none of these is given as octets.",
        fmt::join(typeWords(), ", "));
}

}  // namespace TalIec61850Tools
