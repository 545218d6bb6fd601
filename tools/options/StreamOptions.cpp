#include "tools/options/StreamOptions.hpp"

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include "tools/options/RepeatableOption.hpp"

namespace TalIec61850Tools {

namespace {

using Text = std::string const&;

/// Hexadecimal, with or without 0x, as APPIDs are written everywhere.
std::uint16_t toAppId(Text option, Text text) {
    auto const number = readNumber(text, 16, 0xFFFF);
    if (!number) {
        refuseValue(option, text, "a hexadecimal number from 0 to FFFF");
    }
    return static_cast<std::uint16_t>(*number);
}

/// Six pairs of hexadecimal digits, colons or dashes between them.
MacAddress toAddress(Text option, Text text) {
    constexpr std::size_t textSize = 17;
    MacAddress address{};
    bool isAddress = text.size() == textSize;
    for (std::size_t i = 0; isAddress && i < address.size(); ++i) {
        std::string const pair = text.substr(3 * i, 2);
        bool const isDigits = pair.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
        char const separator = i == 0 ? ':' : text[3 * i - 1];
        isAddress = isDigits && (separator == ':' || separator == '-');
        if (isAddress) {
            address[i] = static_cast<std::uint8_t>(*readNumber(pair, 16, 0xFF));
        }
    }
    if (!isAddress) {
        refuseValue(option, text, "an address such as 01:0c:cd:01:00:01");
    }
    return address;
}

char toLane(Text option, Text text) {
    if (text == "A" || text == "a" || text == "B" || text == "b") {
        return text == "A" || text == "a" ? 'A' : 'B';
    }
    refuseValue(option, text, "A or B");
}

/// N, or FIRST-LAST.
NumberRange toRange(Text option, Text text) {
    constexpr auto max = std::numeric_limits<std::uint32_t>::max();
    auto const dash = text.find('-');
    std::string const first = text.substr(0, dash);
    std::string const last = dash == std::string::npos ? first : text.substr(dash + 1);
    bool const areThere = !first.empty() && !last.empty();
    NumberRange range;
    if (areThere) {
        range.first = numberValue(option, first, max);
        range.last = numberValue(option, last, max);
    }
    if (!areThere || range.last < range.first) {
        refuseValue(option, text, "a number or a range such as 7-9");
    }
    return range;
}

void addLane(CommandDefinition& command, Text name, std::vector<char>& lanes, Text help) {
    // Choices for completions; toLane refuses others.
    command.choices[&addRepeatable(command, name, lanes, "A|B", help, toLane)] = {"A", "B"};
}

void addNames(CommandDefinition& command, StreamCriteria& c) {
    auto const asItIs = [](Text, Text text) { return text; };
    addRepeatable(command, "--svid", c.svIDs, "NAME", "svID (SV); * is any text, ? any character",
                  asItIs);
    addRepeatable(command, "--gocbref", c.gocbRefs, "NAME", "gocbRef (GOOSE), likewise", asItIs);
    addRepeatable(command, "--datset", c.datSets, "NAME", "datSet, likewise", asItIs);
    addRepeatable(command, "--goid", c.goIDs, "NAME", "goID (GOOSE), likewise", asItIs);
}

void addProtocol(CommandDefinition& command, StreamCriteria& c) {
    CLI::Option& protocol = *command.parser->add_option_function<std::string>(
        "--protocol",
        [&c](Text name) { c.protocol = name == "goose" ? Protocol::goose : Protocol::sv; },
        "goose or sv");
    protocol.option_text("NAME")->group(kStreamsGroup);
    allowOnly(command, protocol, {"goose", "sv"});
}

/// What a description says as well as frames do.
void addDescribed(CommandDefinition& command, StreamCriteria& c) {
    addRepeatable(command, "--destination", c.destinations, "MAC", "Destination address",
                  toAddress);
    addRepeatable(command, "--vlan", c.vlanIds, "ID", "VLAN identifier",
                  [](Text option, Text text) {
                      return static_cast<std::uint16_t>(numberValue(option, text, 0xFFF));
                  });
    addRepeatable(command, "--appid", c.appIds, "HEX", "APPID, such as 4000 or 0x4000: hexadecimal",
                  toAppId);
    addRepeatable(command, "--confrev", c.confRevs, "N", "confRev", [](Text option, Text text) {
        return numberValue(option, text, std::numeric_limits<std::uint64_t>::max());
    });
    addNames(command, c);
}

}  // namespace

void addContentOptions(CommandDefinition& command, StreamCriteria& criteria) {
    addProtocol(command, criteria);
    addRepeatable(command, "--source", criteria.sources, "MAC", "Source address", toAddress);
    addDescribed(command, criteria);
}

void addDescribedOptions(CommandDefinition& command, StreamCriteria& criteria) {
    addProtocol(command, criteria);
    addDescribed(command, criteria);
}

void addStreamOptions(CommandDefinition& command, StreamCriteria& criteria) {
    addContentOptions(command, criteria);
    addLane(command, "--hsr", criteria.hsrLanes, "Direction in an HSR ring: A or B");
    addLane(command, "--prp", criteria.prpLanes, "PRP network: A or B");
}

void addWireOptions(CommandDefinition& command, PacketCriteria& criteria) {
    addStreamOptions(command, criteria);
    addLane(command, "--lan", criteria.lanes, "Lane of HSR or LAN of PRP: A or B");
    addYesOrNo(command, "--simulated", criteria.simulated,
               "Whether packets say that they are simulated: yes or no");
}

void addCounterOptions(CommandDefinition& command, PacketCriteria& criteria) {
    addRepeatable(command, "--stnum", criteria.stNums, "N", "stNum (GOOSE), such as 7 or 7-9",
                  toRange);
    addRepeatable(command, "--sqnum", criteria.sqNums, "N", "sqNum (GOOSE), likewise", toRange);
    addRepeatable(command, "--smpcnt", criteria.smpCnts, "N", "smpCnt (SV), likewise", toRange);
}

}  // namespace TalIec61850Tools
