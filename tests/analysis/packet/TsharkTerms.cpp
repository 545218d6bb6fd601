#include "analysis/packet/TsharkTerms.hpp"

#include <fmt/format.h>

#include <array>
#include <bit>
#include <chrono>
#include <cstdint>
#include <iterator>
#include <optional>
#include <sstream>
#include <type_traits>
#include <utility>
#include <variant>

#include "support/Bytes.hpp"
#include "tools/render/DataText.hpp"
#include "tools/render/QualityText.hpp"
#include "tools/render/ValueText.hpp"

namespace TalTest {

using namespace TalIec61850Analysis;
using namespace TalIec61850Tools;

namespace {

/// Collects values under their fields.
class Terms {
public:
    void add(std::string const& field, std::string const& value) {
        auto const [place, isFirst] = told_.try_emplace(field, value);
        if (!isFirst) place->second += "|" + value;
    }
    void add(std::string const& field, char const* value) { add(field, std::string(value)); }
    void add(std::string const& field, bool value) { add(field, value ? "1" : "0"); }
    template <typename Number>
    requires std::is_integral_v<Number>
    void add(std::string const& field, Number value) { add(field, std::to_string(value)); }
    void add(std::string const& field, UtcTime const& time) {
        std::chrono::sys_seconds const point{std::chrono::seconds(time.seconds)};
        auto const midnight = std::chrono::floor<std::chrono::days>(point);
        std::chrono::year_month_day const date(midnight);
        std::chrono::hh_mm_ss const clock(point - midnight);
        static constexpr std::array<char const*, 12> months = {
            "Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
        add(field, fmt::format("{} {:2}, {} {:02}:{:02}:{:02}.{:09} UTC",
                               months.at(static_cast<unsigned>(date.month()) - 1),
                               static_cast<unsigned>(date.day()), static_cast<int>(date.year()),
                               clock.hours().count(), clock.minutes().count(),
                               clock.seconds().count(), time.nanoseconds()));
    }
    void add(std::string const& field, OctetString const& octets) { add(field, toHex(octets)); }
    template <typename... Alternatives>
    void add(std::string const& field, std::variant<Alternatives...> const& value) {
        std::visit([&](auto const& alternative) { add(field, alternative); }, value);
    }
    template <typename Value>
    void add(std::string const& field, std::optional<Value> const& value) {
        if (value) add(field, *value);
    }
    void addWord(std::string const& field, std::optional<std::uint16_t> word) {
        if (word) add(field, fmt::format("0x{:04x}", *word));
    }

    [[nodiscard]] Told take() { return std::move(told_); }

private:
    Told told_;
};

/// Each part of the header tells the type of the next.
void addTypes(FrameHeader const& header, Terms& terms) {
    std::vector<std::string> fields = {"eth.type"};
    std::vector<std::uint16_t> types;
    for (VlanTag const& tag : header.vlanTags) {
        fields.emplace_back("vlan.etype");
        types.push_back(tag.tpid);
    }
    if (header.hsr) {
        fields.emplace_back("hsr.type");
        types.push_back(0x892F);
    }
    if (header.etherType) types.push_back(*header.etherType);
    for (std::size_t i = 0; i < types.size(); ++i) terms.addWord(fields.at(i), types[i]);
}

void addHeader(FrameHeader const& header, std::string const& protocol, Terms& terms) {
    if (header.destination) terms.add("eth.dst", toText(*header.destination));
    if (header.source) terms.add("eth.src", toText(*header.source));
    for (VlanTag const& tag : header.vlanTags) {
        terms.add("vlan.priority", tag.priority);
        terms.add("vlan.dei", tag.dei);
        terms.add("vlan.id", tag.id);
    }
    if (header.hsr) {
        terms.add("hsr.path", header.hsr->path);
        terms.add("hsr.lsdu_size", header.hsr->lsduSize);
        terms.add("hsr.sequence_nr", header.hsr->sequence);
    }
    addTypes(header, terms);
    terms.addWord(protocol + ".appid", header.appId);
    terms.add(protocol + ".length", header.length);
    terms.addWord(protocol + ".reserve1", header.reserved1);
    if (header.reserved1) terms.add(protocol + ".reserve1.s_bit", header.simulated());
    terms.addWord(protocol + ".reserve2", header.reserved2);
}

void addData(DataValue const& value, Terms& terms);

void addMembers(std::string const& field, DataValue::Members const& members, Terms& terms) {
    terms.add(field, members.size());
    for (DataValue const& member : members) addData(member, terms);
}

/// The value under the field of its kind.
struct ContentTerms {
    std::string field;
    Terms& terms;

    void operator()(BitString const& bits) const {
        terms.add("ber.bitstring.padding", bits.unusedBits);
        terms.add(field, bits.octets);
    }
    void operator()(float number) const {
        terms.add("goose.float_value", fmt::format("{}", number));
        terms.add(field, concat({{8}, bigEndian(std::bit_cast<std::uint32_t>(number), 4)}));
    }
    // tshark has no number for these.
    void operator()(double number) const {
        terms.add(field, concat({{11}, bigEndian(std::bit_cast<std::uint64_t>(number), 8)}));
    }
    void operator()(BinaryTime const& time) const {
        Bytes octets = bigEndian(time.milliseconds, 4);
        if (time.days) append(octets, bigEndian(*time.days, 2));
        terms.add(field, octets);
    }
    void operator()(ObjectId const& id) const { terms.add(field, toText(id)); }
    void operator()(DataValue::Members const& members) const { addMembers(field, members, terms); }
    template <typename Other>
    void operator()(Other const& other) const {
        terms.add(field, other);
    }
};

void addData(DataValue const& value, Terms& terms) {
    terms.add("goose.Data", value.tag & 0x1FU);
    std::string field = "goose." + std::string(toText(value.kind));
    for (char& c : field)
        if (c == '-') c = '_';
    std::visit(ContentTerms{field, terms}, value.value);
}

void addSample(ChannelSample const& sample, Terms& terms) {
    terms.add("sv.meas_value", sample.value);
    terms.add("sv.meas_quality", fmt::format("0x{:08x}", sample.quality.word));
    Quality const quality = sample.quality.quality();
    std::string const part = "sv.meas_quality.";
    terms.add(part + "validity", fmt::format("0x{:08x}", static_cast<unsigned>(quality.validity)));
    terms.add(part + "overflow", quality.overflow);
    terms.add(part + "outofrange", quality.outOfRange);
    terms.add(part + "badreference", quality.badReference);
    terms.add(part + "oscillatory", quality.oscillatory);
    terms.add(part + "failure", quality.failure);
    terms.add(part + "olddata", quality.oldData);
    terms.add(part + "inconsistent", quality.inconsistent);
    terms.add(part + "inaccurate", quality.inaccurate);
    terms.add(part + "source", fmt::format("0x{:08x}", static_cast<unsigned>(quality.source)));
    terms.add(part + "test", quality.test);
    terms.add(part + "operatorblocked", quality.operatorBlocked);
    terms.add(part + "derived", sample.quality.derived());
}

OctetString octetsOf(std::vector<ChannelSample> const& samples) {
    OctetString octets;
    for (ChannelSample const& sample : samples) {
        append(octets, bigEndian(static_cast<std::uint32_t>(sample.value), 4));
        append(octets, bigEndian(sample.quality.word, 4));
    }
    return octets;
}

void addAsdu(AsduContent const& asdu, Terms& terms) {
    terms.add("sv.svID", asdu.svID);
    terms.add("sv.datSet", asdu.datSet);
    terms.add("sv.smpCnt", asdu.smpCnt);
    terms.add("sv.confRev", asdu.confRev);
    terms.add("sv.refrTm", asdu.refrTm);
    terms.add("sv.smpSynch", asdu.smpSynch);
    terms.add("sv.smpRate", asdu.smpRate);
    terms.add("sv.smpMod", asdu.smpMod);
    if (asdu.gmIdentity) terms.add("sv.gmidentity", "0x" + toHex(*asdu.gmIdentity));
    if (!asdu.seqData) return;
    auto const* const samples = std::get_if<std::vector<ChannelSample>>(&*asdu.seqData);
    terms.add("sv.seqData",
              samples != nullptr ? octetsOf(*samples) : std::get<OctetString>(*asdu.seqData));
    if (samples == nullptr) return;
    for (ChannelSample const& sample : *samples) addSample(sample, terms);
}

constexpr char const* headerFields =
    "eth.dst eth.src eth.type vlan.priority vlan.dei vlan.id vlan.etype hsr.path "
    "hsr.lsdu_size hsr.sequence_nr hsr.type ";

constexpr char const* gooseFields =
    "goose.appid goose.length goose.reserve1 goose.reserve1.s_bit goose.reserve2 "
    "goose.gocbRef goose.timeAllowedtoLive goose.datSet goose.goID goose.t "
    "goose.stNum goose.sqNum goose.simulation goose.confRev goose.ndsCom "
    "goose.numDatSetEntries goose.allData goose.Data goose.array goose.structure "
    "goose.boolean goose.bit_string ber.bitstring.padding goose.integer "
    "goose.unsigned goose.floating_point goose.float_value goose.octet_string goose.visible_string "
    "goose.binary_time goose.bcd goose.booleanArray goose.objId goose.mMSString "
    "goose.utc_time ";

constexpr char const* svFields =
    "sv.appid sv.length sv.reserve1 sv.reserve1.s_bit sv.reserve2 sv.noASDU "
    "sv.seqASDU sv.svID sv.datSet sv.smpCnt sv.confRev sv.refrTm sv.smpSynch "
    "sv.smpRate sv.smpMod sv.gmidentity sv.seqData sv.meas_value sv.meas_quality "
    "sv.meas_quality.validity sv.meas_quality.overflow sv.meas_quality.outofrange "
    "sv.meas_quality.badreference sv.meas_quality.oscillatory "
    "sv.meas_quality.failure sv.meas_quality.olddata sv.meas_quality.inconsistent "
    "sv.meas_quality.inaccurate sv.meas_quality.source sv.meas_quality.test "
    "sv.meas_quality.operatorblocked sv.meas_quality.derived ";

/// The words of a text.
std::vector<std::string> parted(std::string const& text) {
    std::istringstream words(text);
    return {std::istream_iterator<std::string>(words), {}};
}

}  // namespace

Told inTsharkTerms(GoosePacket const& packet) {
    Terms terms;
    addHeader(packet.header, "goose", terms);
    terms.add("goose.gocbRef", packet.gocbRef);
    terms.add("goose.timeAllowedtoLive", packet.timeAllowedtoLive);
    terms.add("goose.datSet", packet.datSet);
    terms.add("goose.goID", packet.goID);
    terms.add("goose.t", packet.t);
    terms.add("goose.stNum", packet.stNum);
    terms.add("goose.sqNum", packet.sqNum);
    terms.add("goose.simulation", packet.simulation);
    terms.add("goose.confRev", packet.confRev);
    terms.add("goose.ndsCom", packet.ndsCom);
    terms.add("goose.numDatSetEntries", packet.numDatSetEntries);
    if (packet.allData) addMembers("goose.allData", *packet.allData, terms);
    return terms.take();
}

Told inTsharkTerms(SvPacket const& packet) {
    Terms terms;
    addHeader(packet.header, "sv", terms);
    terms.add("sv.noASDU", packet.noASDU);
    terms.add("sv.seqASDU", packet.asdus.size());
    for (AsduContent const& asdu : packet.asdus) addAsdu(asdu, terms);
    return terms.take();
}

std::vector<std::string> const& tsharkGooseFields() {
    static auto const fields = parted(std::string(headerFields) + gooseFields);
    return fields;
}

std::vector<std::string> const& tsharkSvFields() {
    static auto const fields = parted(std::string(headerFields) + svFields);
    return fields;
}

}  // namespace TalTest
