#pragma once

// Internal: the one rule by which every filter criterion is matched.

#include <algorithm>
#include <functional>
#include <vector>

namespace TalIec61850Parser::detail {

/// Whether a frame's value passes one criterion of a filter list: the list is empty, or some
/// entry leaves the criterion unset or holds exactly this value.
///
/// @param entries    the filter list
/// @param criterion  gives an entry's optional value: a member pointer or a callable
/// @param value      what the frame holds
template <typename Identifier, typename Criterion, typename Value>
[[nodiscard]] bool passes(std::vector<Identifier> const& entries, Criterion criterion,
                          Value const& value) {
    return entries.empty() ||
           std::any_of(entries.begin(), entries.end(), [&](Identifier const& entry) {
               auto const& wanted = std::invoke(criterion, entry);
               return !wanted.has_value() || *wanted == value;
           });
}

}  // namespace TalIec61850Parser::detail
