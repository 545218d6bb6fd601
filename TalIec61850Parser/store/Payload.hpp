#pragma once

// Internal: how the streams' hash and equality read optional identity members.

#include <TalIec61850Parser/store/VlanInfo.hpp>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace TalIec61850Parser::detail {

/// The text of a member; empty when it is not set.
inline std::string_view payload(std::optional<std::string> const& member) {
    return member ? std::string_view(*member) : std::string_view();
}

/// The number of a member; zero when it is not set.
template <typename Number>
Number payload(std::optional<Number> const& member) {
    return member.value_or(Number{});
}

/// The number of a member of an optional group; zero when either is not set.
template <typename Group, typename Number>
Number payload(std::optional<Group> const& group, std::optional<Number> Group::*member) {
    return group ? payload((*group).*member) : Number{};
}

/// What a text adds to a hash: nothing when it is not set, so that an absent and an empty text
/// differ there.
inline std::size_t hashTerm(std::optional<std::string> const& member) {
    return member ? std::hash<std::string>{}(*member) : 0;
}

inline std::size_t hashTerm(std::optional<VlanInfo> const& vlan) {
    return std::size_t{payload(vlan, &VlanInfo::priority)} ^ payload(vlan, &VlanInfo::dei) ^
           payload(vlan, &VlanInfo::vlanId);
}

}  // namespace TalIec61850Parser::detail
