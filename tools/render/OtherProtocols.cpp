#include "tools/render/OtherProtocols.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace TalIec61850Tools {

using TalIec61850Analysis::CaptureSummary;

namespace {

constexpr std::uint16_t kEtherTypeIpv4 = 0x0800;
constexpr std::uint16_t kEtherTypeIpv6 = 0x86DD;

struct NamedEtherType {
    std::uint16_t etherType = 0;
    std::string_view name;
};

constexpr std::array kNamedEtherTypes = {
    NamedEtherType{0, "IEEE 802.3"},  // a length in its place
    NamedEtherType{kEtherTypeIpv4, "IPv4"},
    NamedEtherType{0x0806, "ARP"},
    NamedEtherType{kEtherTypeIpv6, "IPv6"},
    NamedEtherType{0x8809, "slow protocols"},
    NamedEtherType{0x888E, "EAPOL"},
    NamedEtherType{0x88B9, "GSE management"},
    NamedEtherType{0x88CC, "LLDP"},
    NamedEtherType{0x88E3, "MRP"},
    NamedEtherType{0x88E5, "MACsec"},
    NamedEtherType{0x88F7, "PTP"},
    NamedEtherType{0x88FB, "PRP supervision"},
    NamedEtherType{0x892F, "HSR"},
};

std::string etherTypeText(std::uint16_t etherType) {
    auto const* const known =
        std::find_if(kNamedEtherTypes.begin(), kNamedEtherTypes.end(),
                     [&](NamedEtherType const& each) { return each.etherType == etherType; });
    return known != kNamedEtherTypes.end() ? std::string(known->name)
                                           : fmt::format("0x{:04x}", etherType);
}

/// Frames of an EtherType that nothing more is recognised of.
std::uint64_t plainFrames(CaptureSummary const& summary, std::uint16_t etherType,
                          std::uint64_t frames) {
    if (etherType == kEtherTypeIpv6) {
        return frames - summary.recognisedIpv6Frames;
    }
    if (etherType == kEtherTypeIpv4) {
        return frames - (summary.routableGooseFrames + summary.routableSvFrames +
                         summary.mmsFrames - summary.recognisedIpv6Frames);
    }
    return frames;
}

}  // namespace

std::vector<ProtocolCount> otherProtocols(CaptureSummary const& summary) {
    std::vector<ProtocolCount> counts = {{"R-GOOSE", summary.routableGooseFrames},
                                         {"R-SV", summary.routableSvFrames},
                                         {"MMS", summary.mmsFrames}};
    for (auto const& [etherType, frames] : summary.otherFrames) {
        counts.push_back({etherTypeText(etherType), plainFrames(summary, etherType, frames)});
    }
    std::erase_if(counts, [](ProtocolCount const& count) { return count.frames == 0; });
    std::stable_sort(
        counts.begin(), counts.end(),
        [](ProtocolCount const& a, ProtocolCount const& b) { return a.frames > b.frames; });
    return counts;
}

}  // namespace TalIec61850Tools
