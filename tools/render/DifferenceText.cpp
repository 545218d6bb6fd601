#include "tools/render/DifferenceText.hpp"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string_view>
#include <variant>
#include <vector>

#include "tools/render/AddressText.hpp"
#include "tools/render/DurationText.hpp"
#include "tools/render/EventRow.hpp"
#include "tools/render/ValueText.hpp"
#include "tools/selection/StationNames.hpp"

namespace TalIec61850Tools {

using TalIec61850Scl::BasicType;
using TalIec61850Scl::DataSetMember;
using TalIec61850Scl::DifferenceKind;
using TalIec61850Scl::DifferenceValue;
using TalIec61850Scl::SmvOptions;

using Json = nlohmann::ordered_json;

namespace {

/// A number without a fraction, where it has none.
Json numberJson(double number) {
    constexpr double kMostExact = 9e15;
    bool const isWhole = std::trunc(number) == number && std::abs(number) < kMostExact;
    return isWhole ? Json(static_cast<std::int64_t>(number)) : Json(number);
}

std::string typeText(DescribedDifference const& difference, BasicType type) {
    auto const* const member = difference.member();
    bool const isWritten = member != nullptr && member->type == type && !member->bType.empty();
    return isWritten ? member->bType : std::string(toText(type));
}

struct ValueToJson {
    DescribedDifference const& of;

    Json operator()(std::monostate /*none*/) const { return nullptr; }
    Json operator()(std::int64_t number) const {
        switch (of.difference->kind) {
            case DifferenceKind::appId:
                return appIdText(static_cast<std::uint16_t>(number));
            case DifferenceKind::maxTime:
                return numberJson(static_cast<double>(number) / 1e6);  // in milliseconds
            default:
                return number;
        }
    }
    Json operator()(double number) const { return numberJson(number); }
    Json operator()(std::string const& text) const { return text; }
    Json operator()(MacAddress const& address) const { return toText(address); }
    Json operator()(BasicType type) const { return typeText(of, type); }
    Json operator()(DataKind kind) const { return toText(kind); }
    Json operator()(SmvOptions const& options) const {
        Json list = Json::array();
        for (std::string_view const name : namesOf(options)) {
            list.push_back(name);
        }
        return list;
    }
};

struct ValueToText {
    DescribedDifference const& of;

    std::string operator()(std::monostate /*none*/) const { return "none"; }
    std::string operator()(std::int64_t number) const {
        switch (of.difference->kind) {
            case DifferenceKind::appId:
                return appIdText(static_cast<std::uint16_t>(number));
            case DifferenceKind::maxTime:
                return durationText(number);
            default:
                return std::to_string(number);
        }
    }
    std::string operator()(double number) const { return fmt::format("{:.5g}", number); }
    std::string operator()(std::string const& text) const { return text.empty() ? "\"\"" : text; }
    std::string operator()(MacAddress const& address) const { return toText(address); }
    std::string operator()(BasicType type) const { return typeText(of, type); }
    std::string operator()(DataKind kind) const { return std::string(toText(kind)); }
    std::string operator()(SmvOptions const& options) const {
        auto const names = namesOf(options);
        return names.empty() ? "none" : fmt::format("{}", fmt::join(names, " "));
    }
};

/// What the values of a difference are of.
std::string labelOf(DescribedDifference const& difference) {
    switch (difference.difference->kind) {
        case DifferenceKind::mac:
            return "MAC";
        case DifferenceKind::appId:
            return "APPID";
        case DifferenceKind::vlanId:
            return "VLAN";
        case DifferenceKind::vlanPriority:
            return "VLAN priority";
        case DifferenceKind::memberCount:
            return difference.protocol == Protocol::goose ? "values in allData"
                                                          : "octets of samples";
        case DifferenceKind::memberType: {
            auto const* const member = difference.member();
            return fmt::format("member {}{}", memberText(difference.difference->member),
                               member != nullptr ? fmt::format(" ({})", member->name) : "");
        }
        case DifferenceKind::smpRate:
            return "samples a second";
        case DifferenceKind::noASDU:
            return "ASDUs in a frame";
        case DifferenceKind::options:
            return "optional fields";
        case DifferenceKind::maxTime:
            return "interval";
        default:
            return std::string(toText(difference.difference->kind));
    }
}

/// "refreshTime not described, sampleRate missing"
std::string optionsText(SmvOptions const& expected, SmvOptions const& found) {
    auto const described = namesOf(expected);
    auto const seen = namesOf(found);
    std::string text;
    auto const add = [&](std::vector<std::string_view> const& names,
                         std::vector<std::string_view> const& others, std::string_view words) {
        for (std::string_view const name : names) {
            if (std::find(others.begin(), others.end(), name) == others.end()) {
                text += fmt::format("{}{} {}", text.empty() ? "" : ", ", name, words);
            }
        }
    };
    add(seen, described, "not described");
    add(described, seen, "missing");
    return text;
}

}  // namespace

DataSetMember const* DescribedDifference::member() const {
    if (dataSet == nullptr || difference->member.empty()) {
        return nullptr;
    }
    // Members are in the order of a message, and so in that of their paths.
    auto const found =
        std::lower_bound(dataSet->members.begin(), dataSet->members.end(), difference->member,
                         [](DataSetMember const& each, std::vector<std::uint32_t> const& path) {
                             return each.path < path;
                         });
    bool const isThere = found != dataSet->members.end() && found->path == difference->member;
    return isThere ? &*found : nullptr;
}

std::string differenceText(DescribedDifference const& difference) {
    auto const* const expected = std::get_if<SmvOptions>(&difference.difference->expected);
    auto const* const found = std::get_if<SmvOptions>(&difference.difference->found);
    if (expected != nullptr && found != nullptr) {
        return fmt::format("{}: {}", labelOf(difference), optionsText(*expected, *found));
    }
    ValueToText const toWords{difference};
    bool const isLimit = difference.difference->kind == DifferenceKind::maxTime;
    return fmt::format("{}: {}, described {}{}", labelOf(difference),
                       std::visit(toWords, difference.difference->found), isLimit ? "at most " : "",
                       std::visit(toWords, difference.difference->expected));
}

Json expectedJson(DescribedDifference const& difference) {
    return std::visit(ValueToJson{difference}, difference.difference->expected);
}

Json foundJson(DescribedDifference const& difference) {
    return std::visit(ValueToJson{difference}, difference.difference->found);
}

}  // namespace TalIec61850Tools
