#include "tools/render/DataText.hpp"

#include <fmt/format.h>

#include <cmath>

#include "tools/output/TextEscape.hpp"
#include "tools/render/FaultText.hpp"
#include "tools/render/QualityText.hpp"
#include "tools/render/ValueText.hpp"

namespace TalIec61850Tools {

using namespace TalIec61850Analysis;

namespace {

template <typename Float>
std::string floatText(Float number) {
    auto const text = nonFiniteText(number);
    return text ? *text : fmt::format("{}", number);
}

struct ContentText {
    std::string operator()(OctetString const& octets) const { return toHex(octets); }
    std::string operator()(bool flag) const { return flag ? "true" : "false"; }
    std::string operator()(BitString const& bits) const { return toText(bits); }
    std::string operator()(std::int64_t number) const { return std::to_string(number); }
    std::string operator()(std::uint64_t number) const { return std::to_string(number); }
    std::string operator()(float number) const { return floatText(number); }
    std::string operator()(double number) const { return floatText(number); }
    std::string operator()(std::string const& text) const { return escapeText(text); }
    std::string operator()(BinaryTime const& time) const { return toIsoText(time); }
    std::string operator()(UtcTime const& time) const { return toIsoText(time); }
    std::string operator()(ObjectId const& id) const { return toText(id); }
    // NOLINTNEXTLINE(misc-no-recursion): values are nested no deeper than kMaxDataDepth
    std::string operator()(DataValue::Members const& members) const {
        std::string text;
        for (DataValue const& member : members) {
            text.append(text.empty() ? "" : ", ").append(toText(member));
        }
        return "{" + text + "}";
    }
};

/// What there is to say of a value besides it, in brackets with a blank before; or nothing.
std::string remarkOn(DataValue const& value) {
    if (value.fault) {
        return fmt::format(" ({})", toText(*value.fault));
    }
    auto const* const bits = std::get_if<BitString>(&value.value);
    if (value.kind != DataKind::bitString || bits == nullptr) {
        return {};
    }
    if (auto const quality = readQuality(toView(*bits))) {
        return fmt::format(" (quality: {})", toText(*quality));
    }
    auto const position = dbposReading(*bits);
    return position.empty() ? std::string() : fmt::format(" (as Dbpos: {})", position);
}

std::string kindText(DataValue const& value) {
    return value.kind == DataKind::unknown ? fmt::format("unknown {:02x}", value.tag)
                                           : std::string(toText(value.kind));
}

std::string contentText(DataValue const& value) {
    auto const* const time = std::get_if<UtcTime>(&value.value);
    return time != nullptr ? timeText(*time) : toText(value);
}

std::string accuracyText(std::uint8_t accuracy) {
    constexpr std::uint8_t kUnspecified = 31;
    constexpr std::uint8_t kMaxBits = 24;
    if (accuracy == kUnspecified) {
        return "accuracy unspecified";
    }
    return fmt::format("accuracy {}{}", accuracy, accuracy > kMaxBits ? " invalid" : " bits");
}

/// Adds values inside another one, or those of the message.
/// @param path  of the other one
// NOLINTNEXTLINE(misc-no-recursion): values are nested no deeper than kMaxDataDepth
void addValues(std::vector<DataValue> const& values, MemberNames const& names,
               std::vector<std::uint32_t>& path, TextTree& tree) {
    path.push_back(0);
    for (std::size_t i = 0; i < values.size(); ++i) {
        DataValue const& value = values[i];
        path.back() = static_cast<std::uint32_t>(i);
        std::string_view const name = names.nameAt(path);
        std::string const number =
            fmt::format("{}{}{}", i + 1, name.empty() ? "" : " ", escapeText(name));
        auto const* const members = std::get_if<DataValue::Members>(&value.value);
        if (members == nullptr) {
            tree.add(fmt::format("{}: {}", number, kindText(value)), valueText(value));
            continue;
        }
        tree.enter(fmt::format("{}: {}{}", number, kindText(value), remarkOn(value)));
        addValues(*members, names, path, tree);
        tree.leave();
    }
    path.pop_back();
}

}  // namespace

std::optional<std::string> nonFiniteText(double number) {
    if (std::isnan(number)) {
        return "NaN";
    }
    if (std::isinf(number)) {
        return number > 0 ? "Infinity" : "-Infinity";
    }
    return std::nullopt;
}

// NOLINTNEXTLINE(misc-no-recursion)
std::string toText(DataValue const& value) { return std::visit(ContentText{}, value.value); }

void addData(std::vector<DataValue> const& values, MemberNames const& names, TextTree& tree) {
    std::vector<std::uint32_t> path;
    addValues(values, names, path, tree);
}

// NOLINTNEXTLINE(misc-no-recursion)
std::string valueText(DataValue const& value) { return contentText(value) + remarkOn(value); }

std::string integerText(Integer const& integer) { return std::visit(ContentText{}, integer); }

std::string timeQualityText(UtcTime const& time) {
    return fmt::format("{}{}{}{}", time.leapSecondsKnown() ? "leapSecondsKnown, " : "",
                       time.clockFailure() ? "clockFailure, " : "",
                       time.clockNotSynchronized() ? "clockNotSynchronized, " : "",
                       accuracyText(time.accuracy()));
}

std::string timeText(UtcTime const& time) {
    return fmt::format("{} ({})", toIsoText(time), timeQualityText(time));
}

}  // namespace TalIec61850Tools
