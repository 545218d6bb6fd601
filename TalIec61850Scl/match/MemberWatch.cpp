#include <TalIec61850Scl/match/BindMembers.hpp>
#include <TalIec61850Scl/match/MemberWatch.hpp>
#include <cstdint>
#include <iterator>

namespace TalIec61850Scl::detail {

namespace {

using TalIec61850Analysis::DataKind;
using TalIec61850Analysis::DataViews;
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
    if (member.path.size() <= binding.endPath.size()) {
        return member.type;
    }
    return member.isInArray(binding.endPath.size()) ? DifferenceValue(DataKind::array)
                                                    : DifferenceValue(BasicType::structure);
}

}  // namespace

void MemberWatch::look(std::optional<DataViews> const& allData, bool isCut, PacketRef packet,
                       DifferenceSet& differences) {
    if (isCut) {
        if (allData) {
            compare(*allData, bindMembers(dataSet_, *allData), true, packet, differences);
        }
        return;
    }
    DataViews const values = allData.value_or(DataViews());
    if (binder_.bind(values)) {
        compare(values, *binder_.binding(), false, packet, differences);
    }
}

void MemberWatch::compare(DataViews const& allData, MemberBinding const& binding, bool isCut,
                          PacketRef packet, DifferenceSet& differences) const {
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
    bool const isLeftOut =
        isCut && binding.end == BindingEnd::fewerValues && binding.endPath.front() >= count;
    if (binding.end == BindingEnd::none || binding.end == BindingEnd::notCaptured || isLeftOut) {
        return;
    }
    differences.add({.kind = DifferenceKind::memberType,
                     .expected = expectedAt(dataSet_, binding),
                     .found = binding.found ? DifferenceValue(*binding.found) : DifferenceValue(),
                     .member = binding.endPath,
                     .packet = packet});
}

}  // namespace TalIec61850Scl::detail
