#include "tools/render/StationCheckLayout.hpp"

#include <fmt/format.h>

#include <cstdint>
#include <string_view>
#include <utility>

#include "tools/output/DumpJson.hpp"
#include "tools/output/Style.hpp"
#include "tools/render/AddressText.hpp"
#include "tools/render/Cells.hpp"
#include "tools/render/DescribedMemberLayout.hpp"
#include "tools/render/EventRow.hpp"
#include "tools/selection/StationNames.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::PacketRef;
using TalIec61850Analysis::StreamKey;
using TalIec61850Analysis::StreamPart;
using TalIec61850Analysis::TrafficStream;
using TalIec61850Scl::ControlBlock;
using TalIec61850Scl::Difference;
using TalIec61850Scl::DifferenceKind;
using TalIec61850Scl::StationResult;

using Json = nlohmann::ordered_json;

namespace {

using Checked = StationCheckRow const&;

/// Where a packet is.
struct PacketPlace {
    std::string_view file;
    std::uint64_t position = 0;
};

std::optional<PacketPlace> shownPlace(Checked row, std::optional<PacketRef> const& packet) {
    if (!packet || row.stream() == nullptr) {
        return std::nullopt;
    }
    StreamPart const& part = row.stream()->parts[packet->part];
    return PacketPlace{.file = (*row.files)[part.file],
                       .position = part.packets.frameOffsets()[packet->packet] +
                                   part.packets.pduOffsets()[packet->packet]};
}

/// The packet of the line.
std::optional<PacketPlace> shownPlace(Checked row) {
    return shownPlace(
        row, row.difference ? row.row->differences[*row.difference].packet : row.row->packet);
}

Cell shownFileCell(Checked row) {
    auto const place = shownPlace(row);
    return place ? Cell(place->file) : Cell();
}

Cell shownPositionCell(Checked row) {
    auto const place = shownPlace(row);
    return place ? Cell(place->position) : Cell();
}

Cell shownLocatorCell(Checked row) {
    auto const place = shownPlace(row);
    return place ? Cell(fmt::format("{}@{}", place->file, place->position)) : Cell();
}

/// The name that the stream has, or should have.
template <Protocol protocol>
Cell streamNameCell(Checked row) {
    if (row.protocol() != protocol) {
        return {};
    }
    if (auto const* const stream = row.stream()) {
        return stream->key.name;
    }
    auto const* const block = row.block();
    if (block == nullptr) {
        return {};
    }
    return protocol == Protocol::goose ? block->reference : block->id;
}

Cell blockCell(Checked row) {
    auto const* const block = row.block();
    return block != nullptr ? Cell(block->reference) : Cell();
}

/// Of a stream that is not described, its own name.
Cell anyNameCell(Checked row) {
    auto const* const stream = row.stream();
    return row.block() == nullptr && stream != nullptr ? Cell(stream->key.name) : blockCell(row);
}

Json differenceJson(Checked row, Difference const& difference) {
    auto const described = row.described(difference);
    Json json = {{"what", toText(difference.kind)},
                 {"expected", expectedJson(described)},
                 {"found", foundJson(described)}};
    if (difference.kind == DifferenceKind::memberType) {
        auto const* const member = described.member();
        json["member"] = memberText(difference.member);
        json["name"] = member != nullptr ? Json(member->name) : Json();
    }
    auto const place = shownPlace(row, difference.packet);
    json["file"] = place ? Json(place->file) : Json();
    json["position"] = place ? Json(place->position) : Json();
    return json;
}

Cell differencesCell(Checked row, Format format) {
    if (format == Format::json) {
        Json list = Json::array();
        for (Difference const& difference : row.row->differences) {
            list.push_back(differenceJson(row, difference));
        }
        return JsonText{dumpJson(list)};
    }
    std::string text;
    for (Difference const& difference : row.row->differences) {
        text += (text.empty() ? "" : "; ") + differenceText(row.described(difference));
    }
    return text.empty() ? Cell() : Cell(std::move(text));
}

std::string undescribedText(StreamKey const& key) {
    std::string const to = key.destination ? fmt::format(" to {}", toText(*key.destination)) : "";
    return fmt::format("APPID {}{} is not described", appIdText(key.appId), to);
}

Cell resultTextCell(Checked row) {
    switch (row.row->result) {
        case StationResult::match:
            return std::string_view("as described");
        case StationResult::missing:
            return std::string_view("no packet came");
        case StationResult::unexpected:
            return row.stream() != nullptr ? Cell(undescribedText(row.stream()->key)) : Cell();
        case StationResult::differs:
            break;
    }
    return row.difference
               ? Cell(differenceText(row.described(row.row->differences[*row.difference])))
               : Cell();
}

Cell iedCell(Checked row) {
    auto const* const block = row.block();
    return block != nullptr ? Cell(block->ied) : Cell();
}

std::vector<Field<StationCheckRow>> stationCheckFields(Format format) {
    return {{"result", [](Checked r) -> Cell { return toText(r.row->result); }},
            {"ied", iedCell},
            {"controlBlock", blockCell},
            {"protocol", [](Checked r) -> Cell { return toText(r.protocol()); }},
            {"gocbRef", streamNameCell<Protocol::goose>},
            {"svID", streamNameCell<Protocol::sv>},
            {"differences", [format](Checked r) { return differencesCell(r, format); }},
            {"packets", [](Checked r) -> Cell { return r.row->packets; }},
            {"file", shownFileCell},
            {"position", shownPositionCell}};
}

}  // namespace

ControlBlock const* StationCheckRow::block() const {
    return row->controlBlock ? &station->controlBlocks[*row->controlBlock] : nullptr;
}

TrafficStream const* StationCheckRow::stream() const {
    return row->stream ? &index->streams()[*row->stream] : nullptr;
}

Protocol StationCheckRow::protocol() const {
    if (auto const* const known = block()) {
        return known->protocol;
    }
    auto const* const published = stream();
    return published != nullptr ? published->key.protocol : Protocol::goose;
}

DescribedDifference StationCheckRow::described(Difference const& each) const {
    bool const hasDataSet = block() != nullptr && block()->dataSet;
    return {.difference = &each,
            .protocol = protocol(),
            .dataSet = hasDataSet ? &station->dataSets[*block()->dataSet] : nullptr};
}

RowLayout<StationCheckRow> stationCheckLayout(Format format) {
    RowLayout<StationCheckRow> layout{.fields = stationCheckFields(format), .columns = {}};
    auto const column = [&](std::string_view field, Heading heading) {
        return columnOf(layout.fields, field, std::move(heading));
    };
    constexpr std::size_t kLeastName = 14;
    constexpr std::size_t kLeastText = 51;
    layout.columns = {
        column("result", {"RESULT", Align::left, {.rank = 0}, paintResult}),
        column("ied", {"IED", Align::left, fitName(5, kLeastName)}),
        {{"CONTROLBLOCK", Align::left, fitName(1, kLeastName)}, anyNameCell},
        {{"TEXT", Align::left, {.rank = 2, .least = kLeastText, .wraps = true}}, resultTextCell},
        column("packets", {"PACKETS", Align::right, {.rank = 4}}),
        {{"FILE@POSITION", Align::left, fitFile(3)}, shownLocatorCell},
    };
    return layout;
}

}  // namespace TalIec61850Tools
