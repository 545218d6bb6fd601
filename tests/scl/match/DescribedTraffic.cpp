#include "scl/match/DescribedTraffic.hpp"

#include <algorithm>
#include <sstream>
#include <utility>

#include "support/CaptureFile.hpp"
#include "support/Data.hpp"
#include "support/TempFile.hpp"

namespace TalTest {

using namespace TalIec61850Scl;
using TalIec61850Analysis::DataKind;
using TalIec61850Analysis::MacAddress;
using TalIec61850Analysis::StreamProtocol;
using TalIec61850Analysis::TrafficIndex;

namespace {

constexpr std::int64_t kNsPerSecond = 1'000'000'000;

char const* wordOf(StationResult result) {
    switch (result) {
        case StationResult::match:
            return "match";
        case StationResult::missing:
            return "missing";
        case StationResult::differs:
            return "differs";
        default:
            return "unexpected";
    }
}

char const* wordOf(DifferenceKind kind) {
    static constexpr char const* kWords[] = {"mac",     "appId",       "vlanId",     "vlanPriority",
                                             "gocbRef", "goID",        "svID",       "datSet",
                                             "confRev", "memberCount", "memberType", "smpRate",
                                             "noASDU",  "options",     "maxTime"};
    return kWords[static_cast<std::size_t>(kind)];
}

std::string textOf(SmvOptions const& options) {
    std::string text = "{";
    auto const add = [&](bool is, char const* name) { text += is ? name : ""; };
    add(options.refreshTime, " refrTm");
    add(options.sampleSynchronized, " smpSynch");
    add(options.sampleRate, " smpRate");
    add(options.dataSet, " datSet");
    add(options.security, " security");
    add(options.timestamp, " timestamp");
    add(options.synchSourceId, " gmIdentity");
    return text + " }";
}

std::string textOf(MacAddress const& mac) {
    std::string text;
    for (std::uint8_t const octet : mac) {
        text += "0123456789abcdef"[octet >> 4U];
        text += "0123456789abcdef"[octet & 15U];
    }
    return text;
}

std::string textOf(DifferenceValue const& value) {
    std::ostringstream text;
    std::visit(
        [&](auto const& held) {
            using Held = std::decay_t<decltype(held)>;
            if constexpr (std::is_same_v<Held, std::monostate>) {
                text << "none";
            } else if constexpr (std::is_same_v<Held, BasicType>) {
                text << "type" << static_cast<int>(held);
            } else if constexpr (std::is_same_v<Held, DataKind>) {
                text << "kind" << static_cast<int>(held);
            } else if constexpr (std::is_same_v<Held, MacAddress> ||
                                 std::is_same_v<Held, SmvOptions>) {
                text << textOf(held);
            } else {
                text << held;
            }
        },
        value);
    return text.str();
}

std::string textOf(Difference const& difference) {
    std::string text = wordOf(difference.kind);
    for (std::size_t i = 0; i < difference.member.size(); ++i) {
        text += (i == 0 ? " [" : ".") + std::to_string(difference.member[i]);
    }
    text += difference.member.empty() ? "" : "]";
    text += " " + textOf(difference.expected) + " != " + textOf(difference.found);
    if (difference.packet) {
        text += " @" + std::to_string(difference.packet->part) + "." +
                std::to_string(difference.packet->packet);
    }
    return text;
}

MacAddress macOf(std::string_view text) {
    MacAddress mac{};
    Bytes const octets = macAddress(text);
    std::copy_n(octets.begin(), mac.size(), mac.begin());
    return mac;
}

}  // namespace

DataSetMember memberOf(std::vector<std::uint32_t> path, BasicType type, std::string name) {
    DataSetMember member;
    member.path = std::move(path);
    member.type = type;
    member.name = std::move(name);
    return member;
}

StationDescription describedGoose() {
    StationDescription station;
    station.ieds = {"RELAY1"};
    DataSet values;
    values.ied = "RELAY1";
    values.reference = "RELAY1LD0/LLN0$dataSet1";
    values.entries = 4;
    values.members = {memberOf({0}, BasicType::boolean, "LD0/PTRC1.Tr.general"),
                      memberOf({1}, BasicType::quality, "LD0/PTRC1.Tr.q"),
                      memberOf({2, 0}, BasicType::int32, "LD0/GGIO1.IntIn1.stVal"),
                      memberOf({2, 1}, BasicType::dbpos, "LD0/XCBR1.Pos.stVal"),
                      memberOf({2, 2}, BasicType::timestamp, "LD0/XCBR1.Pos.t"),
                      memberOf({3}, BasicType::float32, "LD0/MMXU1.TotW.mag.f")};
    station.dataSets = {values};
    ControlBlock block;
    block.protocol = StreamProtocol::goose;
    block.ied = "RELAY1";
    block.ldInst = "LD0";
    block.name = "gcb1";
    block.reference = "RELAY1LD0/LLN0$GO$gcb1";
    block.id = "RELAY1_gcb1";
    block.dataSetReference = values.reference;
    block.dataSet = 0;
    block.confRev = 1;
    block.address = {.mac = macOf("01:0c:cd:01:00:01"),
                     .appId = 1,
                     .vlanId = 5,
                     .vlanPriority = 4,
                     .minTime = 4'000'000,
                     .maxTime = kDescribedInterval};
    station.controlBlocks = {block};
    return station;
}

StationDescription describedSv() {
    StationDescription station;
    station.ieds = {"MU1"};
    DataSet values;
    values.ied = "MU1";
    values.reference = "MU1LD0/LLN0$PhsMeas1";
    values.entries = 4;
    for (std::uint32_t channel = 0; channel < 4; ++channel) {
        values.members.push_back(memberOf({channel, 0, 0}, BasicType::int32));
        values.members.push_back(memberOf({channel, 1}, BasicType::quality));
    }
    station.dataSets = {values};
    ControlBlock block;
    block.protocol = StreamProtocol::sv;
    block.ied = "MU1";
    block.ldInst = "LD0";
    block.name = "msvcb1";
    block.reference = "MU1LD0/LLN0$MS$msvcb1";
    block.id = "MU01";
    block.dataSetReference = values.reference;
    block.dataSet = 0;
    block.confRev = 1;
    block.address = {.mac = macOf("01:0c:cd:04:00:01"),
                     .appId = 0x4000,
                     .vlanId = 5,
                     .vlanPriority = 4,
                     .minTime = {},
                     .maxTime = {}};
    block.smpRate = 80;
    block.nofASDU = 1;
    block.options = SmvOptions();
    block.options->sampleSynchronized = true;
    station.controlBlocks = {block};
    return station;
}

std::vector<Bytes> describedValues() {
    return {dataBoolean(false), dataQuality(),
            dataStructure({dataInteger(7), dataBitString({0x80}, 6), dataUtcTime(kDescribedStart)}),
            dataFloat(1.5F)};
}

std::vector<DescribedFrame> gooseFrames(std::size_t count, GooseChange const& change) {
    std::vector<DescribedFrame> frames;
    for (std::size_t number = 0; number < count; ++number) {
        Ethernet ethernet = Ethernet().withVlan(5);
        GooseMessage message;
        message.sqNum = number;
        message.setData(describedValues());
        if (change) {
            change(number, ethernet, message);
        }
        frames.push_back({.time = static_cast<std::int64_t>(number) * kDescribedInterval,
                          .octets = gooseFrame(ethernet, message)});
    }
    return frames;
}

std::vector<DescribedFrame> svFrames(std::size_t count, SvChange const& change) {
    constexpr std::size_t kPerSecond = 4000;
    constexpr std::size_t kSize = 32;
    std::vector<DescribedFrame> frames;
    for (std::size_t number = 0; number < count; ++number) {
        Ethernet ethernet = svEthernet().to("01:0c:cd:04:00:01").withVlan(5);
        SvMessage message;
        message.asdus.front().smpCnt = number % kPerSecond;
        message.asdus.front().seqData = Bytes(kSize);
        if (change) {
            change(number, ethernet, message);
        }
        frames.push_back({.time = static_cast<std::int64_t>(number) * kDescribedSampleInterval,
                          .octets = svFrame(ethernet, message)});
    }
    return frames;
}

Bytes captureOf(std::vector<DescribedFrame> frames) {
    std::stable_sort(frames.begin(), frames.end(),
                     [](auto const& a, auto const& b) { return a.time < b.time; });
    CaptureBuilder capture(CaptureVariant::nanoLittle);
    for (DescribedFrame const& frame : frames) {
        auto const seconds = static_cast<std::uint32_t>(frame.time / kNsPerSecond);
        auto const rest = static_cast<std::uint32_t>(frame.time % kNsPerSecond);
        if (frame.snappedTo != 0) {
            capture.addSnapped(kDescribedStart + seconds, rest,
                               static_cast<std::uint32_t>(frame.snappedTo), frame.octets);
        } else {
            capture.add(kDescribedStart + seconds, rest, frame.octets);
        }
    }
    return capture.bytes();
}

CheckedStation::CheckedStation(StationDescription station,
                               std::vector<std::vector<DescribedFrame>> const& files,
                               StationCheckOptions const& options)
    : station_(std::move(station)) {
    TempDir const folder;
    std::vector<std::string> paths;
    for (auto const& frames : files) {
        paths.push_back(
            folder.write("file" + std::to_string(paths.size()) + ".pcap", captureOf(frames)));
    }
    index_ = TalIec61850Analysis::indexCaptures(paths);
    rows_ = checkStation(index_, station_, options);
}

SclLines CheckedStation::lines() const {
    SclLines lines;
    for (StationRow const& row : rows_) {
        std::string line = wordOf(row.result);
        line += " " + (row.controlBlock ? station_.controlBlocks[*row.controlBlock].reference
                                        : index_.streams()[row.stream.value()].key.name);
        line += row.stream && row.by == MatchedBy::address ? " by address" : "";
        std::string before = ": ";
        for (Difference const& difference : row.differences) {
            line += before + textOf(difference);
            before = ", ";
        }
        lines.push_back(line);
    }
    return lines;
}

SclLines checkLines(StationDescription const& station, std::vector<DescribedFrame> const& frames) {
    return CheckedStation(station, {frames}).lines();
}

std::vector<DescribedFrame> together(std::vector<DescribedFrame> frames,
                                     std::vector<DescribedFrame> const& more) {
    frames.insert(frames.end(), more.begin(), more.end());
    return frames;
}

StationDescription together(StationDescription station, StationDescription const& more) {
    for (ControlBlock block : more.controlBlocks) {
        if (block.dataSet) {
            *block.dataSet += station.dataSets.size();
        }
        station.controlBlocks.push_back(block);
    }
    station.dataSets.insert(station.dataSets.end(), more.dataSets.begin(), more.dataSets.end());
    return station;
}

}  // namespace TalTest
