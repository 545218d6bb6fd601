#pragma once

#include <TalIec61850Parser/capture/Filter.hpp>
#include <initializer_list>
#include <optional>
#include <utility>

// Filters in one line: `gooseFilter({wanted(&GooseIdentifer::goID, "A")})`.

namespace TalTest {

/// A filter element with nothing set, not even the APPID.
template <typename Identifer>
[[nodiscard]] Identifer anyStream() {
    Identifer entry;
    entry.appId.reset();
    return entry;
}

/// A filter element with one member set.
template <typename Identifer, typename Member, typename Value>
[[nodiscard]] Identifer wanted(std::optional<Member> Identifer::*member, Value&& value) {
    auto entry = anyStream<Identifer>();
    entry.*member = std::forward<Value>(value);
    return entry;
}

[[nodiscard]] inline TalIec61850Parser::Filter gooseFilter(
    std::initializer_list<TalIec61850::GooseIdentifer> entries) {
    TalIec61850Parser::Filter filter;
    filter.gooseFilters = entries;
    return filter;
}

[[nodiscard]] inline TalIec61850Parser::Filter svFilter(
    std::initializer_list<TalIec61850::SvIdentifer> entries) {
    TalIec61850Parser::Filter filter;
    filter.svFilters = entries;
    return filter;
}

}  // namespace TalTest
