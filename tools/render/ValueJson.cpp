#include <fmt/format.h>

#include <charconv>
#include <nlohmann/json.hpp>

#include "tools/render/DataText.hpp"
#include "tools/render/FaultText.hpp"
#include "tools/render/PacketJson.hpp"
#include "tools/render/QualityText.hpp"
#include "tools/render/ValueText.hpp"

namespace TalIec61850Tools {

using namespace TalIec61850Analysis;
using Json = nlohmann::ordered_json;

namespace {

/// In as few digits as tell the number from all others of its width.
template <typename Float>
Json toJsonNumber(Float number) {
    if (auto const text = nonFiniteText(number)) {
        return *text;
    }
    auto const digits = fmt::format("{}", number);
    double read = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), read);
    return read;
}

Json octetsJson(OctetString const& octets) { return {{"octets", toHex(octets)}}; }

Json toJson(BinaryTime const& time) {
    return {{"time", toIsoText(time)},
            {"milliseconds", time.milliseconds},
            {"days", time.days ? Json(*time.days) : Json()}};
}

/// Adds what a value holds to its object.
struct ContentAdder {
    Json& json;

    void operator()(OctetString const& octets) const { json["octets"] = toHex(octets); }
    void operator()(bool flag) const { json["value"] = flag; }
    void operator()(BitString const& bits) const { json["bits"] = toText(bits); }
    void operator()(std::int64_t number) const { json["value"] = number; }
    void operator()(std::uint64_t number) const { json["value"] = number; }
    void operator()(std::string const& text) const { json["value"] = text; }
    void operator()(BinaryTime const& time) const { json["value"] = toJson(time); }
    void operator()(UtcTime const& time) const { json["value"] = TalIec61850Tools::toJson(time); }
    void operator()(ObjectId const& id) const { json["value"] = toText(id); }
    // NOLINTNEXTLINE(misc-no-recursion): values are nested no deeper than kMaxDataDepth
    void operator()(DataValue::Members const& members) const {
        json["members"] = TalIec61850Tools::toJson(members);
    }
    void operator()(float number) const {
        json["width"] = 32;
        json["value"] = toJsonNumber(number);
    }
    void operator()(double number) const {
        json["width"] = 64;
        json["value"] = toJsonNumber(number);
    }
};

/// Gives each object of a value that holds no others its name, or null.
// NOLINTNEXTLINE(misc-no-recursion): values are nested no deeper than kMaxDataDepth
void addNames(std::vector<DataValue> const& values, MemberNames const& names,
              std::vector<std::uint32_t>& path, Json& json) {
    path.push_back(0);
    for (std::size_t i = 0; i < values.size(); ++i) {
        path.back() = static_cast<std::uint32_t>(i);
        if (auto const* const members = std::get_if<DataValue::Members>(&values[i].value)) {
            addNames(*members, names, path, json[i]["members"]);
        } else {
            std::string_view const name = names.nameAt(path);
            json[i]["name"] = name.empty() ? Json() : Json(name);
        }
    }
    path.pop_back();
}

/// What a bit-string of the right length says, where it is one of these types.
void addReadings(BitString const& bits, Json& json) {
    if (auto const quality = readQuality(toView(bits))) {
        json["quality"] = TalIec61850Tools::toJson(*quality);
    }
    if (auto const position = dbposReading(bits); !position.empty()) {
        json["dbposReading"] = position;
    }
}

}  // namespace

// NOLINTNEXTLINE(misc-no-recursion)
Json toJson(DataValue const& value) {
    Json json = {{"type", toText(value.kind)}};
    if (value.kind == DataKind::unknown) {
        json["tag"] = fmt::format("{:02x}", value.tag);
    }
    std::visit(ContentAdder{json}, value.value);
    auto const* const bits = std::get_if<BitString>(&value.value);
    if (value.kind == DataKind::bitString && bits != nullptr) {
        addReadings(*bits, json);
    }
    if (value.fault) {
        json["fault"] = toText(*value.fault);
    }
    return json;
}

// NOLINTNEXTLINE(misc-no-recursion)
Json toJson(std::vector<DataValue> const& values) {
    Json json = Json::array();
    for (DataValue const& value : values) {
        json.push_back(toJson(value));
    }
    return json;
}

Json toJson(std::vector<DataValue> const& values, MemberNames const& names) {
    Json json = toJson(values);
    std::vector<std::uint32_t> path;
    addNames(values, names, path, json);
    return json;
}

Json toJson(Integer const& integer) {
    if (auto const* const octets = std::get_if<OctetString>(&integer)) {
        return octetsJson(*octets);
    }
    if (auto const* const number = std::get_if<std::uint64_t>(&integer)) {
        return *number;
    }
    return std::get<std::int64_t>(integer);
}

Json toJson(UtcTime const& time) {
    return {{"time", toIsoText(time)},
            {"seconds", time.seconds},
            {"fraction", time.fraction},
            {"nanoseconds", time.nanoseconds()},
            {"leapSecondsKnown", time.leapSecondsKnown()},
            {"clockFailure", time.clockFailure()},
            {"clockNotSynchronized", time.clockNotSynchronized()},
            {"accuracy", time.accuracy()}};
}

Json toJson(Quality const& quality) {
    return {{"validity", toText(quality.validity)},
            {"overflow", quality.overflow},
            {"outOfRange", quality.outOfRange},
            {"badReference", quality.badReference},
            {"oscillatory", quality.oscillatory},
            {"failure", quality.failure},
            {"oldData", quality.oldData},
            {"inconsistent", quality.inconsistent},
            {"inaccurate", quality.inaccurate},
            {"source", toText(quality.source)},
            {"test", quality.test},
            {"operatorBlocked", quality.operatorBlocked}};
}

Json toJson(SampleQuality const& quality) {
    Json json = toJson(quality.quality());
    json["derived"] = quality.derived();
    json["word"] = quality.word;
    return json;
}

}  // namespace TalIec61850Tools
