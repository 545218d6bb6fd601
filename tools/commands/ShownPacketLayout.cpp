#include "tools/commands/ShownPacketLayout.hpp"

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
        {{"recordPosition", [](Shown p) { return p.record.fileOffset; }},
         {"capturedOctets", [](Shown p) { return p.record.capturedSize; }},
         {"wireOctets", [](Shown p) { return p.record.originalSize; }},
         {"protocol", [](Shown p) { return toText(p.row.stream.protocol); }},
         {"goose", [](Shown p) { return p.goose ? toJson(*p.goose) : Fields(nullptr); }},
         {"sv", [](Shown p) { return p.sv ? toJson(*p.sv) : Fields(nullptr); }}});
    return layout;
}

}  // namespace TalIec61850Tools
