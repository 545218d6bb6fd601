#pragma once

// Internal: which values differ between the data of two GOOSE messages.

#include <TalIec61850Analysis/events/GooseEvent.hpp>
#include <TalIec61850Analysis/packet/Elements.hpp>
#include <vector>

namespace TalIec61850Analysis::detail {

/// What became of values.
struct MemberChanges {
    /// Whether number, nesting and types of the values are the same.
    bool isSameMake = true;
    /// The values that differ; all that there are now, where the make is another one.
    std::vector<MemberChange> changes;
};

/// Compares the values of two data sets, octet by octet. Those inside structures and arrays are
/// values of their own, as deep as they are read; a group that has none, or is damaged, is one.
[[nodiscard]] MemberChanges findMemberChanges(Elements const& before, Elements const& now);

}  // namespace TalIec61850Analysis::detail
