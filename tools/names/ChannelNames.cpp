#include "tools/names/ChannelNames.hpp"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace TalIec61850Tools {

using TalIec61850Analysis::SampleLayout;
using TalIec61850Analysis::ValueType;
using TalIec61850Scl::DataSet;
using TalIec61850Scl::DataSetMember;
using TalIec61850Scl::SampleBinding;

namespace {

/// The logical node of a reference: LD0/InnATCTR1 of LD0/InnATCTR1.Amp.instMag.i.
std::string_view nodeOf(std::string_view name) { return name.substr(0, name.find('.')); }

/// Whether a logical node is of a class.
/// @param lnClass  four letters
bool isOfClass(std::string_view node, std::string_view lnClass) {
    std::size_t const last = node.find_last_not_of("0123456789");
    std::string_view const front = last == std::string_view::npos ? "" : node.substr(0, last + 1);
    return front.ends_with(lnClass);
}

/// A, B, C or N: by a data object such as phsA or neut, else by the last letter of the prefix of an
/// instrument transformer, as InnATCTR1 has one.
std::string phaseOf(std::string_view name) {
    constexpr std::array<std::pair<std::string_view, std::string_view>, 4> objects = {
        {{".phsA", "A"}, {".phsB", "B"}, {".phsC", "C"}, {".neut", "N"}}};
    for (auto const& [object, phase] : objects) {
        std::size_t const found = name.find(object);
        std::size_t const end = found + object.size();
        if (found != std::string_view::npos && (end == name.size() || name[end] == '.')) {
            return std::string(phase);
        }
    }
    std::string_view const node = nodeOf(name);
    for (std::string_view const lnClass : {"TCTR", "TVTR"}) {
        std::size_t const found = node.rfind(lnClass);
        bool const hasPrefix = isOfClass(node, lnClass) && found > 0 && node[found - 1] != '/';
        if (hasPrefix && std::string_view("ABCN").find(node[found - 1]) != std::string_view::npos) {
            return {node[found - 1]};
        }
    }
    return {};
}

/// What 9-2LE says of a channel; null where this is none of its.
ChannelMeaning const* usualMeaning(SampleLayout const& layout, std::size_t channel,
                                   std::string_view name) {
    auto const& usual = meaningsOf(layout);
    if (channel >= usual.size()) {
        return nullptr;
    }
    bool const isCurrent = usual[channel].unit == "A";
    return isOfClass(nodeOf(name), isCurrent ? "TCTR" : "TVTR") ? &usual[channel] : nullptr;
}

}  // namespace

std::vector<ChannelMeaning> meaningsOf(DataSet const& dataSet, SampleBinding const& binding) {
    std::vector<ChannelMeaning> meanings;
    for (std::size_t channel = 0; channel < binding.channelMembers.size(); ++channel) {
        DataSetMember const& member = dataSet.members[binding.channelMembers[channel]];
        ChannelMeaning meaning{.name = member.name,
                               .unit = member.unit,
                               .phase = phaseOf(member.name),
                               .scale = std::nullopt,
                               .component = dataSet.ied + std::string(nodeOf(member.name))};
        ValueType const type = binding.layout.channels()[channel].valueType();
        bool const isReal = type == ValueType::float32 || type == ValueType::float64;
        auto const* const usual = usualMeaning(binding.layout, channel, member.name);
        if (member.scale) {
            meaning.scale = ChannelScale::of(member.scale->factor);
            meaning.scale->offset = member.scale->offset;
            if (meaning.unit.empty() && usual != nullptr) {
                meaning.unit = usual->unit;
            }
        } else if (isReal && !member.unit.empty()) {
            meaning.scale = ChannelScale();
        } else if (usual != nullptr) {
            meaning.scale = usual->scale;
            meaning.unit = usual->unit;
        }
        if (meaning.phase.empty() && usual != nullptr) {
            meaning.phase = usual->phase;
        }
        meanings.push_back(std::move(meaning));
    }
    return meanings;
}

}  // namespace TalIec61850Tools
