#include "tools/render/CaptureLayout.hpp"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <TalIec61850Analysis/packet/FrameHeader.hpp>
#include <algorithm>
#include <set>
#include <utility>
#include <vector>

#include "tools/output/DumpJson.hpp"
#include "tools/render/CaptureText.hpp"
#include "tools/render/Cells.hpp"
#include "tools/render/OtherProtocols.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::CaptureFormat;
using TalIec61850Analysis::CaptureInterface;
using TalIec61850Analysis::CaptureSummary;

namespace {

/// Whether a second can be counted in 64 bits; the records of others have no time.
bool hasUsableUnit(CaptureInterface const& interface) {
    return interface.unitExponent <= (interface.isBinaryUnit ? 63 : 19);
}

/// How often a second is divided by two.
double fineness(CaptureInterface const& interface) {
    constexpr double halvingsOfTenth = 3.321928094887362;
    return interface.unitExponent * (interface.isBinaryUnit ? 1 : halvingsOfTenth);
}

std::string unitText(CaptureInterface const& interface) {
    if (interface.isBinaryUnit && interface.unitExponent != 0) {
        return fmt::format("2^-{}s", interface.unitExponent);
    }
    switch (interface.unitExponent) {
        case 0:
            return "s";
        case 3:
            return "ms";
        case 6:
            return "us";
        case 9:
            return "ns";
        case 12:
            return "ps";
        default:
            return fmt::format("1e-{}s", interface.unitExponent);
    }
}

std::string_view formatText(CaptureFormat format) {
    return format == CaptureFormat::classic ? "pcap" : "pcapng";
}

/// Those of the records, and those of interfaces without any.
std::set<std::uint16_t> linkTypesOf(CaptureSummary const& summary) {
    std::set<std::uint16_t> types;
    for (auto const& [type, frames] : summary.linkTypes) {
        types.insert(type);
    }
    for (CaptureInterface const& interface : summary.interfaces) {
        types.insert(interface.linkType);
    }
    return types;
}

std::string linkTypeName(std::uint16_t type) {
    switch (type) {
        case TalIec61850Analysis::kLinkTypeEthernet:
            return "Ethernet";
        case TalIec61850Analysis::kLinkTypeCooked:
            return "Linux cooked";
        case TalIec61850Analysis::kLinkTypeCooked2:
            return "Linux cooked 2";
        default:
            return std::to_string(type);
    }
}

Cell linkTypesField(CaptureRow const& row) {
    return JsonText{dumpJson(nlohmann::json(linkTypesOf(*row.summary)))};
}

Cell linkCell(CaptureRow const& row) {
    std::vector<std::string> names;
    for (std::uint16_t const type : linkTypesOf(*row.summary)) {
        names.push_back(linkTypeName(type));
    }
    return names.empty() ? Cell() : Cell(fmt::format("{}", fmt::join(names, ", ")));
}

Cell otherField(CaptureRow const& row) {
    auto counts = nlohmann::ordered_json::object();
    for (ProtocolCount const& count : otherProtocols(*row.summary)) {
        counts[count.protocol] = count.frames;
    }
    return JsonText{dumpJson(counts)};
}

Cell otherCell(CaptureRow const& row) {
    std::vector<std::string> texts;
    for (ProtocolCount const& count : otherProtocols(*row.summary)) {
        texts.push_back(fmt::format("{} {}", count.protocol, count.frames));
    }
    return texts.empty() ? Cell() : Cell(fmt::format("{}", fmt::join(texts, ", ")));
}

/// What the operating system refused is told before damage.
Cell damageField(CaptureRow const& row) {
    CaptureSummary const& summary = *row.summary;
    if (summary.error) {
        return faultText(summary.error);
    }
    if (summary.damages.empty()) {
        return {};
    }
    auto const more = moreDamageText(summary, 1);
    return damageText(summary.damages.front()) + (more ? ", " + *more : "");
}

/// Nothing for none, so that a terminal has the column where there is something in it.
Cell trailersCell(CaptureRow const& row) {
    std::uint64_t const trailers = row.summary->unknownTrailers;
    return trailers == 0 ? Cell() : Cell(trailers);
}

std::vector<Column<CaptureRow>> captureColumns(std::vector<Field<CaptureRow>> const& fields) {
    // To the second: which file is meant matters more than when exactly it starts.
    auto const fitSeconds = [](std::size_t rank) {
        return Fit{.rank = rank, .least = 20, .cut = Cut::end};
    };
    constexpr Fit fitPath{.rank = 0, .least = 20, .cut = Cut::start};
    constexpr Fit fitOther{.rank = 5, .least = 10, .cut = Cut::end};
    constexpr Fit fitDamage{.rank = 7, .least = 12, .cut = Cut::end};
    auto const column = [&](std::string_view field, Heading heading) {
        return columnOf(fields, field, std::move(heading));
    };
    return {
        column("file", {"FILE", Align::left, fitPath}),
        column("format", {"FORMAT", Align::left, {.rank = 10}}),
        column("precision", {"PRECISION", Align::left, {.rank = 11}}),
        {{"LINK", Align::left, {.rank = 12}}, linkCell, "linkTypes"},
        column("records", {"RECORDS", Align::right, {.rank = 1}}),
        column("octets", {"OCTETS", Align::right, {.rank = 13}}),
        {{"FIRST", Align::left, fitSeconds(4)},
         [](CaptureRow const& r) { return timeCell(r.summary->first); }},
        {{"LAST", Align::left, fitSeconds(6)},
         [](CaptureRow const& r) { return timeCell(r.summary->last); }},
        column("goose", {"GOOSE", Align::right, {.rank = 2}}),
        column("sv", {"SV", Align::right, {.rank = 3}}),
        {{"OTHER", Align::left, fitOther}, otherCell, "other"},
        column("dropped", {"DROPPED", Align::right, {.rank = 8}}),
        column("damage", {"DAMAGE", Align::left, fitDamage}),
        {{"TRAILERS", Align::right, {.rank = 9}}, trailersCell, "unknownTrailers"},
    };
}

}  // namespace

std::optional<std::string> precisionText(CaptureSummary const& summary) {
    CaptureInterface const* finest = nullptr;
    for (CaptureInterface const& interface : summary.interfaces) {
        if (hasUsableUnit(interface) &&
            (finest == nullptr || fineness(interface) > fineness(*finest))) {
            finest = &interface;
        }
    }
    return finest == nullptr ? std::nullopt : std::optional(unitText(*finest));
}

std::optional<std::uint64_t> droppedPackets(CaptureSummary const& summary) {
    std::optional<std::uint64_t> byInterfaces;
    for (CaptureInterface const& interface : summary.interfaces) {
        for (auto const& count : {interface.dropped, interface.droppedBySystem}) {
            if (count) {
                byInterfaces = byInterfaces.value_or(0) + *count;
            }
        }
    }
    return std::max(byInterfaces, summary.dropped);
}

RowLayout<CaptureRow> captureLayout() {
    RowLayout<CaptureRow> layout;
    layout.fields = {
        {"file", [](CaptureRow const& r) -> Cell { return r.file; }},
        {"format", [](CaptureRow const& r) -> Cell { return formatText(r.summary->format); }},
        {"precision", [](CaptureRow const& r) -> Cell { return precisionText(*r.summary); }},
        {"linkTypes", linkTypesField},
        {"records", [](CaptureRow const& r) -> Cell { return r.summary->records; }},
        {"octets", [](CaptureRow const& r) -> Cell { return r.summary->fileSize; }},
        {"firstTimeNs", [](CaptureRow const& r) { return timeNsCell(r.summary->first); }},
        {"lastTimeNs", [](CaptureRow const& r) { return timeNsCell(r.summary->last); }},
        {"goose", [](CaptureRow const& r) -> Cell { return r.summary->gooseFrames; }},
        {"sv", [](CaptureRow const& r) -> Cell { return r.summary->svFrames; }},
        {"other", otherField},
        {"dropped", [](CaptureRow const& r) -> Cell { return droppedPackets(*r.summary); }},
        {"damage", damageField},
        {"unknownTrailers",
         [](CaptureRow const& r) -> Cell { return r.summary->unknownTrailers; }}};
    layout.columns = captureColumns(layout.fields);
    return layout;
}

}  // namespace TalIec61850Tools
