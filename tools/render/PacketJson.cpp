#include "tools/render/PacketJson.hpp"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "tools/render/FaultText.hpp"
#include "tools/render/ValueText.hpp"

namespace TalIec61850Tools {

using namespace TalIec61850Analysis;
using Json = nlohmann::ordered_json;

namespace {

// What a field of a packet can hold.

Json fieldJson(bool flag) { return flag; }
Json fieldJson(std::uint16_t number) { return number; }
Json fieldJson(std::uint64_t number) { return number; }
Json fieldJson(std::string const& text) { return text; }
Json fieldJson(OctetString const& octets) { return {{"octets", toHex(octets)}}; }
Json fieldJson(MacAddress const& address) { return toText(address); }
Json fieldJson(Integer const& integer) { return toJson(integer); }
Json fieldJson(UtcTime const& time) { return toJson(time); }
Json fieldJson(std::vector<DataValue> const& values) { return toJson(values); }

Json fieldJson(VlanTag const& vlan) {
    return {{"id", vlan.id}, {"priority", vlan.priority}, {"dei", vlan.dei}};
}

Json fieldJson(HsrTag const& hsr) {
    return {{"lane", std::string(1, hsr.lane())},
            {"path", hsr.path},
            {"lsduSize", hsr.lsduSize},
            {"sequence", hsr.sequence}};
}

Json fieldJson(PrpTrailer const& prp) {
    return {{"lan", std::string(1, prp.lan())},
            {"lanId", prp.lanId},
            {"lsduSize", prp.lsduSize},
            {"sequence", prp.sequence}};
}

Json fieldJson(SampleValue const& sample) {
    Json json = {{"value", std::visit([](auto value) { return Json(value); }, sample.value)},
                 {"quality", sample.quality ? toJson(*sample.quality) : Json()}};
    if (sample.time) {
        json["time"] = toJson(*sample.time);
    }
    return json;
}

/// Adds what a channel means to its object.
void addMeaning(SampleValue const& sample, ChannelMeaning const& meaning, Json& json) {
    json["name"] = meaning.name;
    json["unit"] = meaning.unit.empty() ? Json() : Json(meaning.unit);
    auto const scaled = scaledValue(sample, &meaning);
    json["scaled"] = scaled ? Json(*scaled) : Json();
}

Json samplesJson(SequenceOfData const& data, FoundLayout const* layout,
                 std::vector<ChannelMeaning> const* meanings) {
    std::vector<SampleValue> const samples = decodeAs(data, layout);
    if (samples.empty()) {
        return fieldJson(octetsOf(data));
    }
    Json json = Json::array();
    for (std::size_t channel = 0; channel < samples.size(); ++channel) {
        json.push_back(fieldJson(samples[channel]));
        if (auto const* const meaning = meaningAt(meanings, channel)) {
            addMeaning(samples[channel], *meaning, json.back());
        }
    }
    return json;
}

template <typename Value>
Json fieldJson(Readable<Value> const& readable) {
    return std::visit([](auto const& value) { return fieldJson(value); }, readable);
}

template <typename Value>
Json fieldJson(std::optional<Value> const& field) {
    return field ? fieldJson(*field) : Json();
}

/// The name of a number's meaning; null where there is no number.
template <typename Name>
Json meaningJson(std::optional<Readable<std::uint64_t>> const& field, Name const& name) {
    auto const* const number = valueIn(field);
    return number != nullptr ? Json(name(*number)) : Json();
}

Json othersJson(std::vector<RawElement> const& others) {
    Json json = Json::array();
    for (RawElement const& element : others) {
        json.push_back(toJson(element));
    }
    return json;
}

/// All tags where the one under `vlan` does not say everything.
void addTags(VlanTags const& tags, Json& json) {
    constexpr std::uint16_t kUsualTpid = 0x8100;
    if (tags.empty() || (tags.size() == 1 && tags[0].tpid == kUsualTpid)) {
        return;
    }
    Json all = Json::array();
    for (VlanTag const& tag : tags) {
        Json each = {{"tpid", tag.tpid}};
        each.update(fieldJson(tag));
        all.push_back(std::move(each));
    }
    json["vlanTags"] = std::move(all);
}

/// What ends the object of every packet.
template <typename Packet>
void addRest(Packet const& packet, Json& json) {
    json["others"] = othersJson(packet.others);
    json["leadingOctets"] = toHex(packet.leading);
    json["trailingOctets"] = toHex(packet.trailing);
    json["faults"] = toJson(packet.faults);
}

}  // namespace

Json toJson(GoosePacket const& packet, MemberNames const* names) {
    Json allData = fieldJson(packet.allData);
    if (names != nullptr && packet.allData) {
        allData = toJson(*packet.allData, *names);
    }
    Json json = {{"protocol", "GOOSE"},
                 {"header", toJson(packet.header)},
                 {"gocbRef", fieldJson(packet.gocbRef)},
                 {"timeAllowedtoLive", fieldJson(packet.timeAllowedtoLive)},
                 {"datSet", fieldJson(packet.datSet)},
                 {"goID", fieldJson(packet.goID)},
                 {"t", fieldJson(packet.t)},
                 {"stNum", fieldJson(packet.stNum)},
                 {"sqNum", fieldJson(packet.sqNum)},
                 {"simulation", fieldJson(packet.simulation)},
                 {"confRev", fieldJson(packet.confRev)},
                 {"ndsCom", fieldJson(packet.ndsCom)},
                 {"numDatSetEntries", fieldJson(packet.numDatSetEntries)},
                 {"allData", std::move(allData)}};
    addRest(packet, json);
    return json;
}

Json toJson(SvPacket const& packet, AsduLayouts const& layouts, AsduMeanings const& meanings) {
    Json asdus = Json::array();
    for (std::size_t i = 0; i < packet.asdus.size(); ++i) {
        asdus.push_back(toJson(packet.asdus[i], layoutAt(layouts, i),
                               i < meanings.size() ? meanings[i] : nullptr));
    }
    Json json = {{"protocol", "SV"},
                 {"header", toJson(packet.header)},
                 {"noASDU", fieldJson(packet.noASDU)},
                 {"security", fieldJson(packet.security)},
                 {"asdus", std::move(asdus)}};
    addRest(packet, json);
    return json;
}

Json toJson(AsduContent const& asdu, FoundLayout const* layout,
            std::vector<ChannelMeaning> const* meanings) {
    return {{"svID", fieldJson(asdu.svID)},
            {"datSet", fieldJson(asdu.datSet)},
            {"smpCnt", fieldJson(asdu.smpCnt)},
            {"confRev", fieldJson(asdu.confRev)},
            {"refrTm", fieldJson(asdu.refrTm)},
            {"smpSynch", fieldJson(asdu.smpSynch)},
            {"smpSynchName", meaningJson(asdu.smpSynch, smpSynchText)},
            {"smpRate", fieldJson(asdu.smpRate)},
            {"seqData", asdu.seqData ? samplesJson(*asdu.seqData, layout, meanings) : Json()},
            {"smpMod", fieldJson(asdu.smpMod)},
            {"smpModName", meaningJson(asdu.smpMod, smpModText)},
            {"gmIdentity", fieldJson(asdu.gmIdentity)},
            {"others", othersJson(asdu.others)}};
}

Json toJson(FrameHeader const& header) {
    Json json = {{"destination", fieldJson(header.destination)},
                 {"source", fieldJson(header.source)},
                 {"vlan", fieldJson(header.vlanTags.innermost())},
                 {"hsr", fieldJson(header.hsr)},
                 {"prp", fieldJson(header.prp)},
                 {"etherType", fieldJson(header.etherType)},
                 {"appId", header.appId ? Json(fmt::format("0x{:04X}", *header.appId)) : Json()},
                 {"length", fieldJson(header.length)},
                 {"reserved1", fieldJson(header.reserved1)},
                 {"simulated", header.reserved1 ? Json(header.simulated()) : Json()},
                 {"reserved2", fieldJson(header.reserved2)}};
    addTags(header.vlanTags, json);
    return json;
}

Json toJson(RawElement const& element) {
    Json json = {{"offset", element.offset},
                 {"tag", element.tag ? Json(fmt::format("{:02x}", *element.tag)) : Json()},
                 {"octets", toHex(element.octets)}};
    if (element.fault) {
        json["fault"] = toText(*element.fault);
    }
    return json;
}

Json toJson(Faults const& faults) {
    Json json = Json::array();
    for (Fault const& fault : faults) {
        json.push_back({{"offset", fault.offset}, {"fault", toText(fault.kind)}});
    }
    return json;
}

}  // namespace TalIec61850Tools
