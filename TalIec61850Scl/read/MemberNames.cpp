#include <TalIec61850Scl/read/MemberNames.hpp>
#include <algorithm>
#include <string>
#include <tuple>

namespace TalIec61850Scl::detail {

namespace {

/// Values of one name that are looked at, over all data sets. So what an input takes does not grow
/// with the data sets.
constexpr int kMostValuesOfAName = 1024;

void keepFirst(std::vector<MemberPlace>& found, MemberPlace const& place, std::size_t most) {
    auto const known = std::find_if(found.begin(), found.end(), [&](MemberPlace const& each) {
        return each.dataSet == place.dataSet;
    });
    if (known != found.end()) {
        known->member = std::min(known->member, place.member);
    } else if (found.size() < most) {
        found.push_back(place);
    }
}

}  // namespace

void MemberNames::add(DataSet const& dataSet, std::size_t number) {
    for (std::size_t i = 0; i < dataSet.members.size(); ++i) {
        entries_.push_back({.name = dataSet.members[i].name,
                            .place = {.dataSet = static_cast<std::uint32_t>(number),
                                      .member = static_cast<std::uint32_t>(i)}});
    }
    isSorted_ = false;
}

void MemberNames::sort() {
    auto const key = [](Entry const& entry) {
        return std::tuple(entry.name, entry.place.dataSet, entry.place.member);
    };
    std::sort(entries_.begin(), entries_.end(),
              [&](Entry const& a, Entry const& b) { return key(a) < key(b); });
    isSorted_ = true;
}

std::vector<MemberNames::Entry>::const_iterator MemberNames::from(std::string_view name) const {
    return std::lower_bound(
        entries_.begin(), entries_.end(), name,
        [](Entry const& entry, std::string_view wanted) { return entry.name < wanted; });
}

std::vector<MemberPlace> MemberNames::find(std::string_view name, std::size_t most) {
    if (!isSorted_) {
        sort();
    }
    std::vector<MemberPlace> found;
    auto each = from(name);
    for (int left = kMostValuesOfAName; each != entries_.end() && each->name == name && left > 0;
         ++each, --left) {
        keepFirst(found, each->place, most);
    }
    // Parts of an object or structure, and elements of an array.
    std::string start = std::string(name) + ' ';
    for (char const separator : {'.', '('}) {
        start.back() = separator;
        each = from(start);
        for (int left = kMostValuesOfAName;
             each != entries_.end() && each->name.starts_with(start) && left > 0; ++each, --left) {
            keepFirst(found, each->place, most);
        }
    }
    return found;
}

}  // namespace TalIec61850Scl::detail
