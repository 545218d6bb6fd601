#pragma once

// Internal: reads optional members of optional groups, as stream identities have them.

#include <optional>

namespace TalIec61850Parser::wire {

/// The member of a group; nullopt when the group or the member is not set.
template <typename Group, typename Value>
[[nodiscard]] constexpr std::optional<Value> memberOf(std::optional<Group> const& group,
                                                      std::optional<Value> Group::*member) {
    return group ? (*group).*member : std::nullopt;
}

}  // namespace TalIec61850Parser::wire
