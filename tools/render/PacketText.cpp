#include "tools/render/PacketText.hpp"

#include <fmt/format.h>

#include "tools/output/TextEscape.hpp"
#include "tools/render/DataText.hpp"
#include "tools/render/FaultText.hpp"
#include "tools/render/QualityText.hpp"
#include "tools/render/TextTree.hpp"
#include "tools/render/ValueText.hpp"

namespace TalIec61850Tools {

using namespace TalIec61850Analysis;

namespace {

// What a field of a packet can hold.

std::string fieldText(bool flag) { return flag ? "true" : "false"; }
std::string fieldText(std::uint64_t number) { return std::to_string(number); }
std::string fieldText(std::string const& text) { return escapeText(text); }
std::string fieldText(OctetString const& octets) { return "octets " + toHex(octets); }
std::string fieldText(MacAddress const& address) { return toText(address); }
std::string fieldText(UtcTime const& time) { return timeText(time); }
std::string fieldText(Integer const& integer) {
    auto const* const octets = std::get_if<OctetString>(&integer);
    return octets != nullptr ? fieldText(*octets) : integerText(integer);
}

std::string fieldText(VlanTag const& vlan) {
    constexpr std::uint16_t kUsualTpid = 0x8100;
    return fmt::format("{}, priority {}{}{}", vlan.id, vlan.priority, vlan.dei ? ", dei" : "",
                       vlan.tpid == kUsualTpid ? "" : fmt::format(", TPID {:04x}", vlan.tpid));
}

std::string fieldText(HsrTag const& hsr) {
    return fmt::format("lane {}, path {}, sequence {}, size {}", hsr.lane(), hsr.path, hsr.sequence,
                       hsr.lsduSize);
}

std::string fieldText(PrpTrailer const& prp) {
    return fmt::format("LAN {}, id {}, sequence {}, size {}", prp.lan(), prp.lanId, prp.sequence,
                       prp.lsduSize);
}

template <typename Value>
std::string fieldText(Readable<Value> const& readable) {
    return std::visit([](auto const& value) { return fieldText(value); }, readable);
}

template <typename Value>
void add(std::string_view name, std::optional<Value> const& field, TextTree& tree) {
    if (field) {
        tree.add(name, fieldText(*field));
    }
}

void addWord(std::string_view name, std::optional<std::uint16_t> word, TextTree& tree,
             std::string_view remark = "") {
    if (word) {
        tree.add(name, fmt::format("0x{:04x}{}", *word, remark));
    }
}

/// A number with what it means.
template <typename Name>
void addNamed(std::string_view name, std::optional<Readable<std::uint64_t>> const& field,
              Name const& meaning, TextTree& tree) {
    auto const* const number = valueIn(field);
    if (number != nullptr) {
        tree.add(name, fmt::format("{} ({})", *number, meaning(*number)));
    } else {
        add(name, field, tree);
    }
}

void addHeader(FrameHeader const& header, TextTree& tree) {
    add("destination", header.destination, tree);
    add("source", header.source, tree);
    for (VlanTag const& tag : header.vlanTags) {
        tree.add("vlan", fieldText(tag));
    }
    add("hsr", header.hsr, tree);
    add("prp", header.prp, tree);
    addWord("etherType", header.etherType, tree);
    addWord("appId", header.appId, tree);
    if (header.length) {
        tree.add("length", std::to_string(*header.length));
    }
    addWord("reserved1", header.reserved1, tree, header.simulated() ? " (simulated)" : "");
    addWord("reserved2", header.reserved2, tree);
}

void addOthers(std::vector<RawElement> const& others, TextTree& tree) {
    for (RawElement const& element : others) {
        std::string const name =
            element.tag ? fmt::format("element {:02x}", *element.tag) : "unreadable";
        std::string const fault =
            element.fault ? fmt::format(" ({})", toText(*element.fault)) : std::string();
        tree.add(name, toHex(element.octets) + fault);
    }
}

template <typename Packet>
void addRest(Packet const& packet, TextTree& tree) {
    addOthers(packet.others, tree);
    if (!packet.leading.empty()) {
        tree.add("leading", toHex(packet.leading));
    }
    if (!packet.trailing.empty()) {
        tree.add("trailing", toHex(packet.trailing));
    }
    for (Fault const& fault : packet.faults) {
        tree.add("fault", fmt::format("at octet {}: {}", fault.offset, toText(fault.kind)));
    }
}

/// A unit after its value, with a blank before; empty where it is not known.
std::string unitText(std::string const& unit) {
    return unit.empty() ? std::string() : " " + escapeText(unit);
}

void addSamples(SequenceOfData const& data, FoundLayout const* layout,
                std::vector<ChannelMeaning> const* meanings, TextTree& tree) {
    OctetString const octets = octetsOf(data);
    std::vector<SampleValue> const samples = decodeAs(data, layout);
    if (samples.empty()) {
        tree.add("seqData", fieldText(octets));
        return;
    }
    std::string const remark = layout == nullptr ? "" : layoutRemark(*layout, octets.size());
    tree.enter(remark.empty() ? "seqData:" : fmt::format("seqData ({}):", remark));
    std::size_t number = 0;
    for (SampleValue const& sample : samples) {
        ChannelMeaning const* const meaning = meaningAt(meanings, number);
        std::string text =
            std::visit([](auto value) { return fmt::format("{}", value); }, sample.value);
        if (auto const scaled = scaledValue(sample, meaning)) {
            text += meaning->scale == ChannelScale()
                        ? unitText(meaning->unit)
                        : fmt::format(" ({}{})", *scaled, unitText(meaning->unit));
        }
        if (sample.quality) {
            text += ", quality: " + toText(*sample.quality);
        }
        if (sample.time) {
            text += ", time: " + timeText(*sample.time);
        }
        std::string const name = meaning == nullptr ? "" : " " + escapeText(meaning->name);
        tree.add(std::to_string(++number) + name, text);
    }
    tree.leave();
}

void addAsdu(AsduContent const& asdu, FoundLayout const* layout,
             std::vector<ChannelMeaning> const* meanings, TextTree& tree) {
    add("svID", asdu.svID, tree);
    add("datSet", asdu.datSet, tree);
    add("smpCnt", asdu.smpCnt, tree);
    add("confRev", asdu.confRev, tree);
    add("refrTm", asdu.refrTm, tree);
    addNamed("smpSynch", asdu.smpSynch, smpSynchText, tree);
    add("smpRate", asdu.smpRate, tree);
    if (asdu.seqData) {
        addSamples(*asdu.seqData, layout, meanings, tree);
    }
    addNamed("smpMod", asdu.smpMod, smpModText, tree);
    add("gmIdentity", asdu.gmIdentity, tree);
    addOthers(asdu.others, tree);
}

}  // namespace

std::string toText(GoosePacket const& packet, MemberNames const& names) {
    TextTree tree;
    tree.enter("GOOSE");
    addHeader(packet.header, tree);
    add("gocbRef", packet.gocbRef, tree);
    add("timeAllowedtoLive", packet.timeAllowedtoLive, tree);
    add("datSet", packet.datSet, tree);
    add("goID", packet.goID, tree);
    add("t", packet.t, tree);
    add("stNum", packet.stNum, tree);
    add("sqNum", packet.sqNum, tree);
    add("simulation", packet.simulation, tree);
    add("confRev", packet.confRev, tree);
    add("ndsCom", packet.ndsCom, tree);
    add("numDatSetEntries", packet.numDatSetEntries, tree);
    if (packet.allData) {
        tree.enter("allData:");
        addData(*packet.allData, names, tree);
        tree.leave();
    }
    addRest(packet, tree);
    return tree.take();
}

std::string toText(SvPacket const& packet, AsduLayouts const& layouts,
                   AsduMeanings const& meanings) {
    TextTree tree;
    tree.enter("SV");
    addHeader(packet.header, tree);
    add("noASDU", packet.noASDU, tree);
    add("security", packet.security, tree);
    std::size_t number = 0;
    for (AsduContent const& asdu : packet.asdus) {
        FoundLayout const* const layout = layoutAt(layouts, number);
        auto const* const channels = number < meanings.size() ? meanings[number] : nullptr;
        tree.enter(fmt::format("ASDU {}:", ++number));
        addAsdu(asdu, layout, channels, tree);
        tree.leave();
    }
    addRest(packet, tree);
    return tree.take();
}

}  // namespace TalIec61850Tools
