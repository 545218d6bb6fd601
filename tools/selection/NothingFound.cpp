#include "tools/selection/NothingFound.hpp"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <concepts>
#include <set>

#include "tools/output/NearestWords.hpp"
#include "tools/output/TextEscape.hpp"

namespace TalIec61850Tools {

namespace {

constexpr std::size_t kMostNames = 5;

struct PlainText {
    std::string operator()(std::string const& text) const { return text; }
    std::string operator()(char lane) const { return {lane}; }
    std::string operator()(std::unsigned_integral auto number) const {
        return fmt::to_string(number);
    }
};

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
    Criteria(StreamCriteria const& criteria, std::vector<StreamIdentity> const& all)
        : criteria_(criteria), all_(all) {
        using Stream = StreamIdentity const&;
        add("--source", &StreamCriteria::sources, [](Stream s) { return s.source; });
        add("--destination", &StreamCriteria::destinations, [](Stream s) { return s.destination; });
        add("--vlan", &StreamCriteria::vlanIds,
            [](Stream s) { return s.vlan ? s.vlan->vlanId : std::nullopt; });
        add(
            "--appid", &StreamCriteria::appIds, [](Stream s) { return s.appId; }, appIdText);
        add("--hsr", &StreamCriteria::hsrLanes,
            [](Stream s) { return s.hsr ? s.hsr->lanId : std::nullopt; });
        add("--prp", &StreamCriteria::prpLanes,
            [](Stream s) { return s.prp ? s.prp->lanId : std::nullopt; });
        add("--reserved1-bit0", &StreamCriteria::reserved1Bit0,
            [](Stream s) { return s.reserved1Bit0; });
        add("--svid", &StreamCriteria::svIDs, [](Stream s) { return s.svID; });
        add("--gocbref", &StreamCriteria::gocbRefs, [](Stream s) { return s.gocbRef; });
        add("--datset", &StreamCriteria::datSets, [](Stream s) { return s.datSet; });
        add("--goid", &StreamCriteria::goIDs, [](Stream s) { return s.goID; });
        add("--confrev", &StreamCriteria::confRevs, [](Stream s) { return s.confRev; });
    }

    [[nodiscard]] std::vector<Criterion> const& given() const { return given_; }

private:
    template <typename Value, typename ValueOf, typename TextOf = PlainText>
    void add(std::string const& option, std::vector<Value> StreamCriteria::*member,
             ValueOf const& valueOf, TextOf const& textOf = {}) {
        if ((criteria_.*member).empty()) {
            return;
        }
        Criterion criterion{.option = option, .wanted = {}, .values = {}};
        StreamCriteria alone;
        alone.*member = criteria_.*member;
        for (Value const& value : criteria_.*member) {
            criterion.wanted.push_back(textOf(value));
        }
        for (StreamIdentity const& stream : all_) {
            if (auto const value = valueOf(stream)) {
                criterion.values.insert(textOf(*value));
            }
            criterion.isMet = criterion.isMet || alone.admit(stream);
        }
        given_.push_back(std::move(criterion));
    }

    StreamCriteria const& criteria_;
    std::vector<StreamIdentity> const& all_;
    std::vector<Criterion> given_;
};

/// "--svid MU9: there are MU01, MU02 and 7 more"
std::string whyNotMet(Criterion const& criterion) {
    std::string const& wanted = criterion.wanted.front();
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

}  // namespace

std::string whyNoStream(StreamCriteria const& criteria, std::vector<StreamIdentity> const& all) {
    if (all.empty()) {
        return "no GOOSE or SV streams in the captures";
    }
    Criteria const apart(criteria, all);
    auto const unmet = std::find_if(apart.given().begin(), apart.given().end(),
                                    [](Criterion const& criterion) { return !criterion.isMet; });
    if (unmet != apart.given().end()) {
        return whyNotMet(*unmet);
    }
    return fmt::format("no stream meets all criteria at once; there {} {} without them",
                       all.size() == 1 ? "is" : "are", all.size());
}

}  // namespace TalIec61850Tools
