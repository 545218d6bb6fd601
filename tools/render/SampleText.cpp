#include "tools/render/SampleText.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <variant>

#include "tools/output/Plural.hpp"
#include "tools/selection/SampleTypeNames.hpp"

namespace TalIec61850Tools {

using namespace TalIec61850Analysis;

namespace {

void appendWord(OctetString& octets, std::uint32_t word) {
    for (unsigned shift = 32; shift > 0; shift -= 8) {
        octets.push_back(static_cast<std::uint8_t>(word >> (shift - 8)));
    }
}

}  // namespace

std::optional<double> scaledValue(SampleValue const& sample, ChannelMeaning const* meaning) {
    if (meaning == nullptr || !meaning->scale) {
        return std::nullopt;
    }
    return std::visit([&](auto value) { return (*meaning->scale)(static_cast<double>(value)); },
                      sample.value);
}

OctetString octetsOf(SequenceOfData const& data) {
    if (auto const* const octets = std::get_if<OctetString>(&data)) {
        return *octets;
    }
    OctetString octets;
    for (ChannelSample const& sample : std::get<std::vector<ChannelSample>>(data)) {
        appendWord(octets, static_cast<std::uint32_t>(sample.value));
        appendWord(octets, sample.quality.word);
    }
    return octets;
}

std::vector<SampleValue> decodeAs(SequenceOfData const& data, FoundLayout const* layout) {
    std::vector<SampleValue> samples;
    if (layout != nullptr) {
        return layout->layout ? decodeSample(*layout->layout, octetsOf(data)) : samples;
    }
    if (auto const* const channels = std::get_if<std::vector<ChannelSample>>(&data)) {
        for (ChannelSample const& sample : *channels) {
            samples.push_back({.value = sample.value, .quality = sample.quality});
        }
    }
    return samples;
}

std::string layoutText(FoundLayout const& layout, std::size_t dataSize) {
    if (!layout.layout) {
        return plural(dataSize, "octet");
    }
    auto const members = layout.layout->members();
    std::string const rest = layout.layout->rest() == 0
                                 ? std::string()
                                 : fmt::format(" and {}", plural(layout.layout->rest(), "octet"));
    // The shortest pattern that repeats.
    std::size_t period = 1;
    while (members.size() % period != 0 ||
           !std::equal(members.begin() + static_cast<std::ptrdiff_t>(period), members.end(),
                       members.begin())) {
        ++period;
    }
    constexpr std::size_t kLongestPattern = 4;
    if (period > kLongestPattern) {
        return plural(layout.layout->channels().size(), "channel") + rest;
    }
    std::string pattern;
    for (std::size_t i = 0; i < period; ++i) {
        pattern += pattern.empty() ? "" : ", ";
        pattern += typeText(members[i]);
    }
    return fmt::format("{} x ({}){}", members.size() / period, pattern, rest);
}

std::string layoutRemark(FoundLayout const& layout, std::size_t dataSize) {
    if (!layout.layout) {
        return {};
    }
    if (layout.source == LayoutSource::undecided) {
        return fmt::format("layout undecided: read as {}", layoutText(layout, dataSize));
    }
    if (layout.source == LayoutSource::given) {
        return fmt::format("{} as described", layoutText(layout, dataSize));
    }
    bool const isUsual =
        layout.isIntegerAndQuality && !layout.isFloatAndQuality && !layout.isValueAndTime;
    return isUsual ? std::string()
                   : fmt::format("{} by {}", layoutText(layout, dataSize),
                                 plural(layout.asdus, "ASDU"));
}

}  // namespace TalIec61850Tools
