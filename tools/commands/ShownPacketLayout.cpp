#include "tools/commands/ShownPacketLayout.hpp"

#include <nlohmann/json.hpp>

#include "tools/render/PacketJson.hpp"
#include "tools/render/StreamFields.hpp"

namespace TalIec61850Tools {

namespace {

template <typename Packet>
JsonText toJsonText(Packet const& packet) {
    constexpr int onOneLine = -1;
    constexpr bool asAscii = true;
    return {toJson(packet).dump(onOneLine, ' ', asAscii,
                                nlohmann::ordered_json::error_handler_t::replace)};
}

}  // namespace

RowLayout<ShownPacket> shownPacketLayout() {
    using Shown = ShownPacket const&;
    RowLayout<ShownPacket> layout;
    appendFields<ShownPacket, PacketRow>(layout.fields, packetFields(),
                                         [](Shown p) -> PacketRow const& { return p.row; });
    layout.fields.insert(
        layout.fields.end(),
        {{"recordPosition", [](Shown p) -> Cell { return p.record.fileOffset; }},
         {"capturedOctets", [](Shown p) -> Cell { return p.record.capturedSize; }},
         {"wireOctets", [](Shown p) -> Cell { return p.record.originalSize; }},
         {"protocol", [](Shown p) -> Cell { return toText(p.row.stream->protocol); }},
         {"goose", [](Shown p) { return p.goose ? Cell(toJsonText(*p.goose)) : Cell(); }},
         {"sv", [](Shown p) { return p.sv ? Cell(toJsonText(*p.sv)) : Cell(); }}});
    return layout;
}

}  // namespace TalIec61850Tools
