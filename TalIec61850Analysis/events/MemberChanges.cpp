#include <TalIec61850Analysis/events/MemberChanges.hpp>
#include <TalIec61850Analysis/events/ValueWalk.hpp>
#include <algorithm>
#include <optional>

namespace TalIec61850Analysis::detail {

namespace {

bool areOfSameMake(Elements const& before, Elements const& now) {
    ValueWalk was(before);
    ValueWalk is(now);
    while (!was.isOver() && !is.isOver()) {
        if (!is.isOfSameMake(was)) {
            return false;
        }
        was.next();
        is.next();
    }
    return was.isOver() && is.isOver();
}

}  // namespace

MemberChanges findMemberChanges(Elements const& before, Elements const& now) {
    MemberChanges found{.isSameMake = areOfSameMake(before, now), .changes = {}};
    ValueWalk was(before);
    for (ValueWalk is(now); !is.isOver(); is.next()) {
        while (!was.isOver() && was.isBefore(is)) {
            was.next();
        }
        bool const hasOther =
            !was.isOver() && is.isAtPlaceOf(was) && is.element().tag == was.element().tag;
        bool const isSame =
            hasOther && std::ranges::equal(is.element().octets, was.element().octets);
        if (!isSame || !found.isSameMake) {
            found.changes.push_back({.member = is.path(),
                                     .from = hasOther ? std::optional(was.value()) : std::nullopt,
                                     .to = is.value()});
        }
    }
    return found;
}

}  // namespace TalIec61850Analysis::detail
