#include "tools/library/LibraryCriteria.hpp"

#include <algorithm>
#include <cstddef>
#include <iterator>

#include "tools/render/AddressText.hpp"

namespace TalIec61850Tools {

using TalIec61850Parser::Filter;
using TalIec61850Parser::GooseIdentifer;
using TalIec61850Parser::HsrInfo;
using TalIec61850Parser::PrpInfo;
using TalIec61850Parser::SvIdentifer;
using TalIec61850Parser::VlanInfo;

namespace {

/// Addresses as the library writes them.
std::vector<std::string> addressTexts(std::vector<MacAddress> const& addresses) {
    std::vector<std::string> texts;
    std::transform(addresses.begin(), addresses.end(), std::back_inserter(texts),
                   [](MacAddress const& address) { return toText(address); });
    return texts;
}

template <typename Group, typename Value>
std::optional<Value> memberOf(std::optional<Group> const& group,
                              std::optional<Value> Group::*member) {
    return group ? (*group).*member : std::nullopt;
}

/// The value for the entry of this number: entries beyond the values repeat the last one, so that
/// no entry admits more than the others.
template <typename Value>
std::optional<Value> valueFor(std::size_t entry, std::vector<Value> const& values) {
    return values.empty() ? std::nullopt
                          : std::optional(values[std::min(entry, values.size() - 1)]);
}

/// What both roads of the library ask of a frame's link layer and header.
template <typename Identifier>
Identifier linkLayerEntry(LibraryCriteria const& criteria, std::size_t entry) {
    Identifier identifier;
    identifier.srcMac = valueFor(entry, addressTexts(criteria.sources));
    identifier.dstMac = valueFor(entry, addressTexts(criteria.destinations));
    identifier.vlan =
        VlanInfo{.priority = {}, .dei = {}, .vlanId = valueFor(entry, criteria.vlanIds)};
    identifier.hsr = HsrInfo{.hsrSpare1 = {},
                             .lanId = valueFor(entry, criteria.hsrLanes),
                             .hsrSpare2 = {},
                             .hsrSpare3 = {}};
    identifier.prp =
        PrpInfo{.sequenceNumber = {}, .lanId = valueFor(entry, criteria.prpLanes), .lsduSize = {}};
    identifier.appId = valueFor(entry, criteria.appIds);
    return identifier;
}

GooseIdentifer gooseEntry(LibraryCriteria const& criteria, std::size_t entry) {
    auto identifier = linkLayerEntry<GooseIdentifer>(criteria, entry);
    identifier.reserved1Bit0 = valueFor(entry, criteria.reserved1Bit0);
    identifier.gocbRef = valueFor(entry, criteria.gocbRefs);
    identifier.datSet = valueFor(entry, criteria.datSets);
    identifier.goID = valueFor(entry, criteria.goIDs);
    identifier.simulation = criteria.simulationPresent;
    identifier.confRev = valueFor(entry, criteria.confRevs);
    return identifier;
}

SvIdentifer svEntry(LibraryCriteria const& criteria, std::size_t entry) {
    auto identifier = linkLayerEntry<SvIdentifer>(criteria, entry);
    identifier.reserved1Bit0 = valueFor(entry, criteria.reserved1Bit0);
    identifier.svID = valueFor(entry, criteria.svIDs);
    identifier.confRev = valueFor(entry, criteria.confRevs);
    return identifier;
}

/// 0 where nothing is asked for.
std::size_t countEntries(LibraryCriteria const& c) {
    std::size_t const atLeast = c.simulationPresent ? 1 : 0;
    return std::max({atLeast, c.sources.size(), c.destinations.size(), c.vlanIds.size(),
                     c.appIds.size(), c.hsrLanes.size(), c.prpLanes.size(), c.reserved1Bit0.size(),
                     c.svIDs.size(), c.gocbRefs.size(), c.datSets.size(), c.goIDs.size(),
                     c.confRevs.size()});
}

/// @param gooseEntryOf, svEntryOf  give the entry of a number
template <typename GooseEntry, typename SvEntry>
Filter makeFilter(LibraryCriteria const& criteria, GooseEntry gooseEntryOf, SvEntry svEntryOf) {
    Filter filter;
    bool const asksGooseOnly = !criteria.gocbRefs.empty() || !criteria.datSets.empty() ||
                               !criteria.goIDs.empty() || criteria.simulationPresent;
    filter.parseGoose = criteria.protocol != Protocol::sv && criteria.svIDs.empty();
    filter.parseSv = criteria.protocol != Protocol::goose && !asksGooseOnly;
    for (std::size_t entry = 0; entry < countEntries(criteria); ++entry) {
        filter.gooseFilters.push_back(gooseEntryOf(criteria, entry));
        filter.svFilters.push_back(svEntryOf(criteria, entry));
    }
    return filter;
}

}  // namespace

bool LibraryCriteria::admit(LibraryStream const& stream) const {
    return (!protocol || protocol == stream.protocol) &&
           meets(addressTexts(sources), stream.source) &&
           meets(addressTexts(destinations), stream.destination) &&
           meets(vlanIds, memberOf(stream.vlan, &VlanInfo::vlanId)) &&
           meets<std::uint64_t>({appIds.begin(), appIds.end()}, stream.appId) &&
           meets(hsrLanes, memberOf(stream.hsr, &HsrInfo::lanId)) &&
           meets(prpLanes, memberOf(stream.prp, &PrpInfo::lanId)) &&
           meets(reserved1Bit0, stream.reserved1Bit0) && meetsPattern(svIDs, stream.svID) &&
           meetsPattern(gocbRefs, stream.gocbRef) && meetsPattern(datSets, stream.datSet) &&
           meetsPattern(goIDs, stream.goID) && meets(confRevs, stream.confRev) &&
           (!simulationPresent || simulationPresent == stream.simulationPresent);
}

Filter toIndexFilter(LibraryCriteria const& criteria) {
    return makeFilter(criteria, linkLayerEntry<GooseIdentifer>, linkLayerEntry<SvIdentifer>);
}

Filter toFrameFilter(LibraryCriteria const& criteria) {
    return makeFilter(criteria, gooseEntry, svEntry);
}

}  // namespace TalIec61850Tools
