#include "analysis/events/EventsIn.hpp"

#include <TalIec61850Analysis/redundancy/AlignClocks.hpp>
#include <cstddef>
#include <variant>

#include "support/TempFile.hpp"

namespace TalTest {
namespace {

using namespace TalIec61850Analysis;

std::string hexLine(OctetString const& octets) {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string text = "x";
    for (std::uint8_t const octet : octets) {
        text += kDigits[octet >> 4U];
        text += kDigits[octet & 15U];
    }
    return text;
}

struct ValueLine {
    std::string operator()(OctetString const& octets) const { return hexLine(octets); }
    std::string operator()(bool value) const { return value ? "true" : "false"; }
    std::string operator()(BitString const& bits) const { return hexLine(bits.octets); }
    std::string operator()(std::string const& text) const { return text; }
    std::string operator()(UtcTime const& time) const {
        return "t" + std::to_string(time.seconds - FaultyStation::kStart);
    }
    std::string operator()(DataValue::Members const& members) const {
        return "{" + std::to_string(members.size()) + "}";
    }
    std::string operator()(BinaryTime const& time) const {
        return std::to_string(time.milliseconds);
    }
    std::string operator()(ObjectId const& id) const { return std::to_string(id.arcs.size()); }
    std::string operator()(auto number) const { return std::to_string(number); }
};

std::string valueLine(DataValue const& value) { return std::visit(ValueLine{}, value.value); }

std::string eventLine(GooseEvent const& event, FaultyStation const& station) {
    StationFrame const* const at = station.frameAt(event.place.file, event.place.fileOffset);
    StationFrame const* const before = station.frameAt(event.before.file, event.before.fileOffset);
    if (at == nullptr || before == nullptr) {
        return "no such frame";
    }
    std::string line = station.name(at->stream) + " #" + std::to_string(at->number) + " " +
                       std::to_string(event.previousStNum) + "->" + std::to_string(event.stNum);
    line += event.isRestart ? " restart" : "";
    line += event.arrival == FaultyStation::timeOf(*at) ? "" : " !time";
    line += " after #" + std::to_string(before->number) + ":";
    line += event.data == EventData::cut ? " cut" : "";
    line += event.data == EventData::absent ? " absent" : "";
    line += event.data == EventData::otherMake ? " all" : "";
    return line + changesLine(event.changes);
}

}  // namespace

std::string changesLine(std::vector<MemberChange> const& changes) {
    std::string line;
    for (MemberChange const& change : changes) {
        std::string path;
        for (std::uint32_t const index : change.member) {
            path += (path.empty() ? "" : ".") + std::to_string(index);
        }
        line += " " + path + " " + (change.from ? valueLine(*change.from) : "none") + "->" +
                valueLine(change.to);
    }
    return line;
}

std::vector<GooseEvent> eventsIn(std::vector<Bytes> const& captures, EventOptions const& options) {
    TempDir const directory;
    std::vector<std::string> paths;
    for (Bytes const& capture : captures) {
        paths.push_back(
            directory.write("capture" + std::to_string(paths.size()) + ".pcap", capture));
    }
    TrafficIndex index = indexCaptures(paths);
    alignClocks(index);
    std::vector<GooseEvent> events;
    findEvents(index, options, [&](GooseEvent const& event) { events.push_back(event); });
    return events;
}

std::vector<std::string> eventLines(std::vector<Bytes> const& captures,
                                    FaultyStation const& station, EventOptions const& options) {
    std::vector<std::string> lines;
    for (GooseEvent const& event : eventsIn(captures, options)) {
        lines.push_back(eventLine(event, station));
    }
    return lines;
}

std::vector<std::string> eventLines(FaultyStation& station, EventOptions const& options) {
    auto const captures = station.captures();
    return eventLines(captures, station, options);
}

}  // namespace TalTest
