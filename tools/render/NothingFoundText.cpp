#include "tools/render/NothingFoundText.hpp"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <concepts>
#include <optional>
#include <set>
#include <variant>

#include "tools/output/NearestWords.hpp"
#include "tools/output/Plural.hpp"
#include "tools/output/TextEscape.hpp"
#include "tools/render/AddressText.hpp"
#include "tools/render/Cells.hpp"
#include "tools/selection/StreamPublishers.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::CaptureSummary;

namespace {

constexpr std::size_t kMostNames = 5;
constexpr char const* kProtocolOption = "--protocol";

using Texts = std::vector<std::string>;

std::string textOf(std::string const& text) { return text; }
std::string textOf(char lane) { return {lane}; }
std::string textOf(std::unsigned_integral auto number) { return fmt::to_string(number); }
std::string textOf(MacAddress const& address) { return toText(address); }

/// What a stream has one value of, or none.
template <typename Value>
Texts textsOf(std::optional<Value> const& value) {
    return value ? Texts{textOf(*value)} : Texts();
}

/// The lanes over which packets came.
Texts lanesOf(std::array<std::uint64_t, 2> const& over) {
    Texts lanes;
    for (std::size_t lane = 0; lane < over.size(); ++lane) {
        if (over[lane] != 0) {
            lanes.emplace_back(lane == 0 ? "A" : "B");
        }
    }
    return lanes;
}

std::optional<std::uint64_t> confRevOf(StreamRow const& row) {
    auto const* const number = TalIec61850Analysis::valueIn(row.confRev);
    return number == nullptr ? std::nullopt : std::optional(*number);
}

/// The IED that publishes a stream.
Texts iedsOf(StreamRow const& row, StreamPublishers* publishers) {
    auto const* const publisher = publishers != nullptr ? publishers->of(row.key()) : nullptr;
    return publisher != nullptr ? Texts{publisher->ied} : Texts();
}

/// One of the criteria, with the values that streams have for it.
struct Criterion {
    std::string option;
    /// What was asked for.
    std::vector<std::string> wanted;
    /// What there is.
    std::set<std::string> values;
    /// Whether any stream meets this criterion alone.
    bool isMet = false;
};

/// Takes the criteria apart.
class Criteria {
public:
    Criteria(PacketCriteria const& criteria, std::vector<StreamRow> const& all) : all_(all) {
        using Row = StreamRow const&;
        if (criteria.protocol) {
            add(kProtocolOption, {std::string(toText(*criteria.protocol))},
                [](Row r) { return Texts{std::string(toText(r.protocol))}; });
        }
        add("--source", texts(criteria.sources), [](Row r) { return textsOf(r.source); });
        add("--destination", texts(criteria.destinations),
            [](Row r) { return textsOf(r.destination); });
        add("--vlan", texts(criteria.vlanIds),
            [](Row r) { return r.vlans.empty() ? Texts() : Texts{textOf(r.vlans.back().id)}; });
        add("--appid", appIdTexts(criteria.appIds),
            [](Row r) { return Texts{appIdText(r.appId)}; });
        add("--hsr", texts(criteria.hsrLanes), [](Row r) { return lanesOf(r.overHsr); });
        add("--prp", texts(criteria.prpLanes), [](Row r) { return lanesOf(r.overPrp); });
        add("--svid", criteria.svIDs, [](Row r) { return textsOf(r.svID); });
        add("--gocbref", criteria.gocbRefs, [](Row r) { return textsOf(r.gocbRef); });
        add("--datset", criteria.datSets, [](Row r) { return textsOf(r.datSet); });
        add("--goid", criteria.goIDs, [](Row r) { return textsOf(r.goID); });
        add("--confrev", texts(criteria.confRevs), [](Row r) { return textsOf(confRevOf(r)); });
        add("--ied", criteria.ieds,
            [publishers = criteria.publishers](Row r) { return iedsOf(r, publishers); });
    }

    [[nodiscard]] std::vector<Criterion> const& given() const { return given_; }

private:
    template <typename Value>
    static Texts texts(std::vector<Value> const& values) {
        Texts texts;
        for (Value const& value : values) {
            texts.push_back(textOf(value));
        }
        return texts;
    }

    static Texts appIdTexts(std::vector<std::uint16_t> const& values) {
        Texts texts;
        for (std::uint16_t const value : values) {
            texts.push_back(appIdText(value));
        }
        return texts;
    }

    template <typename ValuesOf>
    void add(std::string const& option, Texts wanted, ValuesOf const& valuesOf) {
        if (wanted.empty()) {
            return;
        }
        Criterion criterion{.option = option, .wanted = std::move(wanted), .values = {}};
        for (StreamRow const& row : all_) {
            for (std::string const& text : valuesOf(row)) {
                criterion.isMet = criterion.isMet || meetsPattern(criterion.wanted, text);
                criterion.values.insert(text);
            }
        }
        given_.push_back(std::move(criterion));
    }

    std::vector<StreamRow> const& all_;
    std::vector<Criterion> given_;
};

/// "--svid MU9: there are MU01, MU02 and 7 more"
std::string whyNotMet(Criterion const& criterion) {
    std::string const& wanted = criterion.wanted.front();
    if (criterion.option == kProtocolOption) {
        // Some commands ask for it whatever is typed.
        return fmt::format("no stream carries {}; there is {}", wanted,
                           fmt::join(criterion.values, " and "));
    }
    std::string const asked =
        fmt::format("{} {}", criterion.option, wanted.empty() ? "\"\"" : escapeText(wanted));
    if (criterion.values.empty()) {
        return fmt::format("no stream has what {} asks for", asked);
    }
    auto values =
        nearestFirst(criterion.wanted.front(), {criterion.values.begin(), criterion.values.end()});
    std::size_t const more = values.size() > kMostNames ? values.size() - kMostNames : 0;
    values.resize(values.size() - more);
    std::transform(values.begin(), values.end(), values.begin(),
                   [](std::string const& value) { return escapeText(value); });
    return fmt::format("no stream matches {}; there {} {}{}", asked,
                       values.size() + more == 1 ? "is" : "are", fmt::join(values, ", "),
                       more == 0 ? std::string() : fmt::format(" and {} more", more));
}

/// Adds "5 of what" to the parts, where there are any.
void addCount(std::vector<std::string>& parts, std::uint64_t count, std::string_view what) {
    if (count != 0) {
        parts.push_back(fmt::format("{} {}", count, what));
    }
}

}  // namespace

std::string whyNoStream(PacketCriteria const& criteria, std::vector<StreamRow> const& all) {
    Criteria const apart(criteria, all);
    auto const unmet = std::find_if(apart.given().begin(), apart.given().end(),
                                    [](Criterion const& criterion) { return !criterion.isMet; });
    if (unmet != apart.given().end()) {
        return whyNotMet(*unmet);
    }
    return fmt::format("no stream meets all criteria at once; there {} {} without them",
                       all.size() == 1 ? "is" : "are", all.size());
}

std::string whyNoTraffic(std::vector<CaptureSummary const*> const& captures) {
    std::uint64_t records = 0;
    std::uint64_t unread = 0;
    std::uint64_t routable = 0;
    for (CaptureSummary const* const summary : captures) {
        records += summary->records;
        unread += summary->unread.size();
        routable += summary->routableGooseFrames + summary->routableSvFrames;
    }
    std::vector<std::string> parts = {plural(records, "frame")};
    addCount(parts, unread, "of GOOSE or SV that cannot be read");
    addCount(parts, routable, "of routable GOOSE or SV, which is not read");
    return fmt::format("no GOOSE or SV streams in the captures: {}{}", fmt::join(parts, ", "),
                       records == 0 ? "" : "; tal-iec61850 captures tells what they are");
}

}  // namespace TalIec61850Tools
