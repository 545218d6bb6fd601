#include <TalIec61850Scl/match/BindMembers.hpp>
#include <TalIec61850Scl/match/MemberWatch.hpp>
#include <TalIec61850Scl/match/MessageMake.hpp>
#include <iterator>
#include <utility>

namespace TalIec61850Scl::detail {

namespace {

using TalIec61850Analysis::DataViews;
using TalIec61850Analysis::Octets;
using TalIec61850Analysis::PacketRef;

std::int64_t countValues(DataViews const& allData) {
    std::int64_t count = 0;
    for (auto value = allData.begin(); value != std::default_sentinel; ++value) {
        ++count;
    }
    return count;
}

/// What the data set has where the binding ends; not set where it has nothing there.
DifferenceValue expectedAt(DataSet const& dataSet, MemberBinding const& binding) {
    if (binding.end == BindingEnd::moreValues || binding.bound >= dataSet.members.size()) {
        return {};
    }
    DataSetMember const& member = dataSet.members[binding.bound];
    bool const isInside = member.path.size() > binding.endPath.size();
    return isInside ? BasicType::structure : member.type;
}

}  // namespace

void MemberWatch::look(std::optional<DataViews> const& allData, bool isCut, PacketRef packet,
                       DifferenceSet& differences) {
    if (isCut) {
        if (allData) {
            compare(*allData, true, packet, differences);
        }
        return;
    }
    DataViews const values = allData.value_or(DataViews());
    Octets const octets = values.octets();
    if (!before_ || !isSameMake(*before_, octets)) {
        compare(values, false, packet, differences);
    }
    if (!before_) {
        before_.emplace();
    }
    before_->assign(octets.begin(), octets.end());
}

void MemberWatch::compare(DataViews const& allData, bool isCut, PacketRef packet,
                          DifferenceSet& differences) const {
    std::int64_t const count = countValues(allData);
    bool const isCount = count == dataSet_.entries;
    if (!isCount && (!isCut || count > dataSet_.entries)) {
        differences.add({.kind = DifferenceKind::memberCount,
                         .expected = std::int64_t{dataSet_.entries},
                         .found = count,
                         .member = {},
                         .packet = packet});
        return;
    }
    MemberBinding binding = bindMembers(dataSet_, allData);
    bool const isLeftOut =
        isCut && binding.end == BindingEnd::fewerValues && binding.endPath.front() >= count;
    if (binding.end == BindingEnd::none || binding.end == BindingEnd::notCaptured || isLeftOut) {
        return;
    }
    differences.add({.kind = DifferenceKind::memberType,
                     .expected = expectedAt(dataSet_, binding),
                     .found = binding.found ? DifferenceValue(*binding.found) : DifferenceValue(),
                     .member = std::move(binding.endPath),
                     .packet = packet});
}

}  // namespace TalIec61850Scl::detail
