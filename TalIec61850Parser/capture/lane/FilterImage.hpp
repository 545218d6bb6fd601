#pragma once

// Internal: whether a filter is still what it was.

#include <TalIec61850Parser/capture/Filter.hpp>
#include <algorithm>
#include <optional>
#include <utility>

namespace TalIec61850Parser::detail {

/// A filter as it was when this was made.
class FilterImage {
public:
    explicit FilterImage(Filter filter) : filter_(std::move(filter)) {}

    /// Whether a filter accepts the same frames for the same reasons: all its criteria are equal.
    [[nodiscard]] bool shows(Filter const& filter) const {
        return filter.parseSv == filter_.parseSv && filter.parseGoose == filter_.parseGoose &&
               std::ranges::equal(filter.svFilters, filter_.svFilters, isSameSv) &&
               std::ranges::equal(filter.gooseFilters, filter_.gooseFilters, isSameGoose);
    }

private:
    template <typename Record, typename... Members>
    static bool isSame(Record const& a, Record const& b, Members... members) {
        return ((a.*members == b.*members) && ...);
    }
    template <typename Group, typename... Members>
    static bool isSame(std::optional<Group> const& a, std::optional<Group> const& b,
                       Members... members) {
        return a.has_value() == b.has_value() && (!a || isSame(*a, *b, members...));
    }

    template <typename Identifier>
    static bool isSameHeader(Identifier const& a, Identifier const& b) {
        return isSame(a, b, &Identifier::srcMac, &Identifier::dstMac, &Identifier::appId,
                      &Identifier::reserved1Bit0, &Identifier::confRev) &&
               isSame(a.vlan, b.vlan, &VlanInfo::vlanId) && isSame(a.hsr, b.hsr, &HsrInfo::lanId) &&
               isSame(a.prp, b.prp, &PrpInfo::lanId);
    }
    static bool isSameSv(SvIdentifer const& a, SvIdentifer const& b) {
        return isSameHeader(a, b) && isSame(a, b, &SvIdentifer::svID);
    }
    static bool isSameGoose(GooseIdentifer const& a, GooseIdentifer const& b) {
        return isSameHeader(a, b) && isSame(a, b, &GooseIdentifer::gocbRef, &GooseIdentifer::datSet,
                                            &GooseIdentifer::goID, &GooseIdentifer::simulation);
    }

    Filter filter_;
};

}  // namespace TalIec61850Parser::detail
