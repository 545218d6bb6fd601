#include "tools/options/SelectionOptions.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <limits>
#include <string>
#include <vector>

#include "tools/options/UsageError.hpp"

namespace TalIec61850Tools {

namespace {

constexpr char const* kStreamsGroup = "Which streams";
constexpr std::size_t kAddressSize = 17;

[[noreturn]] void refuse(std::string const& option, std::string const& value,
                         std::string const& wanted) {
    throw CLI::ValidationError(option, fmt::format("{} is not {}", value, wanted));
}

bool isMarkedHexadecimal(std::string const& text) {
    return text.starts_with("0x") || text.starts_with("0X");
}

/// @return none for a text that is no number of the base, from 0 to `max`; a 0x counts for nothing
std::optional<std::uint64_t> readNumber(std::string const& text, int base, std::uint64_t max) {
    char const* const begin = text.data() + (isMarkedHexadecimal(text) ? 2 : 0);
    char const* const end = text.data() + text.size();
    std::uint64_t number = 0;
    auto const [stop, error] = std::from_chars(begin, end, number, base);
    bool const isNumber = error == std::errc{} && stop == end && number <= max;
    return isNumber ? std::optional(number) : std::nullopt;
}

/// A decimal number, or a hexadecimal one with 0x before it.
template <typename Number>
Number toNumber(std::string const& option, std::string const& text, std::uint64_t max) {
    auto const number = readNumber(text, isMarkedHexadecimal(text) ? 16 : 10, max);
    if (!number) {
        refuse(option, text, fmt::format("a number from 0 to {}", max));
    }
    return static_cast<Number>(*number);
}

/// Hexadecimal, with or without 0x, as APPIDs are written everywhere.
std::uint64_t toAppId(std::string const& option, std::string const& text) {
    auto const number = readNumber(text, 16, 0xFFFF);
    if (!number) {
        refuse(option, text, "a hexadecimal number from 0 to FFFF");
    }
    return *number;
}

/// An address as the index has it: lower case, colons.
std::string toAddress(std::string const& option, std::string const& text) {
    std::string address = text;
    std::transform(address.begin(), address.end(), address.begin(), [](char c) {
        return c == '-' ? ':' : (c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c);
    });
    bool isAddress = address.size() == kAddressSize;
    for (std::size_t i = 0; isAddress && i < address.size(); ++i) {
        bool const isSeparator = i % 3 == 2;
        isAddress = isSeparator ? address[i] == ':'
                                : std::string_view("0123456789abcdef").find(address[i]) !=
                                      std::string_view::npos;
    }
    if (!isAddress) {
        refuse(option, text, "an address such as 01:0c:cd:01:00:01");
    }
    return address;
}

char toLane(std::string const& option, std::string const& text) {
    if (text == "A" || text == "a" || text == "B" || text == "b") {
        return text == "A" || text == "a" ? 'A' : 'B';
    }
    refuse(option, text, "A or B");
}

/// Adds an option that may be given several times, each time with one value.
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

void addNumbers(CommandDefinition& command, StreamCriteria& c) {
    using Text = std::string const&;
    addRepeatable(
        command, "--vlan", c.vlanIds, "ID", "VLAN identifier",
        [](Text option, Text text) { return toNumber<std::uint16_t>(option, text, 0xFFF); });
    addRepeatable(command, "--appid", c.appIds, "HEX", "APPID, such as 4000 or 0x4000: hexadecimal",
                  toAppId);
    addRepeatable(command, "--reserved1-bit0", c.reserved1Bit0, "BIT",
                  "Bit 0 of the second octet of Reserved 1: 0 or 1",
                  [](Text option, Text text) { return toNumber<std::uint8_t>(option, text, 1); });
    addRepeatable(command, "--confrev", c.confRevs, "N", "confRev", [](Text option, Text text) {
        return toNumber<std::uint64_t>(option, text, std::numeric_limits<std::uint32_t>::max());
    });
}

void addNames(CommandDefinition& command, StreamCriteria& c) {
    auto const asItIs = [](std::string const&, std::string const& text) { return text; };
    addRepeatable(command, "--svid", c.svIDs, "NAME", "svID (SV); * and ? stand for other text",
                  asItIs);
    addRepeatable(command, "--gocbref", c.gocbRefs, "NAME", "gocbRef (GOOSE), likewise", asItIs);
    addRepeatable(command, "--datset", c.datSets, "NAME", "datSet (GOOSE), likewise", asItIs);
    addRepeatable(command, "--goid", c.goIDs, "NAME", "goID (GOOSE), likewise", asItIs);
}

TimeBound toTimeBound(std::string const& option, std::string const& text) {
    auto const bound = parseTimeBound(text);
    if (!bound) {
        refuse(option, text,
               "a time such as 2024-03-20T10:00:00.28+01:00, 10:00:00.28, 1710928800.28, +1.5s or "
               "-5s");
    }
    return *bound;
}

void addBound(CommandDefinition& command, std::string const& name, std::optional<TimeBound>& bound,
              std::string const& help) {
    command.parser
        ->add_option_function<std::string>(
            name, [&bound, name](std::string const& text) { bound = toTimeBound(name, text); },
            help)
        ->option_text("TIME")
        ->group(kWindowGroup);
}

}  // namespace

void addCriteriaOptions(CommandDefinition& command, StreamCriteria& criteria) {
    StreamCriteria& c = criteria;
    CLI::Option& protocol = *command.parser->add_option_function<std::string>(
        "--protocol",
        [&c](std::string const& name) {
            c.protocol = name == "goose" ? Protocol::goose : Protocol::sv;
        },
        "goose or sv");
    protocol.option_text("NAME")->group(kStreamsGroup);
    allowOnly(command, protocol, {"goose", "sv"});
    addRepeatable(command, "--source", c.sources, "MAC", "Source address", toAddress);
    addRepeatable(command, "--destination", c.destinations, "MAC", "Destination address",
                  toAddress);
    addNumbers(command, c);
    // Choices for completions; toLane refuses others.
    command.choices[&addRepeatable(command, "--hsr", c.hsrLanes, "LANE",
                                   "Direction in an HSR ring: A or B", toLane)] = {"A", "B"};
    command.choices[&addRepeatable(command, "--prp", c.prpLanes, "LAN", "PRP network: A or B",
                                   toLane)] = {"A", "B"};
    addNames(command, c);
    CLI::Option& simulation = *command.parser->add_option_function<std::string>(
        "--simulation-element",
        [&c](std::string const& answer) { c.simulationPresent = answer == "yes"; },
        "Whether frames carry the simulation element (GOOSE): yes or no");
    simulation.option_text("YES|NO")->group(kStreamsGroup);
    allowOnly(command, simulation, {"yes", "no"});
}

void WindowOptions::check() const {
    if (from && to && to->isSurelyBefore(*from)) {
        throw UsageError("--to lies before --from");
    }
}

TalIec61850Analysis::TimeWindow WindowOptions::resolve(CaptureSpan const& captures) const {
    TalIec61850Analysis::TimeWindow window;
    if (from) {
        window.from = from->resolve(captures);
    }
    if (to) {
        window.to = to->resolve(captures);
    }
    return window;
}

void addWindowOptions(CommandDefinition& command, WindowOptions& window) {
    addBound(command, "--from", window.from,
             "Begin of the window: date and time, time of day, seconds since 1970, +1.5s from "
             "the begin of the captures, -5s from their end");
    addBound(command, "--to", window.to, "End of the window, itself inside");
}

}  // namespace TalIec61850Tools
