#include "tools/inspect/Quality.hpp"

#include <array>

namespace TalIec61850Tools {

namespace {

struct Flag {
    std::string_view name;
    bool Quality::*member;
};

// In the order of their bits; the source stands between the two.
constexpr std::array<Flag, 8> kDetails = {{{"overflow", &Quality::overflow},
                                           {"outOfRange", &Quality::outOfRange},
                                           {"badReference", &Quality::badReference},
                                           {"oscillatory", &Quality::oscillatory},
                                           {"failure", &Quality::failure},
                                           {"oldData", &Quality::oldData},
                                           {"inconsistent", &Quality::inconsistent},
                                           {"inaccurate", &Quality::inaccurate}}};

}  // namespace

Quality qualityFromBits(std::uint32_t bits) {
    auto const isSet = [&](unsigned index) { return (bits >> index & 1U) != 0; };
    Quality quality;
    quality.validity = static_cast<Validity>(bits & 3U);
    unsigned index = 2;
    for (Flag const& flag : kDetails) {
        quality.*flag.member = isSet(index++);
    }
    quality.source = isSet(10) ? Source::substituted : Source::process;
    quality.test = isSet(11);
    quality.operatorBlocked = isSet(12);
    return quality;
}

std::optional<Quality> readQuality(BitString const& bits) {
    if (bits.size() != kQualityBits) {
        return std::nullopt;
    }
    // As a number, the bits of a bit-string run the other way, and so do the two of the validity.
    std::uint32_t word = (bits[0] ? 2U : 0U) + (bits[1] ? 1U : 0U);
    for (unsigned i = 2; i < kQualityBits; ++i) {
        word |= (bits[i] ? 1U : 0U) << i;
    }
    return qualityFromBits(word);
}

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

}  // namespace TalIec61850Tools
