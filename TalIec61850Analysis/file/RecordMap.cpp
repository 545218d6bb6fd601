#include <TalIec61850Analysis/file/RecordMap.hpp>
#include <algorithm>

namespace TalIec61850Analysis {

namespace {

// An octet below 192 is a code. Others begin a distance of fourteen bits, the last one a longer.
constexpr std::uint8_t kTwoOctets = 192;
constexpr std::uint8_t kEightOctets = 255;
constexpr std::uint64_t kShortDistances = std::uint64_t{kEightOctets - kTwoOctets} << 8U;
constexpr std::uint16_t kFree = 0xFFFF;

}  // namespace

void RecordMap::add(std::uint64_t fileOffset) {
    if (size_ % kGroup == 0) {
        if (!groups_.empty()) {
            groups_.back().distances.shrink_to_fit();
        }
        groups_.push_back({.first = fileOffset, .distances = {}});
        groups_.back().distances.reserve(kGroup);
    } else {
        addDistance(fileOffset - last_);
    }
    last_ = fileOffset;
    ++size_;
}

void RecordMap::addDistance(std::uint64_t distance) {
    auto& octets = groups_.back().distances;
    if (auto const code = codeOf(distance)) {
        octets.push_back(*code);
        return;
    }
    std::size_t left = sizeof distance;
    if (distance < kShortDistances) {
        octets.push_back(static_cast<std::uint8_t>(kTwoOctets + (distance >> 8U)));
        left = 1;
    } else {
        octets.push_back(kEightOctets);
    }
    while (left > 0) {
        --left;
        octets.push_back(static_cast<std::uint8_t>(distance >> (8 * left)));
    }
}

/// The code of a distance; one that comes the first time is given one, while there are some.
std::optional<std::uint8_t> RecordMap::codeOf(std::uint64_t distance) {
    if (distance >= kShortDistances) {
        return std::nullopt;
    }
    slots_.resize(kSlots, kFree);
    std::uint16_t& slot = slots_[static_cast<std::size_t>(distance % kSlots)];
    if (slot == kFree && distances_.size() < kDistances) {
        slot = static_cast<std::uint16_t>(distances_.size());
        distances_.push_back(static_cast<std::uint32_t>(distance));
    }
    bool const isIts = slot != kFree && distances_[slot] == distance;
    return isIts ? std::optional(static_cast<std::uint8_t>(slot)) : std::nullopt;
}

RecordMap::Step RecordMap::stepAt(Group const& group, std::size_t index) const noexcept {
    std::uint8_t const octet = group.distances[index];
    if (octet < kTwoOctets) {
        return {.distance = distances_[octet], .size = 1};
    }
    bool const isShort = octet != kEightOctets;
    std::size_t const count = isShort ? 1 : sizeof(std::uint64_t);
    std::uint64_t distance = isShort ? octet - kTwoOctets : 0;
    for (std::size_t i = 1; i <= count; ++i) {
        distance = distance << 8U | group.distances[index + i];
    }
    return {.distance = distance, .size = 1 + count};
}

std::optional<std::uint64_t> RecordMap::offsetOf(std::size_t number) const noexcept {
    if (number >= size_) {
        return std::nullopt;
    }
    Group const& group = groups_[number / kGroup];
    std::uint64_t fileOffset = group.first;
    std::size_t index = 0;
    for (std::size_t left = number % kGroup; left > 0; --left) {
        Step const step = stepAt(group, index);
        fileOffset += step.distance;
        index += step.size;
    }
    return fileOffset;
}

std::optional<std::size_t> RecordMap::numberAt(std::uint64_t fileOffset) const noexcept {
    auto const after =
        std::partition_point(groups_.begin(), groups_.end(),
                             [&](Group const& group) { return group.first <= fileOffset; });
    if (after == groups_.begin()) {
        return std::nullopt;
    }
    Group const& group = *std::prev(after);
    auto number = static_cast<std::size_t>(std::prev(after) - groups_.begin()) * kGroup;
    std::uint64_t at = group.first;
    for (std::size_t index = 0; index < group.distances.size();) {
        Step const step = stepAt(group, index);
        at += step.distance;
        if (at > fileOffset) {
            break;
        }
        index += step.size;
        ++number;
    }
    return number;
}

std::size_t RecordMap::memory() const noexcept {
    std::size_t octets = sizeof *this + groups_.capacity() * sizeof(Group) +
                         distances_.capacity() * sizeof(std::uint32_t) +
                         slots_.capacity() * sizeof(std::uint16_t);
    for (Group const& group : groups_) {
        octets += group.distances.capacity();
    }
    return octets;
}

}  // namespace TalIec61850Analysis
