#include "tools/commands/ShownPacketLayout.hpp"

#include "tools/output/DumpJson.hpp"
#include "tools/render/PacketJson.hpp"
#include "tools/render/StreamFields.hpp"

namespace TalIec61850Tools {

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
         {"goose",
          [](Shown p) { return p.goose ? Cell(JsonText{dumpJson(toJson(*p.goose))}) : Cell(); }},
         {"sv", [](Shown p) { return p.sv ? Cell(JsonText{dumpJson(toJson(*p.sv))}) : Cell(); }}});
    return layout;
}

}  // namespace TalIec61850Tools
