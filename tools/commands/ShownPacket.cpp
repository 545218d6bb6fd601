#include "tools/commands/ShownPacket.hpp"

#include "tools/output/DumpJson.hpp"
#include "tools/render/Cells.hpp"
#include "tools/render/PacketJson.hpp"
#include "tools/render/PacketLayout.hpp"
#include "tools/selection/FrameReader.hpp"

namespace TalIec61850Tools {

using namespace TalIec61850Analysis;

std::optional<ShownPacket> showFrame(RecordView const& view, std::string_view file) {
    CaptureRecord const& record = view.record;
    FrameOrigin const origin = originOf(record);
    FrameHeader const header = readFrameHeader(view.frame, origin);
    ShownPacket shown{.record = record, .file = file, .position = {}, .goose = {}, .sv = {}};
    if (header.isGoose()) {
        GooseView const goose = viewGoose(view.frame, origin);
        if (goose.pdu) {
            shown.position = record.frameOffset + goose.pduOffset;
        }
        shown.goose = toOwned(goose);
    } else if (header.isSv()) {
        SvView const sv = viewSv(view.frame, origin);
        if (sv.sequence) {
            shown.position = record.frameOffset + sv.asdusOffset;
        }
        shown.sv = toOwned(sv);
    } else {
        return std::nullopt;
    }
    return shown;
}

RowLayout<ShownPacket> shownPacketLayout() {
    using Shown = ShownPacket const&;
    RowLayout<ShownPacket> layout;
    layout.fields = {
        {"time", [](Shown p) { return timeCell(p.record.time); }},
        {"timeNs", [](Shown p) { return timeNsCell(p.record.time); }},
        {"file", [](Shown p) -> Cell { return p.file; }},
        {"position", [](Shown p) -> Cell { return p.position; }},
        {"framePosition", [](Shown p) -> Cell { return p.record.frameOffset; }},
        {"recordPosition", [](Shown p) -> Cell { return p.record.fileOffset; }},
        {"place", [](Shown p) -> Cell { return toText(p.place); }},
        {"capturedOctets", [](Shown p) -> Cell { return p.record.capturedSize; }},
        {"wireOctets", [](Shown p) -> Cell { return p.record.originalSize; }},
        {"protocol", [](Shown p) -> Cell { return toText(p.protocol()); }},
        {"goose",
         [](Shown p) { return p.goose ? Cell(JsonText{dumpJson(toJson(*p.goose))}) : Cell(); }},
        {"sv", [](Shown p) {
             return p.sv ? Cell(JsonText{dumpJson(toJson(*p.sv, p.layouts))}) : Cell();
         }}};
    return layout;
}

}  // namespace TalIec61850Tools
