#include <TalIec61850Analysis/packet/Elements.hpp>
#include <TalIec61850Analysis/supervision/DataComparison.hpp>
#include <algorithm>
#include <cstddef>
#include <iterator>
#include <optional>

namespace TalIec61850Analysis::detail {

namespace {

constexpr std::uint8_t kArray = 0xA1;
constexpr std::uint8_t kStructure = 0xA2;
constexpr std::uint8_t kBitString = 0x84;
constexpr std::uint8_t kUtcTime = 0x91;
constexpr std::uint8_t kBinaryTime = 0x8C;
/// What is nested deeper is compared as it is.
constexpr std::size_t kMostLevels = 32;

/// One nesting level of both.
struct Level {
    explicit Level(Elements const& beforeElements, Elements const& nowElements)
        : before(beforeElements.begin()), now(nowElements.begin()) {}

    Elements::Iterator before;
    Elements::Iterator now;
    std::uint32_t index = 0;
};

bool isTimeStamp(ElementView const& element) {
    std::uint8_t const tag = element.tag.value_or(0);
    return tag == kUtcTime || tag == kBinaryTime;
}

bool isGroup(ElementView const& element) {
    std::uint8_t const tag = element.tag.value_or(0);
    return (tag == kArray || tag == kStructure) && !element.fault;
}

/// The bits of a quality.
std::optional<std::uint16_t> qualityIn(ElementView const& element) {
    constexpr std::size_t kSize = 3;
    constexpr std::uint8_t kUnusedBits = 3;
    if (element.tag != kBitString || element.octets.size() != kSize ||
        element.octets[0] != kUnusedBits) {
        return std::nullopt;
    }
    unsigned const bits = unsigned{element.octets[1]} << 8U | unsigned{element.octets[2]};
    return static_cast<std::uint16_t>(bits >> kUnusedBits);
}

void compareQualities(std::vector<Level> const& levels, QualityChangeSink sink) {
    auto const before = qualityIn(*levels.back().before);
    auto const now = qualityIn(*levels.back().now);
    if (before && now && (*before == 0) != (*now == 0)) {
        QualityChange change{.member = {}, .before = *before, .now = *now};
        for (Level const& level : levels) {
            change.member.push_back(level.index);
        }
        sink(change);
    }
}

}  // namespace

DataComparison compareData(Octets before, Octets now, QualityChangeSink sink) {
    DataComparison result;
    if (std::ranges::equal(before, now)) {
        return result;
    }
    std::vector<Level> levels;
    levels.emplace_back(Elements(before), Elements(now));
    while (!levels.empty()) {
        Level& level = levels.back();
        bool const isBeforeOver = level.before == std::default_sentinel;
        bool const isNowOver = level.now == std::default_sentinel;
        if (isBeforeOver || isNowOver) {
            if (isBeforeOver != isNowOver) {
                return {.isSameMake = false, .isChanged = true};
            }
            levels.pop_back();
            if (!levels.empty()) {
                ++levels.back().before;
                ++levels.back().now;
                ++levels.back().index;
            }
            continue;
        }
        ElementView const& a = *level.before;
        ElementView const& b = *level.now;
        if (a.tag != b.tag) {
            return {.isSameMake = false, .isChanged = true};
        }
        if (isGroup(a) && isGroup(b) && levels.size() < kMostLevels) {
            levels.emplace_back(a.members(), b.members());
            continue;
        }
        if (!isTimeStamp(a) && !std::ranges::equal(a.octets, b.octets)) {
            result.isChanged = true;
            compareQualities(levels, sink);
        }
        ++level.before;
        ++level.now;
        ++level.index;
    }
    return result;
}

std::uint64_t countMembers(Octets data) {
    std::uint64_t count = 0;
    for (auto element = Elements(data).begin(); element != std::default_sentinel; ++element) {
        ++count;
    }
    return count;
}

}  // namespace TalIec61850Analysis::detail
