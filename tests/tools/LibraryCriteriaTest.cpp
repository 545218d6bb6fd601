// Criteria for streams, against the plainest reading of them, and the library's filter for them.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Parser/capture/PcapParser.hpp>
#include <algorithm>
#include <string_view>
#include <tuple>

#include "index/Indexing.hpp"
#include "index/RandomPicks.hpp"
#include "index/TrafficGenerators.hpp"
#include "tools/library/LibraryCriteria.hpp"
#include "tools/library/LibraryRow.hpp"
#include "tools/render/AddressText.hpp"

namespace TalIec61850Tools::LibraryCriteriaTest {
namespace {

using TalIec61850Parser::HsrInfo;
using TalIec61850Parser::PrpInfo;
using TalIec61850Parser::VlanInfo;
using TalTest::below;
using TalTest::oneIn;

/// Whether a name is what a pattern means, tried out.
bool matches(std::string_view pattern, std::string_view name) {
    if (pattern.empty()) {
        return name.empty();
    }
    if (pattern[0] == '*') {
        return matches(pattern.substr(1), name) ||
               (!name.empty() && matches(pattern, name.substr(1)));
    }
    return !name.empty() && (pattern[0] == '?' || pattern[0] == name[0]) &&
           matches(pattern.substr(1), name.substr(1));
}

std::string anyNameOf(std::string const& pool) {
    return *rc::gen::resize(6, rc::gen::container<std::string>(rc::gen::elementOf(pool)));
}

LibraryStream streamCalled(std::string const& svID) {
    LibraryStream stream;
    stream.protocol = Protocol::sv;
    stream.svID = svID;
    return stream;
}

RC_GTEST_PROP(AnyPattern, StandsForTextByStarsAndQuestionMarksAlone, ()) {
    std::string const pattern = anyNameOf("aab**?./\\-!^");
    std::string const name = anyNameOf("aaab./\\-!^*?");
    LibraryCriteria criteria;
    criteria.svIDs = {pattern};
    bool const isMet = matches(pattern, name);
    RC_CLASSIFY(isMet, "met");
    RC_ASSERT(criteria.admit(streamCalled(name)) == isMet);
}

RC_GTEST_PROP(AnyPattern, TakesBracketsAsTheyStand, ()) {
    std::string pattern;
    for (unsigned i = below(4); i > 0; --i) {
        pattern += *rc::gen::element<std::string>("[ab]", "[!x]", "[", "]", "a", "*");
    }
    std::string const name = anyNameOf("aab[]");
    LibraryCriteria criteria;
    criteria.svIDs = {pattern};
    RC_ASSERT(criteria.admit(streamCalled(name)) == matches(pattern, name));
}

template <typename Value>
std::optional<Value> maybe(Value value) {
    return oneIn(4) ? std::nullopt : std::optional<Value>(value);
}

std::string anyName() { return std::string(1, static_cast<char>('a' + below(3))); }
MacAddress anyAddress() { return {0, 0, 0, 0, 0, static_cast<std::uint8_t>(below(3))}; }
char anyLane() { return oneIn(2) ? 'A' : 'B'; }

LibraryStream anyStream() {
    LibraryStream stream;
    stream.protocol = oneIn(2) ? Protocol::goose : Protocol::sv;
    stream.source = toText(anyAddress());
    stream.destination = toText(anyAddress());
    if (oneIn(2)) {
        stream.vlan.emplace();
        stream.vlan->vlanId = maybe<std::uint16_t>(static_cast<std::uint16_t>(below(3)));
    }
    if (oneIn(2)) {
        stream.hsr.emplace();
        stream.hsr->lanId = maybe(anyLane());
    }
    if (oneIn(2)) {
        stream.prp.emplace();
        stream.prp->lanId = maybe(anyLane());
    }
    stream.appId = maybe<std::uint64_t>(below(3));
    stream.reserved1Bit0 = maybe<std::uint8_t>(static_cast<std::uint8_t>(below(2)));
    stream.svID = maybe(anyName());
    stream.gocbRef = maybe(anyName());
    stream.datSet = maybe(anyName());
    stream.goID = maybe(anyName());
    stream.confRev = maybe<std::uint64_t>(below(3));
    stream.simulationPresent = maybe(oneIn(2));
    return stream;
}

/// Up to two values, mostly none.
template <typename Make>
auto few(Make make) {
    std::vector<decltype(make())> values(oneIn(4) ? 1 + below(2) : 0);
    std::generate(values.begin(), values.end(), make);
    return values;
}

std::uint64_t anyNumber() { return below(3); }

LibraryCriteria anyCriteria() {
    LibraryCriteria c;
    if (oneIn(4)) {
        c.protocol = oneIn(2) ? Protocol::goose : Protocol::sv;
    }
    c.sources = few(anyAddress);
    c.destinations = few(anyAddress);
    c.vlanIds = few([] { return static_cast<std::uint16_t>(below(3)); });
    c.appIds = few([] { return static_cast<std::uint16_t>(below(3)); });
    c.hsrLanes = few(anyLane);
    c.prpLanes = few(anyLane);
    c.reserved1Bit0 = few([] { return static_cast<std::uint8_t>(below(2)); });
    c.svIDs = few(anyName);
    c.gocbRefs = few(anyName);
    c.datSets = few(anyName);
    c.goIDs = few(anyName);
    c.confRevs = few(anyNumber);
    if (oneIn(4)) {
        c.simulationPresent = oneIn(2);
    }
    return c;
}

template <typename Value, typename Actual>
bool isIn(std::vector<Value> const& wanted, std::optional<Actual> const& actual) {
    return wanted.empty() || std::any_of(wanted.begin(), wanted.end(),
                                         [&](Value const& value) { return actual == value; });
}

bool isIn(std::vector<MacAddress> const& wanted, std::optional<std::string> const& actual) {
    return wanted.empty() ||
           std::any_of(wanted.begin(), wanted.end(),
                       [&](MacAddress const& value) { return actual == toText(value); });
}

bool admitsPlainly(LibraryCriteria const& c, LibraryStream const& s) {
    bool const link = isIn(c.sources, s.source) && isIn(c.destinations, s.destination) &&
                      isIn(c.vlanIds, s.vlan.value_or(VlanInfo()).vlanId) &&
                      isIn(c.hsrLanes, s.hsr.value_or(HsrInfo()).lanId) &&
                      isIn(c.prpLanes, s.prp.value_or(PrpInfo()).lanId);
    bool const names = isIn(c.svIDs, s.svID) && isIn(c.gocbRefs, s.gocbRef) &&
                       isIn(c.datSets, s.datSet) && isIn(c.goIDs, s.goID);
    bool const numbers = isIn(c.appIds, s.appId) && isIn(c.reserved1Bit0, s.reserved1Bit0) &&
                         isIn(c.confRevs, s.confRev);
    bool const rest = (!c.protocol || *c.protocol == s.protocol) &&
                      (!c.simulationPresent || s.simulationPresent == c.simulationPresent);
    return link && names && numbers && rest;
}

RC_GTEST_PROP(AnyCriteria, AreMetByStreamsThatHaveOneOfTheValuesOfEach, ()) {
    LibraryCriteria const criteria = anyCriteria();
    LibraryStream const stream = anyStream();
    bool const isMet = admitsPlainly(criteria, stream);
    RC_CLASSIFY(isMet, "met");
    RC_ASSERT(criteria.admit(stream) == isMet);
}

// --- The library's filter --------------------------------------------------------------------

/// What is told of the streams that meet the criteria, when a capture is read through a filter.
auto rowsThrough(std::string const& path, TalIec61850Parser::Filter const& filter,
                 LibraryCriteria const& criteria) {
    TalIec61850Parser::Db db;
    TalTest::indexInto(db, path, filter);
    std::vector<
        std::tuple<Protocol, std::optional<std::string>, std::uint64_t, std::optional<CaptureTime>>>
        rows;
    for (LibraryRow const& row : collectRows(db)) {
        if (criteria.admit(row)) {
            rows.emplace_back(row.protocol, row.svID ? row.svID : row.gocbRef, row.packets,
                              row.lastTime);
        }
    }
    return rows;
}

std::optional<MacAddress> addressOf(std::optional<std::string> const& text) {
    MacAddress address{};
    for (std::size_t i = 0; i < address.size(); ++i) {
        address[i] = static_cast<std::uint8_t>(std::stoul(text->substr(3 * i, 2), nullptr, 16));
    }
    return address;
}

/// Criteria that streams of random traffic meet now and then, of members that a stream's packets
/// have alike.
LibraryCriteria criteriaFrom(std::vector<LibraryRow> const& rows) {
    LibraryCriteria c;
    auto const anyRow = [&] { return rows[below(static_cast<unsigned>(rows.size()))]; };
    for (unsigned i = below(3); i > 0; --i) {
        LibraryRow const row = anyRow();
        auto const add = [](auto& values, auto const& value) {
            if (value && oneIn(3)) {
                values.push_back(*value);
            }
        };
        add(c.sources, addressOf(row.source));
        add(c.destinations, addressOf(row.destination));
        add(c.vlanIds, row.vlan ? row.vlan->vlanId : std::nullopt);
        add(c.appIds, std::optional(static_cast<std::uint16_t>(row.appId.value_or(0))));
        add(c.reserved1Bit0, row.reserved1Bit0);
        add(row.svID ? c.svIDs : c.gocbRefs, row.svID ? row.svID : row.gocbRef);
        add(c.datSets, row.datSet);
        add(c.goIDs, row.goID);
        add(c.confRevs, row.confRev);
    }
    return c;
}

RC_GTEST_PROP(AnyCriteria, LoseNothingWhereTheLibraryFiltersBeforehand, ()) {
    auto const records = *TalTest::recordsOf(TalTest::validFrame());
    TalTest::ScratchFile const file(captureOf(records, *TalTest::anyVariant()));
    TalIec61850Parser::Db db;
    TalTest::indexInto(db, file.path());
    auto const rows = collectRows(db);
    RC_PRE(!rows.empty());
    LibraryCriteria const criteria = criteriaFrom(rows);
    auto const found = rowsThrough(file.path(), TalTest::everything, criteria);
    RC_CLASSIFY(found.empty(), "nothing admitted");
    RC_ASSERT(rowsThrough(file.path(), toIndexFilter(criteria), criteria) == found);
}

}  // namespace
}  // namespace TalIec61850Tools::LibraryCriteriaTest
