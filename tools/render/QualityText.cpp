#include "tools/render/QualityText.hpp"

#include <array>
#include <cstddef>

namespace TalIec61850Tools {

namespace {

struct Flag {
    std::string_view name;
    bool Quality::*member;
};

// In the order of their bits; that of the source is between the last two and these.
constexpr std::array<Flag, 8> kDetails = {{{"overflow", &Quality::overflow},
                                           {"outOfRange", &Quality::outOfRange},
                                           {"badReference", &Quality::badReference},
                                           {"oscillatory", &Quality::oscillatory},
                                           {"failure", &Quality::failure},
                                           {"oldData", &Quality::oldData},
                                           {"inconsistent", &Quality::inconsistent},
                                           {"inaccurate", &Quality::inaccurate}}};

}  // namespace

std::string_view toText(Validity validity) {
    constexpr std::array<std::string_view, 4> kNames = {"good", "invalid", "reserved",
                                                        "questionable"};
    return kNames[static_cast<std::size_t>(validity)];
}

std::string_view toText(Source source) {
    return source == Source::process ? "process" : "substituted";
}

std::vector<std::string_view> setFlags(Quality const& quality) {
    std::vector<std::string_view> names;
    for (Flag const& flag : kDetails) {
        if (quality.*flag.member) {
            names.push_back(flag.name);
        }
    }
    if (quality.source == Source::substituted) {
        names.push_back(toText(quality.source));
    }
    if (quality.test) {
        names.emplace_back("test");
    }
    if (quality.operatorBlocked) {
        names.emplace_back("operatorBlocked");
    }
    return names;
}

std::string toText(Quality const& quality) {
    std::string text(toText(quality.validity));
    for (std::string_view const name : setFlags(quality)) {
        text.append(", ").append(name);
    }
    return text;
}

std::string toText(SampleQuality const& quality) {
    return toText(quality.quality()) + (quality.derived() ? ", derived" : "");
}

}  // namespace TalIec61850Tools
