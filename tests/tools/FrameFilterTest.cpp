// The library's filter for judging frames: criteria one by one say the same as all of them
// together.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <array>

#include "index/RandomPicks.hpp"
#include "index/TrafficGenerators.hpp"
#include "tools/library/FrameVerdict.hpp"
#include "tools/library/LibraryCriteria.hpp"
#include "tools/render/AddressText.hpp"

namespace TalIec61850Tools::FrameFilterTest {
namespace {

using TalIec61850Parser::Filter;
using TalTest::below;
using TalTest::Bytes;
using TalTest::oneIn;
using TalTest::oneOf;

// What random traffic is made of, and a value that it never has.
std::array<MacAddress, 3> const kSources = {
    {{0x00, 0x30, 0xA7, 0, 0, 1}, {0x00, 0x30, 0xA7, 0, 0, 2}, {}}};
std::array<MacAddress, 3> const kDestinations = {
    {{0x01, 0x0C, 0xCD, 1, 0, 1}, {0x01, 0x0C, 0xCD, 4, 0, 1}, {}}};
std::array<std::uint16_t, 4> const kVlanIds = {0, 5, 4095, 7};
std::array<std::uint16_t, 4> const kNumbers = {0, 1, 0x4000, 5};
std::array<std::string, 4> const kNames = {"A", "LD0/LLN0$GO$gcb", "[41 00]", "*"};
std::array<char, 2> const kLanes = {'A', 'B'};
std::array<std::uint8_t, 2> const kBits = {0, 1};

bool isWanted(Bytes const& frame, Filter const& filter) {
    return judgeFrame(frame, filter).verdict == Verdict::wanted;
}

/// One criterion: some values of a member, put into the criteria and into a filter of its own.
struct Criteria {
    explicit Criteria(Bytes const& judged) : frame(judged) {}

    Bytes const& frame;
    LibraryCriteria all;
    /// Whether the frame meets each criterion alone.
    bool isMet = true;

    /// @param set  puts a value into an entry of either protocol
    template <typename Pool, typename Values, typename Set>
    void maybeAdd(Pool const& pool, Values& values, Set set) {
        Filter filter;
        for (unsigned i = oneIn(4) ? 1 + below(3) : 0; i > 0; --i) {
            values.push_back(oneOf(pool));
            set(filter.gooseFilters.emplace_back(), values.back());
            auto& entry = filter.svFilters.emplace_back();
            entry.appId.reset();
            set(entry, values.back());
        }
        isMet = isMet && isWanted(frame, filter);
    }

    /// A criterion that one protocol alone knows; the other is not asked for then.
    template <typename Values, typename Set>
    void maybeAddName(Values& values, bool ofGoose, Set set) {
        Filter filter;
        for (unsigned i = oneIn(6) ? 1 + below(2) : 0; i > 0; --i) {
            values.push_back(oneOf(kNames));
            (ofGoose ? filter.parseSv : filter.parseGoose) = false;
            set(filter, values.back());
        }
        isMet = isMet && isWanted(frame, filter);
    }
};

RC_GTEST_PROP(AnyFrameFilter, WantsWhatMeetsEachCriterionAlone, ()) {
    Bytes const frame = *TalTest::validFrame();
    Criteria c(frame);
    LibraryCriteria& all = c.all;
    c.maybeAdd(kSources, all.sources,
               [](auto& entry, auto& value) { entry.srcMac = toText(value); });
    c.maybeAdd(kDestinations, all.destinations,
               [](auto& entry, auto& value) { entry.dstMac = toText(value); });
    c.maybeAdd(kVlanIds, all.vlanIds,
               [](auto& entry, auto& value) { entry.vlan.emplace().vlanId = value; });
    c.maybeAdd(kLanes, all.hsrLanes,
               [](auto& entry, auto& value) { entry.hsr.emplace().lanId = value; });
    c.maybeAdd(kLanes, all.prpLanes,
               [](auto& entry, auto& value) { entry.prp.emplace().lanId = value; });
    c.maybeAdd(kNumbers, all.appIds, [](auto& entry, auto& value) { entry.appId = value; });
    c.maybeAdd(kNumbers, all.confRevs, [](auto& entry, auto& value) { entry.confRev = value; });
    c.maybeAdd(kBits, all.reserved1Bit0,
               [](auto& entry, auto& value) { entry.reserved1Bit0 = value; });
    c.maybeAddName(all.gocbRefs, true, [](Filter& filter, auto& value) {
        filter.gooseFilters.emplace_back().gocbRef = value;
    });
    c.maybeAddName(all.datSets, true, [](Filter& filter, auto& value) {
        filter.gooseFilters.emplace_back().datSet = value;
    });
    c.maybeAddName(all.goIDs, true, [](Filter& filter, auto& value) {
        filter.gooseFilters.emplace_back().goID = value;
    });
    c.maybeAddName(all.svIDs, false, [](Filter& filter, auto& value) {
        auto& entry = filter.svFilters.emplace_back();
        entry.appId.reset();
        entry.svID = value;
    });
    RC_CLASSIFY(c.isMet, "wanted");
    RC_ASSERT(isWanted(frame, toFrameFilter(all)) == c.isMet);
}

RC_GTEST_PROP(AnyFrameFilter, SwitchesOffWhatIsNotAskedFor, ()) {
    LibraryCriteria criteria;
    if (oneIn(2)) {
        criteria.protocol = oneIn(2) ? Protocol::goose : Protocol::sv;
    }
    if (oneIn(3)) {
        criteria.simulationPresent = oneIn(2);
    }
    if (oneIn(3)) {
        criteria.svIDs = {"A"};
    }
    Filter const filter = toFrameFilter(criteria);
    RC_ASSERT(filter.parseGoose == (criteria.protocol != Protocol::sv && criteria.svIDs.empty()));
    RC_ASSERT(filter.parseSv ==
              (criteria.protocol != Protocol::goose && !criteria.simulationPresent));
}

}  // namespace
}  // namespace TalIec61850Tools::FrameFilterTest
