#include "tools/commands/ShownPacket.hpp"

#include <utility>

#include "tools/output/DumpJson.hpp"
#include "tools/render/Cells.hpp"
#include "tools/render/PacketJson.hpp"
#include "tools/render/PacketLayout.hpp"
#include "tools/selection/FrameReader.hpp"

namespace TalIec61850Tools {

using namespace TalIec61850Analysis;

namespace {

/// The stream of a message, or of an ASDU, that is read without an index.
StreamKey keyOf(Protocol protocol, FrameHeader const& header, std::string name) {
    StreamKey key{.protocol = protocol,
                  .source = header.source,
                  .destination = header.destination,
                  .vlans = {},
                  .appId = header.appId.value_or(0),
                  .name = std::move(name)};
    for (VlanTag const& tag : header.vlanTags) {
        key.vlans.push_back({.tpid = tag.tpid, .id = tag.id});
    }
    return key;
}

}  // namespace

std::optional<ShownPacket> showFrame(RecordView const& view, std::string_view file,
                                     StreamNames& names) {
    CaptureRecord const& record = view.record;
    FrameOrigin const origin = originOf(record);
    FrameHeader const header = readFrameHeader(view.frame, origin);
    ShownPacket shown{.record = record, .file = file, .position = {}, .goose = {}, .sv = {}};
    shown.isNamed = names.areGiven();
    if (header.isGoose()) {
        GooseView const goose = viewGoose(view.frame, origin);
        if (goose.pdu) {
            shown.position = record.frameOffset + goose.pduOffset;
        }
        if (shown.isNamed && goose.allData) {
            shown.names = names.namesOf(
                keyOf(Protocol::goose, header, std::string(goose.gocbRef.value_or(""))),
                *goose.allData,
                {.file = file, .position = shown.position.value_or(record.frameOffset)});
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

void describeAsdus(ShownPacket& shown, StreamNames& names) {
    if (!shown.sv || !shown.isNamed) {
        return;
    }
    NamedPlace const place{.file = shown.file,
                           .position = shown.position.value_or(shown.record.frameOffset)};
    shown.meanings.resize(shown.sv->asdus.size());
    for (std::size_t i = 0; i < shown.sv->asdus.size() && i < shown.layouts.size(); ++i) {
        AsduContent const& asdu = shown.sv->asdus[i];
        if (!asdu.seqData) {
            continue;
        }
        DescribedSamples const* const samples = names.samplesOf(
            keyOf(Protocol::sv, shown.sv->header, asdu.svID.value_or("")),
            {.dataSize = octetsOf(*asdu.seqData).size(), .found = shown.layouts[i]}, place);
        if (samples != nullptr) {
            shown.layouts[i] = {.layout = samples->layout, .source = LayoutSource::given};
            shown.meanings[i] = &samples->channels;
        }
    }
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
         [](Shown p) {
             return p.goose
                        ? Cell(JsonText{dumpJson(toJson(*p.goose, p.isNamed ? &p.names : nullptr))})
                        : Cell();
         }},
        {"sv", [](Shown p) {
             return p.sv ? Cell(JsonText{dumpJson(toJson(*p.sv, p.layouts, p.meanings))}) : Cell();
         }}};
    return layout;
}

}  // namespace TalIec61850Tools
