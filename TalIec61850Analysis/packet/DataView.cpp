#include <TalIec61850Analysis/packet/DataView.hpp>
#include <TalIec61850Analysis/packet/ReadContent.hpp>
#include <TalIec61850Analysis/packet/Reading.hpp>

namespace TalIec61850Analysis {

namespace {

bool holdsValues(DataKind kind) { return kind == DataKind::array || kind == DataKind::structure; }

}  // namespace

DataView viewData(ElementView const& element, std::size_t depth) noexcept {
    DataView view;
    view.offset = element.offset;
    view.tag = element.tag.value_or(element.octets.empty() ? 0 : element.octets.front());
    view.kind = element.tag ? kindOf(*element.tag) : DataKind::unreadable;
    view.fault = element.fault;
    if (holdsValues(view.kind)) {
        if (depth < kMaxDataDepth || element.octets.empty()) {
            view.value = DataViews(element.members(), depth + 1);
        } else {
            view.value = element.octets;
            view.fault = FaultKind::tooDeep;
        }
    } else if (element.fault) {
        view.value = element.octets;
    } else {
        readContent(element.octets, view);
    }
    return view;
}

// NOLINTNEXTLINE(misc-no-recursion): values are nested no deeper than kMaxDataDepth
void DataViews::visitFaults(FaultSink sink) const {
    for (ElementView const& element : elements_) {
        reportFault(element.offset, element.fault, sink);
        DataView const value = viewData(element, depth_);
        if (value.fault != element.fault) {
            reportFault(value.offset, value.fault, sink);
        }
        if (auto const* const members = std::get_if<DataViews>(&value.value)) {
            members->visitFaults(sink);
        }
    }
}

}  // namespace TalIec61850Analysis
