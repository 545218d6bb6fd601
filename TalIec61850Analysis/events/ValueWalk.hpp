#pragma once

// Internal: the values of a data set one by one, with their places in structures and arrays.

#include <TalIec61850Analysis/packet/DataKind.hpp>
#include <TalIec61850Analysis/packet/DataValue.hpp>
#include <TalIec61850Analysis/packet/DataView.hpp>
#include <TalIec61850Analysis/packet/Elements.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <vector>

namespace TalIec61850Analysis::detail {

/// Goes over the values of a data set, front to back, into structures and arrays as deep as they
/// are read. A group that has no values, or is damaged, is one value.
class ValueWalk {
public:
    explicit ValueWalk(Elements const& values) {
        levels_.push_back({.at = values.begin()});
        settle();
    }

    [[nodiscard]] bool isOver() const { return levels_.empty(); }
    [[nodiscard]] ElementView const& element() const { return *levels_.back().at; }

    void next() {
        ++levels_.back().at;
        ++levels_.back().index;
        settle();
    }

    [[nodiscard]] std::vector<std::uint32_t> path() const {
        std::vector<std::uint32_t> path;
        path.reserve(levels_.size());
        for (Level const& level : levels_) {
            path.push_back(level.index);
        }
        return path;
    }

    [[nodiscard]] DataValue value() const { return toOwned(viewData(element(), levels_.size())); }

    /// Whether another one is at a value of the same type, at the same place in the same groups.
    [[nodiscard]] bool isOfSameMake(ValueWalk const& other) const {
        return isAtPlaceOf(other) && element().tag == other.element().tag &&
               std::ranges::equal(levels_, other.levels_, {}, &Level::groupTag, &Level::groupTag);
    }

    [[nodiscard]] bool isAtPlaceOf(ValueWalk const& other) const {
        return std::ranges::equal(levels_, other.levels_, {}, &Level::index, &Level::index);
    }

    [[nodiscard]] bool isBefore(ValueWalk const& other) const {
        return std::ranges::lexicographical_compare(levels_, other.levels_, {}, &Level::index,
                                                    &Level::index);
    }

private:
    struct Level {
        Elements::Iterator at;
        std::uint32_t index = 0;
        /// Of what the level is in; 0 for the data set.
        std::uint8_t groupTag = 0;
    };

    [[nodiscard]] bool isGroup(ElementView const& element) const {
        DataKind const kind = element.tag ? kindOf(*element.tag) : DataKind::unreadable;
        return (kind == DataKind::array || kind == DataKind::structure) && !element.fault &&
               !element.octets.empty() && levels_.size() < kMaxDataDepth;
    }

    /// Goes to the next value that is no group.
    void settle() {
        while (!levels_.empty()) {
            Level& level = levels_.back();
            if (level.at == std::default_sentinel) {
                levels_.pop_back();
                if (!levels_.empty()) {
                    ++levels_.back().at;
                    ++levels_.back().index;
                }
            } else if (isGroup(*level.at)) {
                levels_.push_back({.at = level.at->members().begin(),
                                   .groupTag = level.at->tag.value_or(std::uint8_t{0})});
            } else {
                return;
            }
        }
    }

    std::vector<Level> levels_;
};

}  // namespace TalIec61850Analysis::detail
