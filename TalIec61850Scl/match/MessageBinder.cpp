#include <TalIec61850Analysis/packet/Fault.hpp>
#include <TalIec61850Scl/match/MessageBinder.hpp>
#include <TalIec61850Scl/match/MessageMake.hpp>
#include <algorithm>
#include <iterator>

namespace TalIec61850Scl {

namespace {

using TalIec61850Analysis::DataViews;
using TalIec61850Analysis::FaultKind;
using TalIec61850Analysis::Octets;

/// Whether no value runs past the end: octets alone then say how they bind, inside of values too.
bool areWhole(DataViews const& values) {
    for (auto value = values.begin(); value != std::default_sentinel; ++value) {
        auto const fault = (*value).fault;
        if (fault == FaultKind::pastCapture || fault == FaultKind::pastParent) {
            return false;
        }
    }
    return true;
}

}  // namespace

bool MessageBinder::bind(DataViews const& allData) {
    Octets const octets = allData.octets();
    if (before_ && std::ranges::equal(*before_, octets)) {
        return false;
    }
    bool const isOther = !before_ || !detail::isSameMake(*before_, octets);
    if (isOther) {
        binding_ = std::make_shared<MemberBinding const>(bindMembers(*dataSet_, allData));
    }
    if (isOther && !areWhole(allData)) {
        before_.reset();
    } else {
        before_.emplace(octets.begin(), octets.end());
    }
    return isOther;
}

}  // namespace TalIec61850Scl
